#pragma once

#include "startup/cpython.h"

#include <cstddef>
#include <cstdint>

// Text in its two crossing forms: the characters of a str in place on the way in, UTF-16 units on the way
// out.

/// A string argument: the characters inside a Python `str`, borrowed for the length of the call. Both sides
/// know this layout.
struct PyStringArg {
    std::int32_t length = -1;     // characters, not bytes; -1 for a null string
    std::int32_t char_size = 0;   // 1, 2 or 4 bytes a character (Latin-1, UCS-2, UCS-4)
    const void* chars = nullptr;  // the reader goes by `length`, not by a terminator
};

static_assert(sizeof(PyStringArg) == 16 && alignof(PyStringArg) == 8);
static_assert(offsetof(PyStringArg, length) == 0);
static_assert(offsetof(PyStringArg, char_size) == 4);
static_assert(offsetof(PyStringArg, chars) == 8);

/// Points `arg` into a known `str` whose characters are not all ASCII. 1, or 0 with TypeError.
int fn_conv_py_wide_string_to_clr_string_value(PyObject* value, PyStringArg* arg);

/// Points `arg` into a known `str`. 1, or 0 with TypeError. Names are ASCII almost always, and those lie
/// right behind the object's head.
inline int fn_conv_py_string_to_clr_string_value(PyObject* value, PyStringArg* arg) {
    if (PyUnicode_IS_COMPACT_ASCII(value)) [[likely]] {
        arg->chars = reinterpret_cast<const PyASCIIObject*>(value) + 1;
        arg->char_size = 1;
        arg->length = static_cast<std::int32_t>(PyUnicode_GET_LENGTH(value));
        return 1;
    }
    return fn_conv_py_wide_string_to_clr_string_value(value, arg);
}

/// Decodes `units` little-endian UTF-16 units; no byte-order mark is looked for. A new `str`, or null with
/// the codec's error on an unpaired surrogate.
PyObject* fn_conv_clr_string_to_py_string_value(const char* utf16, std::int64_t units);
