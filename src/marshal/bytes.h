#pragma once

#include "marshal/records.h"

// Byte arrays: in, the bytes of an exported buffer, which stays exported during the call; out, a `bytearray`.

/// "O&" converter: any exporter of a contiguous buffer, or None for a null array.
int fn_conv_py_bytes_to_clr_bytes(PyObject* value, PyBytesArgBuilder* builder);

/// The same over the builder's two parts, which may lie apart.
int fn_conv_py_bytes_to_clr_bytes_value(PyObject* value, Py_buffer* view, PyBytesArg* arg);

/// Acquires the buffer and checks it. 1, or 0 with BufferError. Once `arg->buffer_held` is 1 whoever holds
/// the view releases it, on failure too.
int fn_read_py_buffer(PyObject* value, Py_buffer* view, PyBytesArg* arg);

/// Callback of the managed side: a new `bytearray` with a copy of the bytes; None for a length of -1.
PyObject* fn_conv_clr_bytes_to_py_bytes(const std::uint8_t* bytes, int length);
