#include <vector>

#include "exchange/exchange_host.h"
#include "pyreflection/reflection_types.h"
#include "pyreflection/wrapping.h"
#include "shared/api_host.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "wrappers/casts.h"

namespace {

// The managed class "Velbor.WrpGen.Reflection.TypeApi". Texts are new Python objects, handles are new ones; a
// Python error that is pending afterwards tells that the call failed.
#define VELBOR_TYPE_API(X)                                                                            \
    VELBOR_API_CASTS(X, void*)                                                                        \
    X(get_Name, PyObject*, (void* self), (self))                                                      \
    X(get_FullName, PyObject*, (void* self), (self))                                                  \
    X(get_Namespace, PyObject*, (void* self), (self))                                                 \
    X(get_AssemblyName, PyObject*, (void* self), (self))                                              \
    X(get_BaseType, void*, (void* self), (self))                                                      \
    X(get_ElementType, void*, (void* self), (self))                                                   \
    X(get_Traits, int, (void* self), (self))                                                          \
    X(call_CountInterfaces, int, (void* self), (self))                                                \
    X(call_GetInterfaces, int, (void* self, void** handles, int capacity), (self, handles, capacity)) \
    X(call_IsAssignableFrom, int, (void* self, void* other), (self, other))                           \
    X(call_IsSubclassOf, int, (void* self, void* other), (self, other))                               \
    X(call_IsInstanceOfType, int, (void* self, const VariantArg* value), (self, value))

VELBOR_API_HOST(TypeApiHost, "Velbor.WrpGen.Reflection.TypeApi", VELBOR_TYPE_API);

using Casts = ClassCasts<TypeApiHost, wrpPyl_tyds_C08ECFAB_Type, fn_invalidate_api<TypeApiHost>>;

// The bits of get_Traits; the managed class has the same table.
enum Trait : int {
    IsAbstract = 1 << 0,
    IsArray = 1 << 1,
    IsClass = 1 << 2,
    IsEnum = 1 << 3,
    IsGenericType = 1 << 4,
    IsInterface = 1 << 5,
    IsSealed = 1 << 6,
    IsValueType = 1 << 7,
};

// The host, or null with a Python error when the type cannot be used.
const TypeApiHost* usable_host() {
    return fn_invalidate_api<TypeApiHost>() ? nullptr : &TypeApiHost::get_instance();
}

using TextCall = PyObject* (TypeApiHost::*)(void*) const;
using TypeCall = void* (TypeApiHost::*)(void*) const;
using QuestionCall = int (TypeApiHost::*)(void*, void*) const;

template <TextCall Call>
PyObject* get_text(PyObject* self, void*) {
    const TypeApiHost* host = usable_host();
    return host != nullptr ? (host->*Call)(fn_wrapper_handle(self)) : nullptr;
}

template <TypeCall Call>
PyObject* get_type(PyObject* self, void*) {
    const TypeApiHost* host = usable_host();
    if (host == nullptr) {
        return nullptr;
    }
    void* type = (host->*Call)(fn_wrapper_handle(self));
    return PyErr_Occurred() == nullptr ? fn_conv_clr_to_py_type(type) : nullptr;
}

template <Trait Bit>
PyObject* get_trait(PyObject* self, void*) {
    const TypeApiHost* host = usable_host();
    if (host == nullptr) {
        return nullptr;
    }
    const int traits = host->get_Traits(fn_wrapper_handle(self));
    return PyErr_Occurred() == nullptr ? PyBool_FromLong(traits & Bit) : nullptr;
}

// A question about another type.
template <QuestionCall Call>
PyObject* ask_about_type(PyObject* self, PyObject* argument) {
    PyInterimArgBuilder other;
    const TypeApiHost* host = usable_host();
    if (host == nullptr || fn_conv_py_to_clr_type(argument, &other) == 0) {
        return nullptr;
    }
    const int answer = (host->*Call)(fn_wrapper_handle(self), other.handle);
    return PyErr_Occurred() == nullptr ? PyBool_FromLong(answer) : nullptr;
}

PyObject* is_instance_of_type(PyObject* self, PyObject* argument) {
    const TypeApiHost* host = usable_host();
    VariantArg value;
    PyInterimArgBuilder interim;
    if (host == nullptr) {
        return nullptr;
    }
    if (fn_conv_py_obj_to_clr_gen_handle(argument, &value) == 0) {
        // A member of an enum class is an instance, too: that of its boxed value.
        if (fn_conv_py_to_clr_object(argument, &interim) == 0) {
            return nullptr;
        }
        value.payload = interim.handle;
    }
    const int answer = host->call_IsInstanceOfType(fn_wrapper_handle(self), &value);
    return PyErr_Occurred() == nullptr ? PyBool_FromLong(answer) : nullptr;
}

// Puts wrappers of all handles into a tuple; every handle is consumed, also after a failure.
PyObject* wrap_all(const std::vector<void*>& handles) {
    PyRef types = PyRef::steal(PyTuple_New(static_cast<Py_ssize_t>(handles.size())));
    bool is_complete = static_cast<bool>(types);
    Py_ssize_t index = 0;
    for (void* handle : handles) {
        PyRef type = PyRef::steal(is_complete ? fn_conv_clr_to_py_type(handle) : nullptr);
        if (!is_complete) {
            ExchangeHost::get_instance().free_instance(handle);
        } else if (type) {
            PyTuple_SET_ITEM(types.get(), index++, type.release());
        } else {
            is_complete = false;
        }
    }
    return is_complete ? types.release() : nullptr;
}

PyObject* get_interfaces(PyObject* self, PyObject*) {
    const TypeApiHost* host = usable_host();
    const int count = host != nullptr ? host->call_CountInterfaces(fn_wrapper_handle(self)) : 0;
    if (PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    std::vector<void*> handles(static_cast<std::size_t>(count));
    if (host->call_GetInterfaces(fn_wrapper_handle(self), handles.data(), count) == 0 &&
        PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    return wrap_all(handles);
}

PyMethodDef methods[] = {
    {"is_assignable_from", ask_about_type<&TypeApiHost::call_IsAssignableFrom>, METH_O,
     "is_assignable_from($self, other, /)\n--\n\nWhether a value of the other type can stand where this one "
     "is "
     "declared."},
    {"is_subclass_of", ask_about_type<&TypeApiHost::call_IsSubclassOf>, METH_O,
     "is_subclass_of($self, other, /)\n--\n\nWhether this type derives from the other one."},
    {"is_instance_of_type", is_instance_of_type, METH_O,
     "is_instance_of_type($self, value, /)\n--\n\nWhether a managed object is one of this type; false for "
     "None."},
    {"get_interfaces", get_interfaces, METH_NOARGS,
     "get_interfaces($self, /)\n--\n\nThe interfaces that the type implements, as a tuple."},
    {"get_type", wrapClrObject_get_type, METH_NOARGS,
     "get_type($self, /)\n--\n\nThe type of the type object itself."},
    VELBOR_CLASS_CAST_ROWS(Casts),
    {},
};

PyGetSetDef properties[] = {
    {"name", get_text<&TypeApiHost::get_Name>, nullptr, "The name without its namespace.", nullptr},
    {"full_name", get_text<&TypeApiHost::get_FullName>, nullptr, "The name with its namespace.", nullptr},
    {"namespace", get_text<&TypeApiHost::get_Namespace>, nullptr, "The namespace; None without one.",
     nullptr},
    {"assembly_name", get_text<&TypeApiHost::get_AssemblyName>, nullptr, "The simple name of the assembly.",
     nullptr},
    {"base_type", get_type<&TypeApiHost::get_BaseType>, nullptr,
     "The base; None for interfaces and System.Object.", nullptr},
    {"element_type", get_type<&TypeApiHost::get_ElementType>, nullptr,
     "What an array holds; None for others.", nullptr},
    {"is_abstract", get_trait<IsAbstract>, nullptr, nullptr, nullptr},
    {"is_array", get_trait<IsArray>, nullptr, nullptr, nullptr},
    {"is_class", get_trait<IsClass>, nullptr, nullptr, nullptr},
    {"is_enum", get_trait<IsEnum>, nullptr, nullptr, nullptr},
    {"is_generic_type", get_trait<IsGenericType>, nullptr, nullptr, nullptr},
    {"is_interface", get_trait<IsInterface>, nullptr, nullptr, nullptr},
    {"is_sealed", get_trait<IsSealed>, nullptr, nullptr, nullptr},
    {"is_value_type", get_trait<IsValueType>, nullptr, nullptr, nullptr},
    {},
};

}  // namespace

PyTypeObject wrpPyl_tyds_C08ECFAB_Type = fn_make_reflected_type({
    .name = "velbor.pyreflection.Type",
    .documentation = "A managed type. Two wrappers of one type are equal and hash alike.",
    .base = &wrpPyl_tyds_359C4ED8_Object,
    .methods = methods,
    .properties = properties,
    .number = nullptr,
});

int fn_conv_py_to_clr_type(PyObject* value, PyInterimArgBuilder* out) {
    if (value == Py_None) {
        return 1;
    }
    if (PyObject_TypeCheck(value, &wrpPyl_tyds_C08ECFAB_Type)) {
        return fn_take_interim(fn_new_ref(value), out);
    }
    if (fn_castable_marker(value) == nullptr) {
        return fn_refuse_reflected(value, "Type");
    }
    PyRef type = PyRef::steal(PyObject_CallMethodNoArgs(value, PyWrpIdCastMeth_TypeOf));
    if (type && !PyObject_TypeCheck(type.get(), &wrpPyl_tyds_C08ECFAB_Type)) {
        return fn_refuse_reflected(value, "Type");
    }
    return fn_take_interim(type.release(), out);
}

PyObject* fn_conv_clr_to_py_type(void* handle) {
    return fn_wrap_reflected(handle, &wrpPyl_tyds_C08ECFAB_Type);
}

int fn_trans_py_to_clr_type(PyObject* value, void** out) {
    return fn_take_reflected(value, &wrpPyl_tyds_C08ECFAB_Type, out);
}
