#pragma once

#include "startup/cpython.h"

/// `len()` works on the object: its sequence or mapping table has a length slot.
inline bool PyShlObject_HasLength(PyObject* object) {
    const PyTypeObject* type = Py_TYPE(object);
    return (type->tp_as_sequence != nullptr && type->tp_as_sequence->sq_length != nullptr) ||
           (type->tp_as_mapping != nullptr && type->tp_as_mapping->mp_length != nullptr);
}

/// `iter()` can work on the object: it has `tp_iter` or is a sequence.
inline bool PyShlObject_HasIter(PyObject* object) {
    return Py_TYPE(object)->tp_iter != nullptr || PySequence_Check(object) != 0;
}

/// The object is a sequence that knows its length.
inline bool has_sized_sequence(PyObject* object) {
    return PySequence_Check(object) != 0 && Py_TYPE(object)->tp_as_sequence->sq_length != nullptr;
}

/// The object is exactly a `list` or a `tuple`, whose items lie in an array.
inline bool is_exact_list_or_tuple(PyObject* object) {
    return PyList_CheckExact(object) || PyTuple_CheckExact(object);
}
