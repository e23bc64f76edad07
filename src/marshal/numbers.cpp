#include "marshal/numbers.h"

#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "startup/report.h"

#include <cstring>

namespace {

/// The metaclass of enums: "EnumType", or "EnumMeta", its only name before 3.11.
PyRef import_enum_type() {
    const PyRef module = PyRef::steal(PyImport_ImportModule("enum"));
    if (!module) {
        PyShlErr_UnableToImportModule("enum");
        return {};
    }
    PyRef type = PyRef::steal(PyObject_GetAttr(module.get(), PyWrpIdTypeName_EnumType));
    if (!type && PyErr_ExceptionMatches(PyExc_AttributeError)) {
        PyErr_Clear();
        type = PyRef::steal(PyObject_GetAttrString(module.get(), "EnumMeta"));
    }
    if (!type) {
        PyShlErr_UnableToImportType(PyWrpIdTypeName_EnumType, "enum");
    }
    return type;
}

/// The answer for what is no exact int.
int check_other_than_int(PyObject* value) {
    if (PyBool_Check(value) || !PyLong_Check(value)) {
        return 0;
    }
    const PyRef enum_type = import_enum_type();
    return enum_type ? PyObject_IsInstance(value, enum_type.get()) : -1;
}

int refuse(const char* managed_name, PyObject* value) {
    PyErr_Format(PyExc_TypeError, "can't build '%s' from '%s'", managed_name, Py_TYPE(value)->tp_name);
    return 0;
}

// How an integer of each managed width is read from Python, and how that reader signals an error.
template <typename To>
auto read_integer(PyObject* value) {
    if constexpr (std::is_signed_v<To>) {
        if constexpr (sizeof(To) < sizeof(std::int64_t)) {
            return PyLong_AsLong(value);
        } else {
            return PyLong_AsLongLong(value);
        }
    } else if constexpr (sizeof(To) < sizeof(std::int64_t)) {
        return PyLong_AsUnsignedLong(value);
    } else {
        return PyLong_AsUnsignedLongLong(value);
    }
}

template <typename To, typename From>
bool is_out_of_range(From value) {
    using Name = clr_int_type_name<To>;
    if constexpr (sizeof(To) >= sizeof(std::int32_t)) {
        return false;  // 32-bit targets keep the low bits: that wrap is settled behaviour
    } else if constexpr (std::is_signed_v<To>) {
        return is_clong_value_out_of_clr_range<CountSubjTrait, Name, From, To>(value);
    } else {
        return is_uclong_value_negative<CountSubjTrait, Name, From>(value) ||
               is_uclong_value_out_of_clr_range<CountSubjTrait, Name, From, To>(value);
    }
}

template <typename To>
int convert_integer(PyObject* value, To* out) {
    const int is_integer = PyShLong_Check(value);
    if (is_integer <= 0) [[unlikely]] {
        return is_integer < 0 ? 0 : refuse(clr_int_type_name<To>::value, value);
    }
    const auto read = read_integer<To>(value);
    using From = decltype(read_integer<To>(value));
    if (read == static_cast<From>(-1) && PyErr_Occurred() != nullptr) {
        return 0;
    }
    if (is_out_of_range<To, From>(read)) {
        return 0;
    }
    *out = static_cast<To>(read);
    return 1;
}

int read_float(PyObject* value, const char* managed_name, double* out) {
    if (PyFloat_CheckExact(value)) [[likely]] {
        *out = PyFloat_AS_DOUBLE(value);
        return 1;
    }
    if (!PyType_IsSubtype(Py_TYPE(value), &PyFloat_Type)) {
        return refuse(managed_name, value);
    }
    return fn_read_py_double(value, out);
}

}  // namespace

int PyShLong_Check(PyObject* value) {
    return PyLong_CheckExact(value) ? 1 : check_other_than_int(value);
}

int fn_conv_py_long_to_clr_int8(PyObject* value, std::int8_t* out) {
    return convert_integer(value, out);
}
int fn_conv_py_ulong_to_clr_uint8(PyObject* value, std::uint8_t* out) {
    return convert_integer(value, out);
}
int fn_conv_py_long_to_clr_int16(PyObject* value, std::int16_t* out) {
    return convert_integer(value, out);
}
int fn_conv_py_ulong_to_clr_uint16(PyObject* value, std::uint16_t* out) {
    return convert_integer(value, out);
}
int fn_conv_py_other_to_clr_int32(PyObject* value, std::int32_t* out) {
    return convert_integer(value, out);
}
int fn_conv_py_ulong_to_clr_uint32(PyObject* value, std::uint32_t* out) {
    return convert_integer(value, out);
}
int fn_conv_py_long_to_clr_int64(PyObject* value, std::int64_t* out) {
    return convert_integer(value, out);
}
int fn_conv_py_ulong_to_clr_uint64(PyObject* value, std::uint64_t* out) {
    return convert_integer(value, out);
}

int fn_conv_py_obj_to_ssize_t(PyObject* value, Py_ssize_t* out) {
    if (!PyIndex_Check(value)) {
        PyErr_Format(PyExc_TypeError, "argument should be integer or None, not '%.200s'",
                     Py_TYPE(value)->tp_name);
        return 0;
    }
    const Py_ssize_t read = PyNumber_AsSsize_t(value, PyExc_OverflowError);
    if (read == -1 && PyErr_Occurred() != nullptr) {
        return 0;
    }
    *out = read;
    return 1;
}

int fn_conv_py_optional_to_ssize_t(PyObject* args, Py_ssize_t* out) {
    PyObject* value = PyTuple_GetItem(args, 0);
    if (value == nullptr) {
        return 0;
    }
    return value == Py_None ? 1 : fn_conv_py_obj_to_ssize_t(value, out);
}

int fn_conv_py_other_to_clr_double(PyObject* value, double* out) {
    return read_float(value, "Double", out);
}

int fn_conv_py_float_to_clr_float(PyObject* value, float* out) {
    double read = 0;
    if (read_float(value, "Single", &read) == 0) {
        return 0;
    }
    *out = static_cast<float>(read);
    return 1;
}

int fn_conv_py_bool_to_clr_bool(PyObject* value, bool* out) {
    if (!PyBool_Check(value)) {
        PyErr_Format(PyExc_TypeError, "can't build bool from '%s'", Py_TYPE(value)->tp_name);
        return 0;
    }
    *out = value == Py_True;
    return 1;
}

int fn_conv_py_string_to_clr_char(PyObject* value, std::uint16_t* out) {
    if (!PyUnicode_Check(value)) {
        PyErr_Format(PyExc_TypeError, "can't build Char from '%s'", Py_TYPE(value)->tp_name);
        return 0;
    }
    if (!fn_is_unicode_ready(value)) {
        PyErr_SetString(PyExc_TypeError, "unicode object is not ready");
        return 0;
    }
    const PyRef encoded = PyRef::steal(PyUnicode_AsUTF16String(value));
    if (!encoded) {
        if (PyErr_Occurred() == nullptr) {
            PyErr_SetString(PyExc_TypeError, "cannot convert unicode object to byte string");
        }
        return 0;
    }
    if (!PyBytes_Check(encoded.get())) {
        PyErr_Format(PyExc_TypeError, "converted string must be bytes-like object, not '%s'",
                     Py_TYPE(encoded.get())->tp_name);
        return 0;
    }
    std::uint16_t units[2];  // the byte-order mark and the one unit
    if (PyBytes_GET_SIZE(encoded.get()) != sizeof(units)) {
        PyErr_SetString(PyExc_TypeError, "string must contain one UTF-16 code unit");
        return 0;
    }
    std::memcpy(units, PyBytes_AS_STRING(encoded.get()), sizeof(units));
    *out = units[1];
    return 1;
}

PyObject* fn_conv_clr_char_to_py_string(std::uint16_t unit) {
    int byte_order = -1;
    // The empty name of an error handler is the name of none: an unpaired surrogate is an error, never
    // replaced.
    return PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(&unit), sizeof(unit), "", &byte_order);
}

bool fn_read_py_bool(PyObject* value) {
    return PyObject_IsTrue(value) != 0;
}

int fn_read_py_vers_long(PyObject* value, std::int64_t* out) {
    static_assert(sizeof(long) == sizeof(std::int64_t));
    const long read = PyLong_AsLong(value);
    if (read != -1 || PyErr_Occurred() == nullptr) {
        *out = read;
        const bool is_int32 = read >= std::numeric_limits<std::int32_t>::min() &&
                              read <= std::numeric_limits<std::int32_t>::max();
        return is_int32 ? 1 : 2;
    }
    PyErr_Clear();
    const unsigned long long unsigned_read = PyLong_AsUnsignedLongLong(value);
    if (unsigned_read != static_cast<unsigned long long>(-1) || PyErr_Occurred() == nullptr) {
        *out = static_cast<std::int64_t>(unsigned_read);
        return 3;
    }
    PyErr_Clear();
    PyErr_Format(PyExc_TypeError, "can't build integer value from '%s'", Py_TYPE(value)->tp_name);
    return 0;
}

int fn_read_py_double(PyObject* value, double* out) {
    const double read = PyFloat_AsDouble(value);
    if (read == -1.0 && PyErr_Occurred() != nullptr) {
        return 0;
    }
    *out = read;
    return 1;
}

PyObject* fn_write_py_bool(int value) {
    return PyBool_FromLong(value & 0xFF);
}
PyObject* fn_write_py_long(std::int32_t value) {
    return PyLong_FromLong(value);
}
PyObject* fn_write_py_ulong(std::uint32_t value) {
    return PyLong_FromUnsignedLong(value);
}
PyObject* fn_write_py_longlong(std::int64_t value) {
    return PyLong_FromLongLong(value);
}
PyObject* fn_write_py_ulonglong(std::uint64_t value) {
    return PyLong_FromUnsignedLongLong(value);
}
PyObject* fn_write_py_double(double value) {
    return PyFloat_FromDouble(value);
}
PyObject* fn_write_py_char(int value) {
    return fn_conv_clr_char_to_py_string(static_cast<std::uint16_t>(value));
}
