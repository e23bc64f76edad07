#pragma once

#include "marshal/records.h"

/// "O&" converter around the record's own: None leaves `has_value` at 0 and the target as it is.
int fn_conv_py_nullable_to_clr_nullable(PyObject* value, PyNullableArg* arg);

/// None, as a new reference.
[[nodiscard]] inline PyObject* fn_py_return_none() {
    return fn_new_ref(Py_None);
}
