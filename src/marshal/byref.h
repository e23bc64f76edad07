#pragma once

#include "marshal/records.h"

// A `ref` or `out` parameter is a Python list: what stands at index 0, if anything, goes in, and the result
// goes there.

/// "O&" converter: an exact `list`. An empty list, or None at index 0, leaves the target as it is.
int fn_conv_py_parbyref_to_clr_parbyref(PyObject* value, PyParamByRef* arg);

/// Puts an out-value at index 0 of the caller's list. 0 with `value` taken over. -1 with an error: an empty
/// list then has not taken `value`, which stays the caller's; a list with an item always takes it.
int fn_push_parbyref_outvalue(PyObject* list, PyObject* value);
