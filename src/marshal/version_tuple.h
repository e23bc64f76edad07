#pragma once

#include "marshal/records.h"

/// "O&" converter: a tuple of two to four integers that are not negative, or None for a null version.
int fn_conv_py_tuple_to_clr_version(PyObject* value, PySysVersionArg* arg);

/// A new tuple of the version's components, or None.
PyObject* fn_conv_clr_version_to_py_tuple(const PySysVersionArg& arg);
