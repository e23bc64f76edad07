#pragma once

#include "startup/cpython.h"

// Callbacks by which managed code holds Python objects: signatures are a wire format. The caller holds the
// GIL.

/// None, as a new reference.
PyObject* fn_get_py_none();

/// Adds a reference; null is allowed.
void fn_xinc_ref(PyObject* object);

/// Drops a reference; null is allowed.
void fn_xdec_ref(PyObject* object);
