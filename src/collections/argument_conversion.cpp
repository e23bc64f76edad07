#include "collections/argument_conversion.h"

#include "collections/python_forms.h"
#include "wrappers/clr_object.h"
#include "wrappers/markers.h"

namespace {

/// Values of `VariantArg::kind` in the reference form.
constexpr int kManagedReference = 0;
constexpr int kPythonObject = 2;
constexpr int kPythonSequence = 3;

int take(VariantArg* out, int kind, void* payload) {
    out->kind = kind;
    out->payload = payload;
    return 1;
}

}  // namespace

bool fn_take_iterator(PyObject* object, VariantArg* out) {
    return PyIter_Check(object) && take(out, kPythonObject, object);
}

bool fn_take_iterable(PyObject* object, VariantArg* out) {
    return PyShlObject_HasIter(object) && take(out, kPythonObject, object);
}

bool fn_take_sized_iterable(PyObject* object, VariantArg* out) {
    return PyShlObject_HasLength(object) && PyShlObject_HasIter(object) && take(out, kPythonObject, object);
}

bool fn_take_list(PyObject* object, VariantArg* out) {
    if (PyList_Check(object)) {
        return take(out, kPythonObject, object);
    }
    return has_sized_sequence(object) && take(out, kPythonSequence, object);
}

int fn_refuse_argument(const char* name, PyObject* object) {
    PyErr_Format(PyExc_TypeError, "can't build %s value from '%s'", name, Py_TYPE(object)->tp_name);
    return 0;
}

int fn_convert_interface_argument(const InterfaceArgument& argument, PyObject* object, VariantArg* out) {
    if (object == Py_None) {
        return take(out, kManagedReference, nullptr);
    }
    if (Py_TYPE(object) == argument.type) {
        return take(out, kManagedReference, fn_wrapper_handle(object));
    }
    int tag = 0;
    if (fn_is_this_module_clr_instance(object, &tag) &&
        fn_contains_additional_ifc_markattr(object, argument.type)) {
        return take(out, tag, fn_wrapper_handle(object));
    }
    if (fn_conv_py_obj_to_clr_gen_not_null_handle(object, out) != 0) {
        if (argument.invalidate()) {
            return 0;
        }
        const int fits = argument.is_assignable(out);
        if (PyErr_Occurred() != nullptr) {
            return 0;
        }
        return fits != 0 ? 1 : fn_refuse_argument(argument.name, object);
    }
    if (argument.take_python_form != nullptr && argument.take_python_form(object, out)) {
        return 1;
    }
    return fn_refuse_argument(argument.name, object);
}

int fn_convert_class_argument(const ClassArgument& argument, PyObject* object, VariantArg* out) {
    if (object == Py_None) {
        return take(out, kManagedReference, nullptr);
    }
    if (argument.type != nullptr && PyObject_TypeCheck(object, argument.type)) {
        return take(out, kManagedReference, fn_wrapper_handle(object));
    }
    void* handle = nullptr;
    if (fn_conv_py_obj_to_clr_refobj_not_null_handle(object, &handle) != 0) {
        if (argument.invalidate()) {
            return 0;
        }
        const int fits = argument.is_assignable(handle);
        if (PyErr_Occurred() != nullptr) {
            return 0;
        }
        return fits != 0 ? take(out, kManagedReference, handle) : fn_refuse_argument(argument.name, object);
    }
    return fn_take_list(object, out) ? 1 : fn_refuse_argument(argument.name, object);
}

int fn_convert_iterable_argument(const IterableArgument& argument, PyObject* object, VariantArg* out) {
    if (object == Py_None) {
        return take(out, kManagedReference, nullptr);
    }
    for (PyTypeObject* const* type = argument.types; *type != nullptr; ++type) {
        if (Py_TYPE(object) == *type) {
            return take(out, kManagedReference, fn_wrapper_handle(object));
        }
    }
    int tag = 0;
    if (!fn_is_instance_has_host_markattr(object, &tag) && fn_take_iterable(object, out)) {
        return 1;
    }
    return fn_refuse_argument("IEnumerable", object);
}
