#include "marshal/numbers.h"

#include "marshal/arguments.h"
#include "marshal/references.h"
#include "python_fixture.h"

#include <cmath>

namespace {

/// The outcome of a converter: the value as text, or the error. Checks that a failure leaves the target
/// alone.
template <typename T>
std::string convert(int (*converter)(PyObject*, T*), const char* expression) {
    const PyRef value = eval(expression);
    const SameReferences same(value.get());
    T out = static_cast<T>(77);
    if (converter(value.get(), &out) == 1) {
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        return std::to_string(out);
    }
    EXPECT_EQ(out, static_cast<T>(77));
    return take_error();
}

TEST(Numbers, WhatCountsAsAnInteger) {
    run("import enum\n"
        "class Level(enum.IntEnum):\n    LOW = 1\n"
        "class Other(int):\n    pass\n");
    for (const auto& [expression, expected] : {std::pair{"5", 1},
                                               {"2 ** 100", 1},
                                               {"True", 0},
                                               {"1.0", 0},
                                               {"Level.LOW", 0},
                                               {"Other(5)", 0},
                                               {"'5'", 0},
                                               {"None", 0}}) {
        EXPECT_EQ(PyShLong_Check(eval(expression).get()), expected) << expression;
        EXPECT_EQ(take_error(), "");
    }
}

TEST(Numbers, EnumMetaclassUnderItsOldNameOrNone) {
    run("import sys, types\n"
        "class Other(int):\n    pass\n"
        "real_enum = __import__('enum')\n"
        "sys.modules['enum'] = types.ModuleType('enum')\n"
        "sys.modules['enum'].EnumMeta = real_enum.EnumMeta\n");
    const PyRef value = eval("Other(5)");
    EXPECT_EQ(PyShLong_Check(value.get()), 0);
    EXPECT_EQ(take_error(), "");

    run("del sys.modules['enum'].EnumMeta");
    EXPECT_EQ(PyShLong_Check(value.get()), -1);
    EXPECT_EQ(take_error(),
              "ImportError: Unable to import the specified type EnumType from the module enum. The type not "
              "found or "
              "errors occurred while initializing it.");
    std::int32_t out = 0;
    run("sys.modules['enum'] = None");
    EXPECT_EQ(fn_conv_py_long_to_clr_int32(value.get(), &out), 0);
    EXPECT_EQ(take_error(),
              "ImportError: Unable to import the specified module enum. The module not found or errors "
              "occurred while "
              "initializing it.");
    run("sys.modules['enum'] = real_enum");
}

TEST(Numbers, SignedIntegers) {
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int8, "127"), "127");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int8, "-128"), "-128");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int8, "128"),
              "OverflowError: value too big to convert to 'SByte'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int8, "-129"),
              "OverflowError: value too small to convert to 'SByte'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int8, "2 ** 70"),
              "OverflowError: Python int too large to convert to C long");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int16, "-32768"), "-32768");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int16, "32768"),
              "OverflowError: value too big to convert to 'Int16'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int16, "-32769"),
              "OverflowError: value too small to convert to 'Int16'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int32, "-1"), "-1");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int32, "2147483648"), "-2147483648");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int32, "2 ** 40"), "0");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int32, "2 ** 63"),
              "OverflowError: Python int too large to convert to C long");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int64, "-2 ** 63"), "-9223372036854775808");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int64, "2 ** 63"), "OverflowError: int too big to convert");
}

TEST(Numbers, UnsignedIntegers) {
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint8, "255"), "255");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint8, "256"),
              "OverflowError: value too big to convert to 'Byte'");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint8, "-1"),
              "OverflowError: can't convert negative value to unsigned int");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint8, "18446744073709551615"),
              "OverflowError: value too big to convert to 'Byte'");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint16, "65535"), "65535");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint16, "65536"),
              "OverflowError: value too big to convert to 'UInt16'");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint16, "18446744073709551615"),
              "OverflowError: value too big to convert to 'UInt16'");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint32, "2 ** 32 + 5"), "5");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint32, "18446744073709551615"), "4294967295");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint64, "18446744073709551615"), "18446744073709551615");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint64, "2 ** 64"), "OverflowError: int too big to convert");
}

TEST(Numbers, IntegersAreNotCoerced) {
    run("class Indexed:\n    def __index__(self):\n        return 1\n");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int32, "True"), "TypeError: can't build 'Int32' from 'bool'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int32, "3.0"), "TypeError: can't build 'Int32' from 'float'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int32, "Indexed()"),
              "TypeError: can't build 'Int32' from 'Indexed'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int8, "None"), "TypeError: can't build 'SByte' from 'NoneType'");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint8, "''"), "TypeError: can't build 'Byte' from 'str'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int16, "''"), "TypeError: can't build 'Int16' from 'str'");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint16, "''"), "TypeError: can't build 'UInt16' from 'str'");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint32, "''"), "TypeError: can't build 'UInt32' from 'str'");
    EXPECT_EQ(convert(fn_conv_py_long_to_clr_int64, "''"), "TypeError: can't build 'Int64' from 'str'");
    EXPECT_EQ(convert(fn_conv_py_ulong_to_clr_uint64, "''"), "TypeError: can't build 'UInt64' from 'str'");
}

TEST(Numbers, RangeTestsOfAnIndex) {
    using Index = IndexSubjTrait;
    using Int32 = clr_int_type_name<std::int32_t>;
    EXPECT_FALSE((is_clong_value_out_of_clr_range<Index, Int32, std::int64_t, std::int32_t>(2147483647)));
    EXPECT_TRUE((is_clong_value_out_of_clr_range<Index, Int32, std::int64_t, std::int32_t>(2147483648)));
    EXPECT_EQ(take_error(), "IndexError: index too big to convert to 'Int32'");
    EXPECT_TRUE((is_clong_value_out_of_clr_range<Index, Int32, std::int64_t, std::int32_t>(-2147483649)));
    EXPECT_EQ(take_error(), "IndexError: index too small to convert to 'Int32'");
    EXPECT_FALSE((is_clong_value_out_of_clr_range<Index, Int32, std::int32_t, std::int32_t>(-5)));
    EXPECT_TRUE(
        (is_uclong_value_negative<CountSubjTrait, clr_int_type_name<std::uint32_t>, std::int64_t>(-1)));
    EXPECT_EQ(take_error(), "OverflowError: value too small to convert to 'UInt32'");
    EXPECT_FALSE(
        (is_uclong_value_negative<CountSubjTrait, clr_int_type_name<std::uint32_t>, std::uint64_t>(1)));
}

TEST(Numbers, Floats) {
    run("class Fraction(float):\n    pass\n"
        "class Convertible:\n    def __float__(self):\n        return 1.0\n");
    EXPECT_EQ(convert(fn_conv_py_float_to_clr_double, "1.5"), "1.500000");
    EXPECT_EQ(convert(fn_conv_py_float_to_clr_double, "-1.0"), "-1.000000");
    EXPECT_EQ(convert(fn_conv_py_float_to_clr_double, "Fraction(2.5)"), "2.500000");
    EXPECT_EQ(convert(fn_conv_py_float_to_clr_double, "3"), "TypeError: can't build 'Double' from 'int'");
    EXPECT_EQ(convert(fn_conv_py_float_to_clr_double, "Convertible()"),
              "TypeError: can't build 'Double' from 'Convertible'");
    EXPECT_EQ(convert(fn_conv_py_float_to_clr_float, "True"), "TypeError: can't build 'Single' from 'bool'");
    EXPECT_EQ(convert(fn_conv_py_float_to_clr_float, "Fraction(-1.0)"), "-1.000000");
    float single = 0;
    EXPECT_EQ(fn_conv_py_float_to_clr_float(eval("1e300").get(), &single), 1);
    EXPECT_TRUE(std::isinf(single));
}

TEST(Numbers, Bools) {
    EXPECT_EQ(convert(fn_conv_py_bool_to_clr_bool, "True"), "1");
    EXPECT_EQ(convert(fn_conv_py_bool_to_clr_bool, "False"), "0");
    EXPECT_EQ(convert(fn_conv_py_bool_to_clr_bool, "1"), "TypeError: can't build bool from 'int'");
    EXPECT_EQ(convert(fn_conv_py_bool_to_clr_bool, "None"), "TypeError: can't build bool from 'NoneType'");
}

TEST(Numbers, Chars) {
    run("class Text(str):\n    pass\n");
    EXPECT_EQ(convert(fn_conv_py_string_to_clr_char, "'A'"), "65");
    EXPECT_EQ(convert(fn_conv_py_string_to_clr_char, "Text('\\u20ac')"), "8364");
    EXPECT_EQ(convert(fn_conv_py_string_to_clr_char, "'\\ufeff'"), "65279");
    for (const char* expression : {"''", "'ab'", "'\\U0001F600'"}) {
        EXPECT_EQ(convert(fn_conv_py_string_to_clr_char, expression),
                  "TypeError: string must contain one UTF-16 code unit");
    }
    EXPECT_EQ(convert(fn_conv_py_string_to_clr_char, "b'A'"), "TypeError: can't build Char from 'bytes'");
    EXPECT_EQ(convert(fn_conv_py_string_to_clr_char, "None"), "TypeError: can't build Char from 'NoneType'");
    EXPECT_EQ(
        convert(fn_conv_py_string_to_clr_char, "'\\ud800'"),
        "UnicodeEncodeError: 'utf-16' codec can't encode character '\\ud800' in position 0: surrogates not "
        "allowed");

    EXPECT_EQ(text_of(PyRef::steal(fn_conv_clr_char_to_py_string(0x20AC)).get()), "\u20ac");
    EXPECT_EQ(text_of(PyRef::steal(fn_write_py_char(0x12340041)).get()), "A");
    EXPECT_EQ(PyUnicode_GetLength(PyRef::steal(fn_conv_clr_char_to_py_string(0xFEFF)).get()), 1);
    EXPECT_EQ(fn_conv_clr_char_to_py_string(0xD800), nullptr);
    EXPECT_NE(take_error(), "");
}

TEST(Numbers, IndexedSizes) {
    run("class Indexed:\n    def __index__(self):\n        return 12\n");
    const auto convert_size = [](const char* expression) {
        return convert(fn_conv_py_obj_to_ssize_t, expression);
    };
    EXPECT_EQ(convert_size("Indexed()"), "12");
    EXPECT_EQ(convert_size("True"), "1");
    EXPECT_EQ(convert_size("-1"), "-1");
    EXPECT_EQ(convert_size("2 ** 63"), "OverflowError: cannot fit 'int' into an index-sized integer");
    EXPECT_EQ(convert_size("1.0"), "TypeError: argument should be integer or None, not 'float'");
    EXPECT_EQ(convert_size("None"), "TypeError: argument should be integer or None, not 'NoneType'");

    const auto convert_optional = [](const char* expression) {
        return convert(fn_conv_py_optional_to_ssize_t, expression);
    };
    EXPECT_EQ(convert_optional("(3, 4)"), "3");
    EXPECT_EQ(convert_optional("(None,)"), "77");
    EXPECT_EQ(convert_optional("('a',)"), "TypeError: argument should be integer or None, not 'str'");
}

TEST(Numbers, ArgumentCounts) {
    struct Row {
        Py_ssize_t given;
        const char* name;
        Py_ssize_t min, max;
        const char* text;
    };
    for (const Row& row : {
             Row{2, "read", 0, 1, "read() takes at most 1 argument (2 given)"},
             Row{2, "read", 1, 1, "read() takes exactly 1 argument (2 given)"},
             Row{3, "read", 2, 2, "read() takes exactly 2 arguments (3 given)"},
             Row{3, "read", 0, 0, "read() takes exactly 0 arguments (3 given)"},
             Row{3, "read", 1, 2, "read() takes at most 2 arguments (3 given)"},
             Row{0, "read", 1, 1, "read() takes exactly 1 argument (0 given)"},
             Row{0, "read", 1, 2, "read() takes at least 1 argument (0 given)"},
             Row{1, "read", 2, 2, "read() takes exactly 2 arguments (1 given)"},
             Row{1, "read", 2, 3, "read() takes at least 2 arguments (1 given)"},
             Row{1, nullptr, 2, 3, "function takes at least 2 arguments (1 given)"},
         }) {
        EXPECT_TRUE(fn_check_args_count_out_of_range(row.given, row.name, row.min, row.max));
        EXPECT_EQ(take_error(), "TypeError: " + std::string(row.text));
    }
    EXPECT_FALSE(fn_check_args_count_out_of_range(1, "read", 1, 1));
    EXPECT_FALSE(fn_check_args_count_out_of_range(0, "read", 0, 1));
    EXPECT_EQ(take_error(), "");
}

TEST(Numbers, ReadCallbacks) {
    struct Row {
        const char* expression;
        int status;
        std::int64_t value;
    };
    for (const Row& row : {
             Row{"-1", 1, -1},
             Row{"2147483647", 1, 2147483647},
             Row{"-2147483648", 1, -2147483648},
             Row{"2147483648", 2, 2147483648},
             Row{"-2147483649", 2, -2147483649},
             Row{"9223372036854775807", 2, INT64_MAX},
             Row{"9223372036854775808", 3, INT64_MIN},
             Row{"18446744073709551615", 3, -1},
         }) {
        std::int64_t out = 77;
        EXPECT_EQ(fn_read_py_vers_long(eval(row.expression).get(), &out), row.status) << row.expression;
        EXPECT_EQ(out, row.value) << row.expression;
        EXPECT_EQ(take_error(), "");
    }
    std::int64_t out = 0;
    for (const char* expression : {"2 ** 64", "-2 ** 63 - 1"}) {
        EXPECT_EQ(fn_read_py_vers_long(eval(expression).get(), &out), 0);
        EXPECT_EQ(take_error(), "TypeError: can't build integer value from 'int'");
    }

    double number = 0;
    EXPECT_EQ(fn_read_py_double(eval("-1.0").get(), &number), 1);
    EXPECT_EQ(number, -1.0);
    EXPECT_EQ(fn_read_py_double(eval("'x'").get(), &number), 0);
    EXPECT_EQ(take_error(), "TypeError: must be real number, not str");

    run("class Undecided:\n    def __bool__(self):\n        raise LookupError('no')\n");
    EXPECT_TRUE(fn_read_py_bool(Py_True));
    EXPECT_FALSE(fn_read_py_bool(Py_False));
    EXPECT_TRUE(fn_read_py_bool(eval("Undecided()").get()));
    EXPECT_EQ(take_error(), "LookupError: no");
}

TEST(Numbers, WriteCallbacks) {
    const auto shown = [](PyObject* value) { return repr_of(PyRef::steal(value).get()); };
    EXPECT_EQ(shown(fn_write_py_bool(0x100)), "False");
    EXPECT_EQ(shown(fn_write_py_bool(0x101)), "True");
    EXPECT_EQ(shown(fn_write_py_long(-5)), "-5");
    EXPECT_EQ(shown(fn_write_py_ulong(4294967295U)), "4294967295");
    EXPECT_EQ(shown(fn_write_py_longlong(INT64_MIN)), "-9223372036854775808");
    EXPECT_EQ(shown(fn_write_py_ulonglong(UINT64_MAX)), "18446744073709551615");
    EXPECT_EQ(shown(fn_write_py_double(0.5)), "0.5");
}

TEST(Numbers, ReferenceCallbacks) {
    const PyRef object = eval("object()");
    const SameReferences same(object.get());
    fn_xinc_ref(object.get());
    EXPECT_EQ(Py_REFCNT(object.get()), 2);
    fn_xdec_ref(object.get());
    fn_xinc_ref(nullptr);
    fn_xdec_ref(nullptr);
    EXPECT_EQ(PyRef::steal(fn_get_py_none()).get(), Py_None);
}

}  // namespace
