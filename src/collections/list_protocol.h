#pragma once

#include "startup/cpython.h"

#include "collections/list_operations.h"

/// The Python list protocol over a managed collection, written once for all collection wrappers.
///
/// Nothing is cached and nothing is atomic: each element is a crossing of its own, and what was written
/// before a failure stays written. Results that hold several elements are Python lists. All functions need
/// the GIL; those that return an object return a new reference, or null with an error set, those that return
/// an int 0 or -1.
namespace list_protocol {

/// `x[key]` for an index or a slice; a slice gives a list.
PyObject* subscript(const ListOperations& list, void* handle, PyObject* key);

/// `x[key] = value`, or `del x[key]` when `value` is null. A slice never changes the length when it is
/// assigned.
int assign_subscript(const ListOperations& list, void* handle, PyObject* key, PyObject* value);

/// `x[index] = value` or `del x[index]` for an index as it is.
int assign_item(const ListOperations& list, void* handle, Py_ssize_t index, PyObject* value);

/// `x + other` as a list.
PyObject* concat(const ListOperations& list, void* handle, PyObject* other);

/// `x * times` as a list; a negative number counts as 0.
PyObject* repeat(const ListOperations& list, void* handle, Py_ssize_t times);

/// All elements as a list.
PyObject* copy(const ListOperations& list, void* handle);

/// Appends each element of `other`; false with an error.
bool extend(const ListOperations& list, void* handle, PyObject* other);

/// `x + other` for a collection without element access: walks `self` as Python's `for` does.
PyObject* concat_by_iteration(PyObject* self, Py_ssize_t length, PyObject* other);

/// `x * times` for a collection without element access.
PyObject* repeat_by_iteration(PyObject* self, Py_ssize_t length, Py_ssize_t times);

/// The arguments of `sort(key=None, reverse=False)`; a sorting key is refused. False with an error.
bool parse_sort_arguments(PyObject* arguments, PyObject* keywords, int& descending);

}  // namespace list_protocol
