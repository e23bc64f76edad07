#pragma once

#include "startup/cpython.h"

#include <cstddef>

/// A Python object that stands for one managed object, or for one managed holder of a struct value.
///
/// The layout is a contract between the extension modules of the family: code of one module reads the handle
/// of another module's wrapper by its place, once the marker attributes have told that it is a wrapper. There
/// is no instance dictionary, no list of weak references and nothing for the cycle collector.
struct PyClrObject {
    PyObject ob_base;

    /// The one managed handle that this wrapper owns, freed with it; null between `tp_new` and a successful
    /// `tp_init`. Opaque: it is only passed to managed entry points.
    void* handle;
};

static_assert(offsetof(PyClrObject, handle) == sizeof(PyObject));
static_assert(sizeof(PyClrObject) == sizeof(PyObject) + sizeof(void*));

/// The handle field of an object that is known to be a wrapper.
[[nodiscard]] inline void*& fn_wrapper_handle(PyObject* wrapper) {
    return reinterpret_cast<PyClrObject*>(wrapper)->handle;
}

// The slots that all wrapper types share: `wrapClrObject_*` for managed reference types, `wrapClrStruct_*`
// for managed value types. The two sets differ in the managed entry points that they call. No slot tests the
// handle for null; it goes to managed code as it is.

/// Frees the handle, if there is one, and the object.
void wrapClrObject_tp_dealloc(PyObject* self);
void wrapClrStruct_tp_dealloc(PyObject* self);

/// `tp_init` of a type without a public constructor: always TypeError, -1.
int wrapClrObject_tp_init_fault(PyObject* self, PyObject* args, PyObject* kwargs);

/// The managed hash code, -1 made -2; -1 with an error pending.
Py_hash_t wrapClrObject_hash(PyObject* self);
Py_hash_t wrapClrStruct_hash(PyObject* self);

/// The managed text, as a new reference. An exception that is pending on entry is pending again on return.
PyObject* wrapClrObject_str(PyObject* self);
PyObject* wrapClrStruct_str(PyObject* self);

/// Equality by the managed `Equals`; NotImplemented for every ordering and for what is no wrapper and not
/// None.
PyObject* wrapClrObject_tp_richcompare(PyObject* self, PyObject* other, int operation);
PyObject* wrapClrStruct_tp_richcompare(PyObject* self, PyObject* other, int operation);

/// Method `get_type`: a wrapper of the managed System.Type.
PyObject* wrapClrObject_get_type(PyObject* self, PyObject* ignored);
PyObject* wrapClrStruct_get_type(PyObject* self, PyObject* ignored);
