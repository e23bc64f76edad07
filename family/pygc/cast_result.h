#pragma once

#include "startup/cpython.h"

/// `velbor.pygc.CastResult`: what a cast gives. It is true when the cast succeeded, holds the status and the
/// value, and unpacks into (succeeded, value).
extern PyTypeObject wrpPyl_tyds_CastResult;

/// A new result. `value` may be null, which stands for no object; a reference of its own is taken.
PyObject* fn_make_cast_result(int status, PyObject* value);
