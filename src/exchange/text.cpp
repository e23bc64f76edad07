#include "exchange/text.h"

#include <cstring>

namespace {

// Four UTF-16 units at once. Short plain texts are most of what crosses, and the codec's general way costs
// them twice the time or more.
constexpr std::int64_t WordUnits = 4;
constexpr std::uint64_t NotAscii = 0xFF80FF80FF80FF80;

std::uint64_t load_word(const char* utf16) {
    std::uint64_t word;
    std::memcpy(&word, utf16, sizeof word);
    return word;
}

char16_t load_unit(const char* utf16) {
    char16_t unit;
    std::memcpy(&unit, utf16, sizeof unit);
    return unit;
}

bool is_ascii(const char* utf16, std::int64_t units) {
    std::uint64_t all = 0;
    std::int64_t i = 0;
    for (; i + WordUnits <= units; i += WordUnits) {
        all |= load_word(utf16 + 2 * i);
    }
    for (; i < units; ++i) {
        all |= load_unit(utf16 + 2 * i);
    }
    return (all & NotAscii) == 0;
}

bool has_surrogate(const char* utf16, std::int64_t units) {
    for (std::int64_t i = 0; i < units; ++i) {
        if ((load_unit(utf16 + 2 * i) & 0xF800) == 0xD800) {
            return true;
        }
    }
    return false;
}

PyObject* make_ascii(const char* utf16, std::int64_t units) {
    PyObject* text = PyUnicode_New(units, 127);
    if (text == nullptr) {
        return nullptr;
    }
    auto* out = static_cast<char*>(PyUnicode_DATA(text));
    std::int64_t i = 0;
    for (; i + WordUnits <= units; i += WordUnits) {
        std::uint64_t word = load_word(utf16 + 2 * i);
        word = (word | word >> 8) & 0x0000FFFF0000FFFF;
        const auto packed = static_cast<std::uint32_t>(word | word >> 16);
        std::memcpy(out + i, &packed, sizeof packed);
    }
    for (; i < units; ++i) {
        out[i] = static_cast<char>(load_unit(utf16 + 2 * i));
    }
    return text;
}

}  // namespace

int fn_conv_py_wide_string_to_clr_string_value(PyObject* value, PyStringArg* arg) {
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
    if (units > 1 && is_ascii(utf16, units)) {
        return make_ascii(utf16, units);
    }
    if (units >= 0 && !has_surrogate(utf16, units)) {
        return PyUnicode_FromKindAndData(PyUnicode_2BYTE_KIND, utf16, units);
    }
    int byte_order = -1;
    // The empty name of an error handler is the name of none: an unpaired surrogate is an error, never
    // replaced.
    return PyUnicode_DecodeUTF16(utf16, units * 2, "", &byte_order);
}
