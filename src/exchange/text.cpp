#include "exchange/text.h"

int fn_conv_py_string_to_clr_string_value(PyObject* value, PyStringArg* arg) {
    if (!fn_is_unicode_ready(value)) {
        PyErr_SetString(PyExc_TypeError, "unicode object is not ready");
        return 0;
    }
    const auto kind = static_cast<int>(PyUnicode_KIND(value));
    if (kind != 1 && kind != 2 && kind != 4) {
        PyErr_Format(PyExc_TypeError, "unknown unicode encoding '%i'", kind);
        return 0;
    }
    arg->chars = PyUnicode_DATA(value);
    arg->char_size = kind;
    arg->length = static_cast<std::int32_t>(PyUnicode_GET_LENGTH(value));
    return 1;
}

PyObject* fn_conv_clr_string_to_py_string_value(const char* utf16, std::int64_t units) {
    int byte_order = -1;
    // The empty name of an error handler is the name of none: an unpaired surrogate is an error, never
    // replaced.
    return PyUnicode_DecodeUTF16(utf16, units * 2, "", &byte_order);
}
