#include "marshal/decimal.h"

#include "python_fixture.h"

#include <array>

namespace {

using Words = std::array<std::uint32_t, 4>;
using Converter = int (*)(PyObject*, std::uint32_t*);

class Decimal : public ::testing::Test {
protected:
    void SetUp() override { run("import decimal\nfrom decimal import Decimal, DecimalTuple\n"); }

    static std::string convert(const char* expression,
                               Converter converter = fn_conv_py_decimal_to_clr_decimal) {
        const PyRef value = eval(expression);
        const SameReferences same(value.get());
        Words words{};
        if (converter(value.get(), words.data()) == 0) {
            return take_error();
        }
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        return show(words);
    }

    static std::string show(const Words& words) {
        std::string text;
        for (const std::uint32_t word : words) {
            char part[16];
            std::snprintf(part, sizeof part, text.empty() ? "%X" : " %X", word);
            text += part;
        }
        return text;
    }

    static std::string back(Words words) {
        return repr_of(PyRef::steal(fn_conv_clr_decimal_to_py_decimal(words.data())).get());
    }
};

constexpr char TooLarge[] = "OverflowError: value too large for .Net decimal";

TEST_F(Decimal, FromDecimals) {
    EXPECT_EQ(convert("Decimal('79228162514264337593543950335')"), "FFFFFFFF FFFFFFFF FFFFFFFF 0");
    EXPECT_EQ(convert("Decimal('79228162514264337593543950336')"), TooLarge);
    EXPECT_EQ(convert("Decimal('1.5')"), "F 0 0 10000");
    EXPECT_EQ(convert("Decimal('-1.50')"), "96 0 0 80020000");
    EXPECT_EQ(convert("Decimal('1E-28')"), "1 0 0 1C0000");
    EXPECT_EQ(convert("Decimal('6E-29')"), "1 0 0 1C0000");
    EXPECT_EQ(convert("Decimal('5E-29')"), "0 0 0 0");
    EXPECT_EQ(convert("Decimal('-0.00')"), "0 0 0 0");
    EXPECT_EQ(convert("Decimal('0E+100')"), "0 0 0 0");
    EXPECT_EQ(convert("Decimal('8E+28')"), TooLarge);
    EXPECT_EQ(convert("Decimal('1E+999999')"), TooLarge);
}

TEST_F(Decimal, FromTuples) {
    EXPECT_EQ(convert("DecimalTuple(1, (1, 5), -1)"), "F 0 0 80010000");
    EXPECT_EQ(convert("Decimal('1.5').as_tuple()", fn_read_py_decimal_tuple), "F 0 0 10000");
    EXPECT_EQ(convert("Decimal('1.5')", fn_read_py_decimal), "F 0 0 10000");
    EXPECT_EQ(convert("DecimalTuple(0, (1, 'x'), 0)").substr(0, 10), "TypeError:");
    EXPECT_EQ(convert("DecimalTuple(0, (1,), 2 ** 63)"), "OverflowError: int too big to convert");
    EXPECT_EQ(convert("DecimalTuple(0, (1,), 2 ** 63 - 1)"), TooLarge);
}

TEST_F(Decimal, WhatIsNoNumber) {
    EXPECT_EQ(convert("Decimal('Infinity')"), "OverflowError: value too large for .Net 'Decimal'");
    EXPECT_EQ(convert("Decimal('-Infinity')"), "OverflowError: value too large for .Net 'Decimal'");
    EXPECT_EQ(convert("Decimal('NaN')"), "OverflowError: value is not a number");
    EXPECT_EQ(convert("Decimal('sNaN')"), "OverflowError: value is not a number");
    EXPECT_EQ(convert("DecimalTuple(0, (1,), 'G')"),
              "TypeError: can't build 'Decimal' from exponent value 'G'");
    EXPECT_EQ(convert("DecimalTuple(0, (1,), 1.5)"), "TypeError: unknown exponent type 'float'");
    EXPECT_EQ(convert("DecimalTuple(0, (1,), True)"), "A 0 0 0");
}

TEST_F(Decimal, AnythingElseIsRefused) {
    EXPECT_EQ(convert("1"), "TypeError: can't build Decimal from 'int'");
    EXPECT_EQ(convert("'1.5'"), "TypeError: can't build Decimal from 'str'");
    EXPECT_EQ(convert("object()", fn_conv_py_decimal_tuple_to_clr_decimal),
              "AttributeError: 'object' object has no attribute 'exponent'");
}

TEST_F(Decimal, ModuleThatCannotBeImported) {
    run("import sys\nreal = sys.modules['decimal']\n");
    const PyRef value = eval("Decimal(1)");
    run("sys.modules['decimal'] = None");
    Words words{};
    EXPECT_EQ(fn_conv_py_decimal_to_clr_decimal(value.get(), words.data()), 0);
    const std::string error =
        "ImportError: Unable to import the specified module decimal. The module not found or errors occurred "
        "while "
        "initializing it.";
    EXPECT_EQ(take_error(), error);
    EXPECT_EQ(fn_conv_clr_decimal_to_py_decimal(words.data()), nullptr);
    EXPECT_EQ(take_error(), error);
    run("sys.modules['decimal'] = real");
}

TEST_F(Decimal, BackToPython) {
    EXPECT_EQ(back({0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0x80000000}),
              "Decimal('-79228162514264337593543950335')");
    EXPECT_EQ(back({0, 0, 0, 0x50000}), "Decimal('0.00000')");
    EXPECT_EQ(back({15, 0, 0, 0x10000}), "Decimal('1.5')");
    EXPECT_EQ(back({1, 0, 0, 0x1C0000}), "Decimal('1E-28')");
    Words words{150, 0, 0, 0x20000};
    EXPECT_EQ(repr_of(PyRef::steal(fn_write_py_decimal(words.data())).get()), "Decimal('1.50')");
    EXPECT_EQ(words[0], 0U);
}

}  // namespace
