#include "marshal/decimal.h"

#include "marshal/decimal_builders.h"
#include "startup/identifiers.h"
#include "startup/import.h"
#include "startup/py_ref.h"

#include <algorithm>
#include <optional>

namespace {

/// Whether `value` is an instance of a type of "decimal". An error of the test counts as a hit and stays
/// pending; a failed import is no answer.
std::optional<bool> is_instance(PyObject* value, PyObject* type_name) {
    const PyRef type = PyRef::steal(PyShImport_ImportType("decimal", type_name));
    if (!type) {
        return std::nullopt;
    }
    return PyObject_IsInstance(value, type.get()) != 0;
}

/// A 64-bit integer attribute that has been fetched.
bool read_integer(PyObject* value, std::int64_t* out) {
    const long long read = PyLong_AsLongLong(value);
    if (read == -1 && PyErr_Occurred() != nullptr) {
        return false;
    }
    *out = read;
    return true;
}

/// The digits from `start` to before `stop` as one number. Digits are not validated.
bool get_mantissa_group(PyObject* digits, std::int64_t start, std::int64_t stop, std::uint64_t* group) {
    *group = 0;
    for (std::int64_t i = start; i < stop; ++i) {
        PyObject* item = PyTuple_GetItem(digits, i);
        if (item == nullptr) {
            return false;
        }
        const long read = PyLong_AsLong(item);
        if (read == -1 && PyErr_Occurred() != nullptr) {
            return false;
        }
        *group = *group * 10 + static_cast<std::uint64_t>(read);
    }
    return true;
}

int refuse_too_large() {
    PyErr_SetString(PyExc_OverflowError, "value too large for .Net decimal");
    return 0;
}

}  // namespace

bool is_non_convertable_py_decimal(PyObject* exponent, const char* type_name) {
    if (PyLong_Check(exponent)) {
        return false;
    }
    if (!PyUnicode_Check(exponent)) {
        PyErr_Format(PyExc_TypeError, "unknown exponent type '%s'", Py_TYPE(exponent)->tp_name);
    } else if (PyUnicode_CompareWithASCIIString(exponent, "F") == 0) {
        PyErr_Format(PyExc_OverflowError, "value too large for .Net '%s'", type_name);
    } else if (PyUnicode_CompareWithASCIIString(exponent, "n") == 0 ||
               PyUnicode_CompareWithASCIIString(exponent, "N") == 0) {
        PyErr_SetString(PyExc_OverflowError, "value is not a number");
    } else {
        PyErr_Format(PyExc_TypeError, "can't build '%s' from exponent value '%U'", type_name, exponent);
    }
    return true;
}

int fn_conv_py_decimal_to_clr_decimal(PyObject* value, std::uint32_t* words) {
    const std::optional<bool> is_tuple = is_instance(value, PyWrpIdTypeName_DecimalTuple);
    if (!is_tuple) {
        return 0;
    }
    if (*is_tuple) {
        return fn_conv_py_decimal_tuple_to_clr_decimal(value, words);
    }
    const std::optional<bool> is_decimal = is_instance(value, PyWrpIdTypeName_Decimal);
    if (!is_decimal) {
        return 0;
    }
    if (*is_decimal) {
        return fn_conv_py_decimal_obj_to_clr_decimal(value, words);
    }
    PyErr_Format(PyExc_TypeError, "can't build Decimal from '%s'", Py_TYPE(value)->tp_name);
    return 0;
}

int fn_conv_py_decimal_obj_to_clr_decimal(PyObject* value, std::uint32_t* words) {
    const PyRef tuple = PyRef::steal(PyObject_CallMethodNoArgs(value, PyWrpIdDecimal_AsTuple));
    return tuple ? fn_conv_py_decimal_tuple_to_clr_decimal(tuple.get(), words) : 0;
}

int fn_conv_py_decimal_tuple_to_clr_decimal(PyObject* value, std::uint32_t* words) {
    DecimalArgOutBuilder builder(words);
    const PyRef exponent_attribute = PyRef::steal(PyObject_GetAttr(value, PyWrpIdDecimal_Exponent));
    std::int64_t exponent = 0;
    if (!exponent_attribute || is_non_convertable_py_decimal(exponent_attribute.get(), "Decimal") ||
        !read_integer(exponent_attribute.get(), &exponent)) {
        return 0;
    }
    const PyRef sign_attribute = PyRef::steal(PyObject_GetAttr(value, PyWrpIdDecimal_Sign));
    std::int64_t sign = 0;
    if (!sign_attribute || !read_integer(sign_attribute.get(), &sign)) {
        return 0;
    }
    const PyRef digits = PyRef::steal(PyObject_GetAttr(value, PyWrpIdDecimal_Digits));
    if (!digits) {
        return 0;
    }
    const Py_ssize_t digit_count = PyTuple_Size(digits.get());
    if (digit_count < 0) {
        return 0;
    }
    const DecimalFold fold = DecimalFold::plan(exponent, digit_count);
    if (fold.is_too_large) {
        return refuse_too_large();
    }
    builder.begin_accept_decimal(static_cast<int>(sign), fold.exponent, fold.round_position);
    for (std::int64_t start = 0; start < fold.digit_count; start += DecimalArgOutBuilder::GroupSize) {
        const std::int64_t stop = std::min(start + DecimalArgOutBuilder::GroupSize, fold.digit_count);
        std::uint64_t group = 0;
        if (!get_mantissa_group(digits.get(), start, stop, &group)) {
            return 0;
        }
        builder.accept_decimal_mantissa(group, static_cast<int>(stop - start));
    }
    return builder.end_accept_decimal() ? 1 : refuse_too_large();
}

PyObject* fn_conv_clr_decimal_to_py_decimal(std::uint32_t* words) {
    const DecimalArgInBuilder builder(words);
    const PyRef digits = PyRef::steal(PyTuple_New(builder.mantissa_length()));
    if (!digits) {
        return nullptr;
    }
    for (std::int32_t i = 0; i < builder.mantissa_length(); ++i) {
        PyObject* item = PyLong_FromLong(builder.mantissa_cbegin()[i]);
        if (item == nullptr) {
            return nullptr;
        }
        PyTuple_SET_ITEM(digits.get(), i, item);
    }
    const PyRef tuple = PyRef::steal(Py_BuildValue("iOi", builder.sign(), digits.get(), -builder.exponent()));
    if (!tuple) {
        return nullptr;
    }
    const PyRef arguments = PyRef::steal(Py_BuildValue("(O)", tuple.get()));
    const PyRef type = PyRef::steal(PyShImport_ImportType("decimal", PyWrpIdTypeName_Decimal));
    if (!arguments || !type) {
        return nullptr;
    }
    return PyObject_Call(type.get(), arguments.get(), nullptr);
}

int fn_read_py_decimal(PyObject* value, std::uint32_t* words) {
    return fn_conv_py_decimal_to_clr_decimal(value, words);
}

int fn_read_py_decimal_tuple(PyObject* value, std::uint32_t* words) {
    return fn_conv_py_decimal_tuple_to_clr_decimal(value, words);
}

PyObject* fn_write_py_decimal(std::uint32_t* words) {
    return fn_conv_clr_decimal_to_py_decimal(words);
}
