#include "exchange/exchange_host.h"
#include "pyreflection/reflection_types.h"
#include "pyreflection/wrapping.h"
#include "shared/api_host.h"
#include "startup/identifiers.h"
#include "wrappers/casts.h"

namespace {

#define VELBOR_OBJECT_API(X)               \
    VELBOR_API_CASTS(X, const VariantArg*) \
    X(call_ReferenceEquals, int, (const VariantArg* left, const VariantArg* right), (left, right))

VELBOR_API_HOST(ObjectApiHost, "Velbor.WrpGen.Reflection.ObjectApi", VELBOR_OBJECT_API);

// Any wrapper is an object, one of a struct by its boxed value; so all casts take records.
using Casts = StructCasts<ObjectApiHost, wrpPyl_tyds_359C4ED8_Object, fn_invalidate_api<ObjectApiHost>>;

bool take_wrapper(PyObject* value, VariantArg* record) {
    return fn_conv_py_obj_to_clr_gen_handle(value, record) != 0 || fn_refuse_reflected(value, "Object") != 0;
}

PyObject* reference_equals(PyObject*, PyObject* args) {
    PyObject *left = nullptr, *right = nullptr;
    VariantArg left_record, right_record;
    if (PyArg_ParseTuple(args, "OO:reference_equals", &left, &right) == 0 ||
        !take_wrapper(left, &left_record) || !take_wrapper(right, &right_record) ||
        fn_invalidate_api<ObjectApiHost>()) {
        return nullptr;
    }
    const int answer = ObjectApiHost::get_instance().call_ReferenceEquals(&left_record, &right_record);
    return PyErr_Occurred() == nullptr ? PyBool_FromLong(answer) : nullptr;
}

PyMethodDef methods[] = {
    {"reference_equals", reference_equals, METH_VARARGS | METH_STATIC,
     "reference_equals(left, right, /)\n--\n\nWhether two wrappers stand for the very same managed object."},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, "get_type($self, /)\n--\n\nThe object's own type."},
    VELBOR_CLASS_CAST_ROWS(Casts),
    {},
};

}  // namespace

PyTypeObject wrpPyl_tyds_359C4ED8_Object = fn_make_reflected_type({
    .name = "velbor.pyreflection.Object",
    .documentation = "Any managed object. Equality, hash and text are those of the object.",
    .base = nullptr,
    .methods = methods,
    .properties = nullptr,
    .number = nullptr,
});

int fn_conv_py_to_clr_object(PyObject* value, PyInterimArgBuilder* out) {
    if (value == Py_None) {
        return 1;
    }
    VariantArg record;
    if (fn_conv_py_obj_to_clr_gen_not_null_handle(value, &record) != 0) {
        if (record.kind == 0) {
            return fn_take_interim(fn_new_ref(value), out);
        }
        if (!fn_attach_to_runtime()) {
            return 0;
        }
        void* boxed = ExchangeHost::get_instance().box_stc_target(record.payload);
        return boxed != nullptr ? fn_take_interim(fn_conv_clr_to_py_object(boxed), out) : 0;
    }
    if (fn_castable_marker(reinterpret_cast<PyObject*>(Py_TYPE(value))) == Py_Ellipsis) {
        return fn_conv_py_to_clr_enum(value, out);
    }
    return fn_refuse_reflected(value, "Object");
}

PyObject* fn_conv_clr_to_py_object(void* handle) {
    return fn_wrap_reflected(handle, &wrpPyl_tyds_359C4ED8_Object);
}

int fn_trans_py_to_clr_object(PyObject* value, void** out) {
    return fn_take_reflected(value, &wrpPyl_tyds_359C4ED8_Object, out);
}
