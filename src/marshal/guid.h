#pragma once

#include "startup/cpython.h"

#include <cstdint>

// Guid: sixteen bytes in the managed memory order, which is the `bytes_le` form of `uuid.UUID`.

/// "O&" converter: a `uuid.UUID`.
int fn_conv_py_uuid_to_clr_guid(PyObject* value, std::uint8_t* bytes16);

/// Copies the bytes of a known UUID; a UUID that cannot tell them leaves its error pending.
void fn_conv_py_uuid_to_clr_guid_value(PyObject* value, std::uint8_t* bytes16);

/// A new UUID.
PyObject* fn_conv_clr_guid_to_py_uuid(const void* bytes16);

// Callbacks of the managed side: signatures are a wire format.
void fn_read_py_guid(PyObject* value, std::uint8_t* bytes16);
PyObject* fn_write_py_guid(const void* bytes16);
