#pragma once

#include "startup/cpython.h"

#include <cstdint>

// Decimals: a Python decimal's digits to and from the four words of a managed decimal (decimal_builders.h),
// without floating point and without text.

/// "O&" converter: a `DecimalTuple` or a `Decimal`. Digits that do not fit are rounded half to even, a value
/// below 1E-28 becomes zero, one of more than 96 bits is an OverflowError.
int fn_conv_py_decimal_to_clr_decimal(PyObject* value, std::uint32_t* words);

/// A `Decimal`, through its `as_tuple`.
int fn_conv_py_decimal_obj_to_clr_decimal(PyObject* value, std::uint32_t* words);

/// An object with the attributes `sign`, `digits` and `exponent`.
int fn_conv_py_decimal_tuple_to_clr_decimal(PyObject* value, std::uint32_t* words);

/// A new `Decimal`. The words' mantissa is zero afterwards.
PyObject* fn_conv_clr_decimal_to_py_decimal(std::uint32_t* words);

// Callbacks of the managed side: signatures are a wire format.
int fn_read_py_decimal(PyObject* value, std::uint32_t* words);
int fn_read_py_decimal_tuple(PyObject* value, std::uint32_t* words);
PyObject* fn_write_py_decimal(std::uint32_t* words);

/// True, with an error set, when a decimal's `exponent` tells an infinity, a NaN or nothing known.
bool is_non_convertable_py_decimal(PyObject* exponent, const char* type_name);
