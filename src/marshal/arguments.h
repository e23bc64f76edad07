#pragma once

#include "startup/cpython.h"

/// True, with TypeError set, when a hand-written wrapper got fewer than `min` or more than `max` arguments.
/// `name` is the function's, or null.
bool fn_check_args_count_out_of_range(Py_ssize_t given, const char* name, Py_ssize_t min, Py_ssize_t max);
