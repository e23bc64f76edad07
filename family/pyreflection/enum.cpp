#include "pyreflection/reflection_types.h"
#include "pyreflection/wrapping.h"
#include "shared/api_host.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "wrappers/casts.h"

#include <cstdint>

namespace {

// The managed class "Velbor.WrpGen.Reflection.EnumApi"; failures as in TypeApi.
#define VELBOR_ENUM_API(X)                           \
    VELBOR_API_CASTS(X, void*)                       \
    X(get_Name, PyObject*, (void* self), (self))     \
    X(get_Value, std::int64_t, (void* self), (self)) \
    X(call_HasFlag, int, (void* self, void* flag), (self, flag))

VELBOR_API_HOST(EnumApiHost, "Velbor.WrpGen.Reflection.EnumApi", VELBOR_ENUM_API);

using Casts = ClassCasts<EnumApiHost, wrpPyl_tyds_738AFABA_Enum, fn_invalidate_api<EnumApiHost>>;

PyObject* get_name(PyObject* self, void*) {
    return fn_invalidate_api<EnumApiHost>() ? nullptr
                                            : EnumApiHost::get_instance().get_Name(fn_wrapper_handle(self));
}

PyObject* get_number(PyObject* self) {
    if (fn_invalidate_api<EnumApiHost>()) {
        return nullptr;
    }
    const std::int64_t number = EnumApiHost::get_instance().get_Value(fn_wrapper_handle(self));
    return PyErr_Occurred() == nullptr ? PyLong_FromLongLong(number) : nullptr;
}

PyObject* get_value(PyObject* self, void*) {
    return get_number(self);
}

PyObject* has_flag(PyObject* self, PyObject* argument) {
    PyInterimArgBuilder flag;
    if (fn_invalidate_api<EnumApiHost>() || fn_conv_py_to_clr_enum(argument, &flag) == 0) {
        return nullptr;
    }
    const int answer = EnumApiHost::get_instance().call_HasFlag(fn_wrapper_handle(self), flag.handle);
    return PyErr_Occurred() == nullptr ? PyBool_FromLong(answer) : nullptr;
}

PyMethodDef methods[] = {
    {"has_flag", has_flag, METH_O,
     "has_flag($self, flag, /)\n--\n\nWhether all bits of another value of the same enum are set in this "
     "one."},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, "get_type($self, /)\n--\n\nThe enum type."},
    VELBOR_CLASS_CAST_ROWS(Casts),
    {},
};

PyGetSetDef properties[] = {
    {"name", get_name, nullptr, "The member's name; None for a number that no member has.", nullptr},
    {"value", get_value, nullptr, "The member's number.", nullptr},
    {},
};

constexpr PyNumberMethods make_number_methods() {
    PyNumberMethods numbers{};
    numbers.nb_int = get_number;
    numbers.nb_index = get_number;
    return numbers;
}

PyNumberMethods number_methods = make_number_methods();

}  // namespace

PyTypeObject wrpPyl_tyds_738AFABA_Enum = fn_make_reflected_type({
    .name = "velbor.pyreflection.Enum",
    .documentation = "A value of a managed enum, whatever its type. It converts to its number.",
    .base = &wrpPyl_tyds_359C4ED8_Object,
    .methods = methods,
    .properties = properties,
    .number = &number_methods,
});

int fn_conv_py_to_clr_enum(PyObject* value, PyInterimArgBuilder* out) {
    if (value == Py_None) {
        return 1;
    }
    if (PyObject_TypeCheck(value, &wrpPyl_tyds_738AFABA_Enum)) {
        return fn_take_interim(fn_new_ref(value), out);
    }
    if (fn_castable_marker(reinterpret_cast<PyObject*>(Py_TYPE(value))) != Py_Ellipsis) {
        return fn_refuse_reflected(value, "Enum");
    }
    PyRef boxed = PyRef::steal(PyObject_CallMethodNoArgs(value, PyWrpIdCastMeth_AsUniEnum));
    if (boxed && !PyObject_TypeCheck(boxed.get(), &wrpPyl_tyds_738AFABA_Enum)) {
        return fn_refuse_reflected(value, "Enum");
    }
    return fn_take_interim(boxed.release(), out);
}

PyObject* fn_conv_clr_to_py_enum(void* handle) {
    return fn_wrap_reflected(handle, &wrpPyl_tyds_738AFABA_Enum);
}

int fn_trans_py_to_clr_enum(PyObject* value, void** out) {
    return fn_take_reflected(value, &wrpPyl_tyds_738AFABA_Enum, out);
}
