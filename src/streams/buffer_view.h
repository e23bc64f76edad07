#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

#include <cstddef>
#include <cstdint>

/// Memory of the managed side as an object with the buffer protocol, so that Python code works on it without
/// a copy. Valid until the call that lent the memory returns; nothing tracks who still holds an export.
struct PyShlBufferView {
    PyObject ob_base;
    void* buf;
    std::int64_t len;       // bytes
    std::int32_t readonly;  // 1: Python may only read
};

static_assert(offsetof(PyShlBufferView, buf) == sizeof(PyObject));
static_assert(offsetof(PyShlBufferView, len) == sizeof(PyObject) + 8);
static_assert(offsetof(PyShlBufferView, readonly) == sizeof(PyObject) + 16);

/// "velbor.voxlar._wrpgen._interop._ShlBufferView". Must be ready before the first view.
extern PyTypeObject wrpPye_tyds_ShlBufferView;

/// A new view; `readonly` is 1 or 0.
PyObject* fn_create_shlbuffer_view(void* buf, long len, int readonly);

// Callbacks by which managed code borrows the bytes of a Python object. It provides the memory of the
// Py_buffer itself, having asked for the size. The signatures are a wire format.

/// 80, whatever Python says: tied to the headers that the module is built with.
std::size_t fn_get_sizeof_py_byffer();

/// Clears the memory of one Py_buffer.
void fn_create_py_byffer(Py_buffer* storage);

/// Acquires the bytes. 1, or 0 with an error; when `out->buffer_held` is set the view must be released, on
/// failure too.
int fn_read_py_buffer_view(PyObject* object, Py_buffer* storage, PyBytesArg* out);

void fn_release_py_buffer(Py_buffer* storage);
