#pragma once

#include "exchange/text.h"

// Errors across the boundary, both ways. All run with the GIL held, on the thread of the call; the managed
// side has these functions as callbacks, so their signatures are a wire format.

/// Raises RuntimeError for a managed exception. Takes over one reference to each text; null reads as
/// "<unknown>".
void on_clr_exception(PyObject* kind, PyObject* message);

/// Takes the pending Python error and makes a text of it: the formatted traceback where that can be had. 0:
/// `*text` owns a reference, for the caller to drop, and `value` points into it. -1: nothing was made, both
/// are untouched. No error is pending afterwards, whatever happened.
int fn_catch_and_clear_py_error(PyObject** text, PyStringArg* value);

/// A `str` from UTF-16, made while an exception is being reported: a failure is written as unraisable and
/// gives null without an error.
PyObject* fn_conv_clr_string_to_py_unraisable(const char16_t* text, int length);
