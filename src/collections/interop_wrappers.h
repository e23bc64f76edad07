#pragma once

#include <string>

#include "startup/cpython.h"

// The wrapper types of the module `velbor.voxlar._wrpgen._interop` for the managed collection interfaces and
// base classes. All are reference wrappers; none can be constructed from Python.

extern PyTypeObject wrpPye_tyds_IDisposableWrapper;
extern PyTypeObject wrpPye_tyds_IterWrapper;
extern PyTypeObject wrpPye_tyds_IterableWrapper;
extern PyTypeObject wrpPye_tyds_IColWrapper;
extern PyTypeObject wrpPye_tyds_IListWrapper;
extern PyTypeObject wrpPye_tyds_RoColBaseWrapper;
extern PyTypeObject wrpPye_tyds_ColBaseWrapper;
extern PyTypeObject wrpPye_tyds_ArrayWrapper;
extern PyTypeObject wrpPye_tyds_ArrListWrapper;

/// `__enter__` and `__exit__` of every disposable wrapper. The second disposes the managed object, keeps the
/// handle and returns None, so an exception inside the block goes on.
PyObject* wrpPye_bltp_idisposable_enter(PyObject* self, PyObject* ignored);
PyObject* wrpPye_bltp_idisposable_exit(PyObject* self, PyObject* arguments);

/// `tp_iter` of an enumerator: itself.
PyObject* wrpPye_bltp_iter_iter(PyObject* self);

/// `tp_iternext` of the untyped enumerator; null with StopIteration at the end.
PyObject* wrpPye_bltp_iter_iternext(PyObject* self);

/// `tp_iter` of every untyped enumerable: a new enumerator.
PyObject* wrpPye_bltp_iterable_iter(PyObject* self);

// Validity of each type. `invalidate` raises the stored message and gives true when the type cannot be used;
// `is_not_valid` is the same question asked by another type: it copies the message and raises nothing.

#define VELBOR_INTEROP_KINDS(X) \
    X(idisposable) X(iter) X(iterable) X(icol) X(ilist) X(array) X(arrlist) X(colbase) X(rocolbase)

#define VELBOR_DECLARE_VALIDITY(kind)       \
    bool wrpPye_uafn_##kind##_invalidate(); \
    bool wrpPye_bltp_##kind##_is_not_valid(std::string& message);
VELBOR_INTEROP_KINDS(VELBOR_DECLARE_VALIDITY)
#undef VELBOR_DECLARE_VALIDITY
