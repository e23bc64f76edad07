#pragma once

#include "startup/cpython.h"

#include <cstdint>
#include <limits>
#include <type_traits>

// Scalars. The converters are strict: an Int32 takes an `int`, not a `bool`, a `float` or an object with
// `__index__`. Each has the form of an "O&" converter: 1 with the target written, 0 with an error set and the
// target untouched.

// Integers ------------------------------------------------------------------------------------------------

/// What counts as an integer: 1 for an exact `int`, 0 for `bool`, for what is no `int` and for the members of
/// `IntEnum` and other subclasses, -1 with an error set.
int PyShLong_Check(PyObject* value);

int fn_conv_py_long_to_clr_int8(PyObject* value, std::int8_t* out);
int fn_conv_py_ulong_to_clr_uint8(PyObject* value, std::uint8_t* out);
int fn_conv_py_long_to_clr_int16(PyObject* value, std::int16_t* out);
int fn_conv_py_ulong_to_clr_uint16(PyObject* value, std::uint16_t* out);
/// What the converter below does with anything but a plain number.
int fn_conv_py_other_to_clr_int32(PyObject* value, std::int32_t* out);

/// Keeps the low 32 bits of a value that fits 64: no range test of its own.
inline int fn_conv_py_long_to_clr_int32(PyObject* value, std::int32_t* out) {
    if (PyLong_CheckExact(value)) [[likely]] {
        // -1 may be an error: then the number is read once more, slowly.
        if (const long number = PyLong_AsLong(value); number != -1) [[likely]] {
            *out = static_cast<std::int32_t>(number);
            return 1;
        }
        PyErr_Clear();
    }
    return fn_conv_py_other_to_clr_int32(value, out);
}

/// Keeps the low 32 bits, as its signed neighbour.
int fn_conv_py_ulong_to_clr_uint32(PyObject* value, std::uint32_t* out);
int fn_conv_py_long_to_clr_int64(PyObject* value, std::int64_t* out);
int fn_conv_py_ulong_to_clr_uint64(PyObject* value, std::uint64_t* out);

/// An integer in the sense of `__index__`.
int fn_conv_py_obj_to_ssize_t(PyObject* value, Py_ssize_t* out);

/// The first item of an argument tuple; None leaves `*out` as it is.
int fn_conv_py_optional_to_ssize_t(PyObject* args, Py_ssize_t* out);

// Range tests ---------------------------------------------------------------------------------------------

/// The word and the exception class of a range message about an index.
struct IndexSubjTrait {
    static constexpr const char* word = "index";
    static PyObject* exception() { return PyExc_IndexError; }
};

/// The same about any other value.
struct CountSubjTrait {
    static constexpr const char* word = "value";
    static PyObject* exception() { return PyExc_OverflowError; }
};

/// The managed name of an integer type.
template <typename T>
struct clr_int_type_name;
template <>
struct clr_int_type_name<std::int8_t> {
    static constexpr const char* value = "SByte";
};
template <>
struct clr_int_type_name<std::uint8_t> {
    static constexpr const char* value = "Byte";
};
template <>
struct clr_int_type_name<std::int16_t> {
    static constexpr const char* value = "Int16";
};
template <>
struct clr_int_type_name<std::uint16_t> {
    static constexpr const char* value = "UInt16";
};
template <>
struct clr_int_type_name<std::int32_t> {
    static constexpr const char* value = "Int32";
};
template <>
struct clr_int_type_name<std::uint32_t> {
    static constexpr const char* value = "UInt32";
};
template <>
struct clr_int_type_name<std::int64_t> {
    static constexpr const char* value = "Int64";
};
template <>
struct clr_int_type_name<std::uint64_t> {
    static constexpr const char* value = "UInt64";
};

template <typename Subject, typename Name>
void fn_raise_too_small() {
    PyErr_Format(Subject::exception(), "%s too small to convert to '%s'", Subject::word, Name::value);
}

template <typename Subject, typename Name>
void fn_raise_too_big() {
    PyErr_Format(Subject::exception(), "%s too big to convert to '%s'", Subject::word, Name::value);
}

/// True, with the subject's error set, when a signed value does not fit the managed type.
template <typename Subject, typename Name, typename From, typename To>
bool is_clong_value_out_of_clr_range([[maybe_unused]] From value) {
    static_assert(std::is_signed_v<From> && std::is_signed_v<To>);
    if constexpr (!std::is_same_v<From, To>) {
        if (value < From{std::numeric_limits<To>::min()}) {
            fn_raise_too_small<Subject, Name>();
            return true;
        }
        if (value > From{std::numeric_limits<To>::max()}) {
            fn_raise_too_big<Subject, Name>();
            return true;
        }
    }
    return false;
}

/// The same for an unsigned value.
template <typename Subject, typename Name, typename From, typename To>
bool is_uclong_value_out_of_clr_range([[maybe_unused]] From value) {
    static_assert(std::is_unsigned_v<From> && std::is_unsigned_v<To>);
    if constexpr (!std::is_same_v<From, To>) {
        if (value > From{std::numeric_limits<To>::max()}) {
            fn_raise_too_big<Subject, Name>();
            return true;
        }
    }
    return false;
}

/// True, with the subject's error set, when a value for an unsigned managed type is negative.
template <typename Subject, typename Name, typename From>
bool is_uclong_value_negative([[maybe_unused]] From value) {
    if constexpr (std::is_signed_v<From>) {
        if (value < 0) {
            fn_raise_too_small<Subject, Name>();
            return true;
        }
    }
    return false;
}

// Floating point, bool, char ------------------------------------------------------------------------------

/// What the converter below does with anything but an exact `float`.
int fn_conv_py_other_to_clr_double(PyObject* value, double* out);

inline int fn_conv_py_float_to_clr_double(PyObject* value, double* out) {
    if (PyFloat_CheckExact(value)) [[likely]] {
        *out = PyFloat_AS_DOUBLE(value);
        return 1;
    }
    return fn_conv_py_other_to_clr_double(value, out);
}
/// Narrows without a range test: 1e300 arrives as infinity.
int fn_conv_py_float_to_clr_float(PyObject* value, float* out);
int fn_conv_py_bool_to_clr_bool(PyObject* value, bool* out);
/// One UTF-16 unit.
int fn_conv_py_string_to_clr_char(PyObject* value, std::uint16_t* out);
PyObject* fn_conv_clr_char_to_py_string(std::uint16_t unit);

// Callbacks of the managed side: signatures are a wire format ---------------------------------------------

/// An error of the truth test reads as true, with the error pending.
bool fn_read_py_bool(PyObject* value);
/// Reads an `int` of unknown width into 64 bits: 1 an Int32, 2 an Int64, 3 the bits of a UInt64, 0 failure.
int fn_read_py_vers_long(PyObject* value, std::int64_t* out);
int fn_read_py_double(PyObject* value, double* out);

PyObject* fn_write_py_bool(int value);
PyObject* fn_write_py_long(std::int32_t value);
PyObject* fn_write_py_ulong(std::uint32_t value);
PyObject* fn_write_py_longlong(std::int64_t value);
PyObject* fn_write_py_ulonglong(std::uint64_t value);
PyObject* fn_write_py_double(double value);
PyObject* fn_write_py_char(int value);
