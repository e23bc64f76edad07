#pragma once

#include "startup/cpython.h"

/// `velbor.pycore.BytesAsStream`: a raw binary file over the memory of a bytes-like object. Reading and
/// writing go to that memory directly; it never grows. The object's buffer is held until `close` or the end
/// of the stream.
extern PyTypeObject wrpPyl_tyds_BytesAsStream;
