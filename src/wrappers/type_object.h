#pragma once

#include "startup/cpython.h"
#include "wrappers/clr_object.h"

// Static type objects of wrappers, made at compile time.

/// What distinguishes one wrapper type from another. A null member leaves its slot empty.
struct WrapperTypeParts {
    const char* name;  // dotted
    PyMethodDef* methods = nullptr;
    PyGetSetDef* properties = nullptr;
    PyTypeObject* base = nullptr;
    newfunc create = nullptr;  // tp_new
    initproc init = wrapClrObject_tp_init_fault;
    getiterfunc iterate = nullptr;          // tp_iter
    PySequenceMethods* sequence = nullptr;  // tp_as_sequence
};

namespace wrapper_type_detail {

constexpr PyTypeObject common(const WrapperTypeParts& parts) {
    PyTypeObject type{};
    type.ob_base.ob_base.ob_refcnt = 1;
    type.tp_name = parts.name;
    type.tp_basicsize = sizeof(PyClrObject);
    type.tp_methods = parts.methods;
    type.tp_getset = parts.properties;
    type.tp_base = parts.base;
    type.tp_new = parts.create;
    type.tp_init = parts.init;
    type.tp_iter = parts.iterate;
    type.tp_as_sequence = parts.sequence;
    // tp_flags stays 0: no subclasses in Python. tp_doc stays empty.
    return type;
}

}  // namespace wrapper_type_detail

/// The type object of a class or an interface of the wrapped API.
constexpr PyTypeObject fn_make_class_type(const WrapperTypeParts& parts) {
    PyTypeObject type = wrapper_type_detail::common(parts);
    type.tp_dealloc = wrapClrObject_tp_dealloc;
    type.tp_repr = wrapClrObject_str;
    type.tp_hash = wrapClrObject_hash;
    type.tp_richcompare = wrapClrObject_tp_richcompare;
    type.tp_alloc = PyType_GenericAlloc;
    return type;
}

/// The type object of a struct of the wrapped API.
constexpr PyTypeObject fn_make_struct_type(const WrapperTypeParts& parts) {
    PyTypeObject type = wrapper_type_detail::common(parts);
    type.tp_dealloc = wrapClrStruct_tp_dealloc;
    type.tp_repr = wrapClrStruct_str;
    type.tp_hash = wrapClrStruct_hash;
    type.tp_richcompare = wrapClrStruct_tp_richcompare;
    type.tp_alloc = PyType_GenericAlloc;
    return type;
}

/// The type object of an interop or a generic wrapper: it prints in Python's own form.
constexpr PyTypeObject fn_make_interop_type(const WrapperTypeParts& parts) {
    PyTypeObject type = wrapper_type_detail::common(parts);
    type.tp_dealloc = wrapClrObject_tp_dealloc;
    type.tp_hash = wrapClrObject_hash;
    type.tp_richcompare = wrapClrObject_tp_richcompare;
    return type;
}

/// `tp_new` of a wrapper type: nothing is made while the type cannot be used (`Invalidate` raises), and the
/// handle starts as null. The object is of fixed size and unknown to the cycle collector, so
/// PyType_GenericNew would do no more than this, in three times the instructions.
template <bool (*Invalidate)()>
PyObject* fn_wrapper_tp_new(PyTypeObject* type, PyObject*, PyObject*) {
    if (Invalidate()) {
        return nullptr;
    }
    auto* self = PyObject_New(PyClrObject, type);
    if (self == nullptr) [[unlikely]] {
        return nullptr;
    }
    self->handle = nullptr;
    return &self->ob_base;
}
