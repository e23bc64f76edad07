#include "marshal/decimal_builders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using Words = std::array<std::uint32_t, 4>;
using Digits = std::vector<int>;
__extension__ using Wide = unsigned __int128;

constexpr Wide MaxMantissa = (Wide{1} << 96) - 1;

Wide mantissa_of(const Words& words) {
    return (Wide{words[2]} << 64) | (Wide{words[1]} << 32) | words[0];
}

std::string text_of(Wide value) {
    std::string text;
    do {
        text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(value % 10)));
        value /= 10;
    } while (value != 0);
    return text;
}

/// A decimal as "sign mantissa scale", or "too large".
std::string show(const std::optional<Words>& words) {
    if (!words) {
        return "too large";
    }
    const std::uint32_t flags = (*words)[3];
    return std::string(flags >> 31 != 0 ? "-" : "+") + text_of(mantissa_of(*words)) + "/" +
           std::to_string(flags >> 16 & 0xFF) + ((flags & 0x7F00FFFF) != 0 ? " and other bits" : "");
}

Digits digits_of(const std::string& text) {
    Digits digits;
    for (const char c : text) {
        digits.push_back(c - '0');
    }
    return digits;
}

/// What the converter does with the parts of a decimal.
std::optional<Words> fold(int sign, const Digits& digits, std::int64_t exponent) {
    Words words;
    words.fill(0xDEADBEEF);
    DecimalArgOutBuilder builder(words.data());
    const DecimalFold plan = DecimalFold::plan(exponent, static_cast<std::int64_t>(digits.size()));
    if (plan.is_too_large) {
        return std::nullopt;
    }
    builder.begin_accept_decimal(sign, plan.exponent, plan.round_position);
    for (std::int64_t start = 0; start < plan.digit_count; start += DecimalArgOutBuilder::GroupSize) {
        const std::int64_t stop = std::min(start + DecimalArgOutBuilder::GroupSize, plan.digit_count);
        std::uint64_t group = 0;
        for (std::int64_t i = start; i < stop; ++i) {
            group = group * 10 + static_cast<std::uint64_t>(digits[static_cast<std::size_t>(i)]);
        }
        builder.accept_decimal_mantissa(group, static_cast<int>(stop - start));
    }
    return builder.end_accept_decimal() ? std::optional(words) : std::nullopt;
}

Wide half_even_tenth(Wide value) {
    const Wide tenth = value / 10;
    const auto digit = static_cast<int>(value % 10);
    return tenth + (digit > 5 || (digit == 5 && tenth % 2 == 1) ? 1 : 0);
}

/// The same in one piece of wide arithmetic: at most 29 digits and the one behind them are looked at. Parity
/// is that of the rest of the rounding digit's own group of nine: where it stands alone there, a tie goes
/// down.
std::string model(int sign, const Digits& digits, std::int64_t exponent) {
    const auto n = static_cast<std::int64_t>(digits.size());
    if (exponent + n > 29 && n > 1) {
        return "too large";
    }
    std::int64_t kept = std::min<std::int64_t>(n, 29);
    if (exponent < -28) {
        kept = std::min(kept, n + exponent + 28);
    }
    Wide mantissa = 0;
    if (kept >= 0) {
        const std::int64_t looked_at = std::min(kept + 1, n);
        for (std::int64_t i = 0; i < looked_at; ++i) {
            mantissa = mantissa * 10 + static_cast<Wide>(digits[static_cast<std::size_t>(i)]);
        }
        if (looked_at > kept) {
            const bool is_tie_alone = kept % 9 == 0 && mantissa % 10 == 5;
            mantissa = is_tie_alone ? mantissa / 10 : half_even_tenth(mantissa);
        }
    }
    std::int64_t scale = -(exponent + n - std::max<std::int64_t>(kept, 0));
    if (exponent < -28 && kept < 0) {
        scale = 28;
    }
    if (kept == 29 && scale > 0 && mantissa > MaxMantissa) {
        mantissa = half_even_tenth(mantissa);
        --scale;
    }
    if (mantissa == 0) {
        return "+0/0";
    }
    for (; scale < 0 && mantissa <= MaxMantissa; ++scale) {
        mantissa *= 10;
    }
    if (mantissa > MaxMantissa) {
        return "too large";
    }
    return (sign != 0 ? "-" : "+") + text_of(mantissa) + "/" + std::to_string(scale);
}

TEST(TenPow, Powers) {
    std::uint64_t expected = 1;
    for (int n = 0; n <= 19; ++n, expected *= 10) {
        EXPECT_EQ(TenPow::pow(n), expected);
    }
}

TEST(DecimalArgOutBuilder, FoldsDigits) {
    struct Row {
        const char* digits;
        std::int64_t exponent;
        const char* decimal;
    };
    for (const Row& row : {
             Row{"0", 0, "+0/0"},
             Row{"", 0, "+0/0"},
             Row{"1", 0, "+1/0"},
             Row{"123456789012", -3, "+123456789012/3"},
             Row{"79228162514264337593543950335", 0, "+79228162514264337593543950335/0"},
             Row{"79228162514264337593543950336", 0, "too large"},
             Row{"79228162514264337593543950335", -4, "+79228162514264337593543950335/4"},
             Row{"79228162514264337593543950336", -4, "+7922816251426433759354395034/3"},
             Row{"79228162514264337593543950336", -1, "+7922816251426433759354395034/0"},
             Row{"79228162514264337593543950345", -4, "+7922816251426433759354395034/3"},
             Row{"79228162514264337593543950355", -4, "+7922816251426433759354395036/3"},
             Row{"79228162514264337593543950399", -28, "+7922816251426433759354395040/27"},
             Row{"99999999999999999999999999999", -28, "+10000000000000000000000000000/27"},
             Row{"99999999999999999999999999999", 0, "too large"},
             Row{"999999999999999999999999999999", -30, "+10000000000000000000000000000/28"},
             Row{"999999999999999999999999999999", -29, "+10000000000000000000000000000/27"},
             Row{"1", 28, "+10000000000000000000000000000/0"},
             Row{"7", 28, "+70000000000000000000000000000/0"},
             Row{"8", 28, "too large"},
             Row{"10", 28, "too large"},
             Row{"1", -28, "+1/28"},
             Row{"1", -29, "+0/0"},
             Row{"5", -29, "+0/0"},
             Row{"6", -29, "+1/28"},
             Row{"15", -29, "+2/28"},
             Row{"25", -29, "+2/28"},
             Row{"251", -30, "+2/28"},
             Row{"1234567895", -29, "+123456789/28"},
             Row{"1234567896", -29, "+123456790/28"},
             Row{"12345678915", -29, "+1234567892/28"},
             Row{"9", -30, "+0/0"},
             Row{"99", -30, "+1/28"},
             Row{"0", 100, "+0/0"},
             Row{"", 100, "+0/0"},
             Row{"1", 1000000000000000000, "too large"},
             Row{"0", 1000000000000000000, "+0/0"},
             Row{"1", INT64_MAX, "too large"},
             Row{"1234", INT64_MAX, "too large"},
             Row{"1234", INT64_MIN, "+0/0"},
             Row{"123456789012345678901234567895", -30, "+1234567890123456789012345679/28"},
             Row{"123456789012345678901234567895", -1, "+12345678901234567890123456790/0"},
             Row{"1234567890123456789012345678959999", -5, "+12345678901234567890123456790/0"},
             // A tie at the thirtieth digit goes to even, whatever follows.
             Row{"1000000000000000000000000000259", -2, "+10000000000000000000000000002/0"},
             Row{"1000000000000000000000000000359", -2, "+10000000000000000000000000004/0"},
         }) {
        EXPECT_EQ(show(fold(0, digits_of(row.digits), row.exponent)), row.decimal)
            << row.digits << "E" << row.exponent;
    }
}

TEST(DecimalArgOutBuilder, ZeroHasNoSignAndNoScale) {
    EXPECT_EQ(show(fold(1, {0}, -5)), "+0/0");
    EXPECT_EQ(show(fold(1, {5}, 0)), "-5/0");
    EXPECT_EQ((*fold(1, {5}, -2))[3], 0x80020000U);
}

TEST(DecimalArgOutBuilder, AgreesWithWideArithmetic) {
    std::mt19937_64 random(20231);
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<std::uint64_t>(limit));
    };
    for (int i = 0; i < 1000000; ++i) {
        Digits digits(static_cast<std::size_t>(below(61)));
        const bool is_near_limit = below(4) == 0;
        const std::string limit = "79228162514264337593543950335";
        for (std::size_t d = 0; d < digits.size(); ++d) {
            digits[d] = is_near_limit && d < 27 ? limit[d] - '0' : below(3) == 0 ? 5 : below(10);
        }
        const std::int64_t exponent = below(121) - 60;
        const int sign = below(2);
        ASSERT_EQ(show(fold(sign, digits, exponent)), model(sign, digits, exponent))
            << ::testing::PrintToString(digits) << "E" << exponent;
    }
}

TEST(DecimalArgOutBuilder, AcceptsPlainIntegers) {
    Words words;
    DecimalArgOutBuilder builder(words.data());
    EXPECT_EQ(builder.accept_long(0xFEDCBA9876543210, 1), 1);
    EXPECT_EQ(words, (Words{0x76543210, 0xFEDCBA98, 0, 0x80000000}));
}

TEST(DecimalArgOutBuilder, AcceptsDoublesAsBits) {
    Words words;
    EXPECT_EQ(DecimalArgOutBuilder(words.data()).accept_double(std::nan("")), -1);
    EXPECT_EQ(DecimalArgOutBuilder(words.data()).accept_double(1.0), 0);
    EXPECT_EQ(words, (Words{0, 0x3FF00000, 0, 1}));
    // 2^95 is the first bit pattern within 96 bits, 2^96 the first beyond.
    EXPECT_EQ(DecimalArgOutBuilder(words.data()).accept_double(std::ldexp(1.0, 95)), 0);
    EXPECT_EQ(DecimalArgOutBuilder(words.data()).accept_double(std::ldexp(1.0, 96)), 1);
    EXPECT_EQ(words[3], 0U);
    EXPECT_EQ(DecimalArgOutBuilder(words.data()).accept_double(-HUGE_VAL), 1);
}

TEST(DecimalArgInBuilder, DividesDownToDigits) {
    struct Row {
        Words words;
        const char* digits;
        int scale, sign;
    };
    for (Row row : {
             Row{{0, 0, 0, 0}, "0", 0, 0},
             Row{{0, 0, 0, 0x00050000}, "0", 5, 0},
             Row{{7, 0, 0, 0x80000000}, "7", 0, 1},
             Row{{0, 1, 0, 0x001C0000}, "4294967296", 28, 0},
             Row{{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0x801C0000}, "79228162514264337593543950335", 28, 1},
         }) {
        const DecimalArgInBuilder builder(row.words.data());
        EXPECT_EQ(Digits(builder.mantissa_cbegin(), builder.mantissa_cbegin() + builder.mantissa_length()),
                  digits_of(row.digits));
        EXPECT_EQ(builder.exponent(), row.scale);
        EXPECT_EQ(builder.sign(), row.sign);
        EXPECT_EQ(mantissa_of(row.words), Wide{0});
    }
}

}  // namespace
