#pragma once

#include "exchange/exception_bridge.h"
#include "exchange/text.h"
#include "marshal/records.h"

#include <cstdint>

// Strings. On the way in the record points at the characters inside the `str`: nothing is copied or
// transcoded.

/// What the converter below says to anything but a `str`.
int fn_conv_py_other_to_clr_string(PyObject* value, PyStringArg* arg);

/// "O&" converter: a `str`, or None for a null string.
inline int fn_conv_py_string_to_clr_string(PyObject* value, PyStringArg* arg) {
    if (PyUnicode_Check(value)) [[likely]] {
        return fn_conv_py_string_to_clr_string_value(value, arg);
    }
    return fn_conv_py_other_to_clr_string(value, arg);
}

/// "O&" converter for a file name: a `str`, `bytes` or a path-like object, or None. The record may own a
/// `str`, see PyEphStrArgBuilder.
int fn_conv_py_strorpath_to_clr_string(PyObject* value, PyEphStrArg* arg);

// Callbacks of the managed side: signatures are a wire format ---------------------------------------------

/// The record of a known `str`.
int fn_read_py_string(PyObject* value, PyStringArg* arg);

/// A new `str` from UTF-16 units; None for a length of -1.
PyObject* fn_conv_clr_string_to_py_string(const char16_t* text, int length);

/// A holder of one pointer, to a zero-terminated copy of the units. The holder is the caller's, who gives it
/// to `free`; the text goes with it. Throws std::logic_error for a null text with a length, std::length_error
/// for a negative length.
void** fn_create_u16_buffer(const char16_t* text, int length);
