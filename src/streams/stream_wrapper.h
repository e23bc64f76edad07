#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"
#include "wrappers/clr_object.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// A managed stream as a bytes-oriented file object.
struct PyShStreamObject {
    PyClrObject wrapper;

    /// Set by `close` and `__exit__`, and by nothing else: no state of the managed stream is asked for it.
    std::int32_t closed_flag;
};

static_assert(offsetof(PyShStreamObject, closed_flag) == sizeof(PyClrObject));
static_assert(sizeof(PyShStreamObject) == 32);

/// "velbor.voxlar._wrpgen._interop._StreamWrapper".
extern PyTypeObject wrpPye_tyds_StreamWrapper;

/// Clears the fields that a stream has beyond a plain wrapper.
void wrpPye_init_fields_stream(PyShStreamObject* self);

/// True, with TypeError set, when managed streams cannot be used.
bool wrpPye_uafn_stream_invalidate();

/// The same question asked by another type: true with the message, and no error set.
bool wrpPye_bltp_stream_is_not_valid(std::string& message);

/// "O&" converter of a Stream parameter: None, a wrapper of a managed stream, or a Python file object that
/// derives from `io.RawIOBase`, `io.BufferedIOBase` or `velbor.pycore.BytesAsStream` (kind 2, borrowed). 1,
/// or 0 with an error.
int wrpPye_conv_py_to_clr_stream(PyObject* value, VariantArg* arg);
