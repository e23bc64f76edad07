#pragma once

#include "pyreflection/reflection_types.h"
#include "shared/runtime_attachment.h"
#include "wrappers/clr_object.h"
#include "wrappers/results.h"

// What the three wrappers have in common.

/// Null when there is no runtime; otherwise a wrapper of exactly `type`.
inline PyObject* fn_wrap_reflected(void* handle, PyTypeObject* type) {
    return fn_attach_to_runtime() ? fn_conv_clr_clsobj_to_py_clsobj(handle, type) : nullptr;
}

/// The handle of an instance of `type`, borrowed.
inline int fn_take_reflected(PyObject* value, PyTypeObject* type, void** out) {
    if (!PyObject_TypeCheck(value, type)) {
        return 0;
    }
    *out = fn_wrapper_handle(value);
    return 1;
}

/// Fills the target of a converter with a wrapper (a new reference, taken over; null is a failure).
inline int fn_take_interim(PyObject* wrapper, PyInterimArgBuilder* out) {
    if (wrapper == nullptr) {
        return 0;
    }
    out->owner = wrapper;
    out->handle = fn_wrapper_handle(wrapper);
    return 1;
}

/// TypeError of a value that cannot become an argument; 0.
inline int fn_refuse_reflected(PyObject* value, const char* wanted) {
    PyErr_Format(PyExc_TypeError, "can't build %s from '%s'", wanted, Py_TYPE(value)->tp_name);
    return 0;
}

/// What a class of the family carries as castable marker, borrowed: None for a wrapper class, Ellipsis for an
/// enum class; null without an error for any other object.
PyObject* fn_castable_marker(PyObject* maybe_class);

/// A wrapper's own form of `repr`, which also tells the wrapper's type.
PyObject* fn_reflected_repr(PyObject* self);

/// `tp_new` of all three: an instance without a managed object, harmless and useless.
PyObject* fn_reflected_tp_new(PyTypeObject* type, PyObject* args, PyObject* kwargs);

/// What differs between the three type objects.
struct ReflectedTypeParts {
    const char* name;
    const char* documentation;
    PyTypeObject* base;
    PyMethodDef* methods;
    PyGetSetDef* properties;
    PyNumberMethods* number;
};

constexpr PyTypeObject fn_make_reflected_type(const ReflectedTypeParts& parts) {
    PyTypeObject type{};
    type.ob_base.ob_base.ob_refcnt = 1;
    type.tp_name = parts.name;
    type.tp_doc = parts.documentation;
    type.tp_basicsize = sizeof(PyClrObject);
    type.tp_base = parts.base;
    type.tp_methods = parts.methods;
    type.tp_getset = parts.properties;
    type.tp_as_number = parts.number;
    type.tp_new = fn_reflected_tp_new;
    type.tp_init = wrapClrObject_tp_init_fault;
    type.tp_alloc = PyType_GenericAlloc;
    type.tp_dealloc = wrapClrObject_tp_dealloc;
    type.tp_repr = fn_reflected_repr;
    type.tp_str = wrapClrObject_str;
    type.tp_hash = wrapClrObject_hash;
    type.tp_richcompare = wrapClrObject_tp_richcompare;
    return type;
}
