#pragma once

#include "startup/cpython.h"
#include "streams/stream_wrapper.h"

#include <algorithm>
#include <limits>

/// The part of a size that one managed call can carry.
[[nodiscard]] inline int fn_stream_chunk(Py_ssize_t size) {
    return static_cast<int>(std::min<Py_ssize_t>(size, std::numeric_limits<int>::max()));
}

/// Reads to the end, or up to `limit` bytes unless that is negative: a new `bytes`, or null with an error.
PyObject* fn_stream_read_bytes_impl(PyShStreamObject* self, Py_ssize_t limit);

/// Reads one line with its line feed, or up to `limit` bytes of it unless that is negative: a new `bytes`,
/// empty at the end, or null with an error. Reads ahead and seeks back: the stream must be able to seek.
PyObject* fn_stream_read_line_impl(PyShStreamObject* self, Py_ssize_t limit);
