#pragma once

#include "startup/cpython.h"

#include <cstdint>

// Callbacks by which a managed Stream works on a Python file object, the first argument of each. The
// signatures and results are a wire format. The caller holds the GIL; the memory is its own and may be looked
// at during the call only. An error result means that a Python exception is pending.

/// Bytes written; 0 for the None of a stream that would block; -1 on an error.
int fn_clbk_rawio_write(PyObject* stream, const void* data, int count);

/// The low byte of `value`; results as above.
int fn_clbk_rawio_write_byte(PyObject* stream, int value);

/// Bytes read; 0 for None; -1 on an error.
int fn_clbk_rawio_read(PyObject* stream, void* data, int count);

/// The byte; -1 at the end; -2 on an error, and OSError for None.
int fn_clbk_rawio_readbyte(PyObject* stream);

/// The new position; -1 on an error.
std::int64_t fn_clbk_rawio_seek(PyObject* stream, std::int64_t offset, int whence);

/// 0, or -1 on an error.
int fn_clbk_rawio_flush(PyObject* stream);

/// Runs also with an error in flight, which it leaves alone; its own goes to the unraisable hook.
void fn_clbk_rawio_close(PyObject* stream);

/// 1 or 0, always 0 for a closed stream; -1 on an error.
int fn_clbk_rawio_readable(PyObject* stream);
int fn_clbk_rawio_writable(PyObject* stream);
int fn_clbk_rawio_seekable(PyObject* stream);

/// The position; -1 on an error.
std::int64_t fn_clbk_rawio_tell(PyObject* stream);

/// The length, found by seeking to the end and back; -1 on an error, -2 for a stream that cannot seek, -3 for
/// a closed one.
std::int64_t fn_clbk_rawio_length(PyObject* stream);
