#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

/// "O&" converter of a System.Object argument: classifies any Python object (`kind`) and points at it
/// (`payload`: the object itself, borrowed, or the handle of a wrapper). 1, or 0 with an error; the record is
/// not to be used after a failure.
///
/// The tests run in a fixed order and the first hit decides. An error inside a test that answers "yes or
/// error" counts as a hit and stays pending: the caller finds it after the managed call.
int fn_conv_py_variant_to_clr_variant(PyObject* value, VariantArg* arg);
