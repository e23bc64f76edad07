#include "pyreflection/wrapping.h"

#include "startup/identifiers.h"
#include "startup/py_ref.h"

PyObject* fn_castable_marker(PyObject* maybe_class) {
    if (!PyType_Check(maybe_class)) {
        return nullptr;
    }
    PyObject* own = fn_type_own_dict(reinterpret_cast<PyTypeObject*>(maybe_class));
    return own != nullptr ? PyDict_GetItem(own, PyWrpIdMarkattr_VelborClrCastableObj) : nullptr;
}

PyObject* fn_reflected_repr(PyObject* self) {
    const PyRef text = PyRef::steal(wrapClrObject_str(self));
    return text ? PyUnicode_FromFormat("<%s: %U>", Py_TYPE(self)->tp_name, text.get()) : nullptr;
}

PyObject* fn_reflected_tp_new(PyTypeObject* type, PyObject* args, PyObject* kwargs) {
    PyObject* self = PyType_GenericNew(type, args, kwargs);
    if (self != nullptr) {
        fn_wrapper_handle(self) = nullptr;
    }
    return self;
}
