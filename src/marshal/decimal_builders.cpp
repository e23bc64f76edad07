#include "marshal/decimal_builders.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

constexpr int Low = 0, Middle = 1, High = 2, Flags = 3;
constexpr unsigned SignShift = 31, ScaleShift = 16;
constexpr std::uint32_t GroupFactor = 1000000000;

// (2^96 - 1) / 100, highest word first, and what 2^96 - 1 leaves over by that division, plus one.
constexpr std::uint32_t MaxMantissaByHundred[] = {42949672, 4123168604, 687194767};
constexpr std::uint64_t MaxMantissaLastGroup = 36;

std::uint32_t low_word(std::uint64_t value) {
    return static_cast<std::uint32_t>(value);
}

}  // namespace

std::uint64_t TenPow::pow(int n) {
    std::uint64_t result = 1;
    for (std::uint64_t base = 10; n > 0; n >>= 1, base *= base) {
        if ((n & 1) != 0) {
            result *= base;
        }
    }
    return result;
}

DecimalArgOutBuilder::DecimalArgOutBuilder(std::uint32_t* words) : m_words(words) {
    std::fill_n(words, 4, 0U);
}

void DecimalArgOutBuilder::begin_accept_decimal(int sign, std::int64_t exponent, int round_position) {
    m_sign = sign;
    m_exponent = exponent;
    m_round_position = round_position;
}

void DecimalArgOutBuilder::accept_decimal_mantissa(std::uint64_t group, int digits) {
    std::uint64_t factor = digits == GroupSize ? GroupFactor : TenPow::pow(digits);
    int seen = m_digits_seen + digits;
    if (seen == m_round_position) {
        round_last(group, factor);
        --seen;
        factor /= 10;
    }
    m_digits_seen = seen;
    if (seen == MaxDigits && m_exponent < 0 && is_overflow_estimated(group)) {
        // One fractional digit is given up, and the mantissa stays within 96 bits.
        ++m_exponent;
        round_last(group, 10);
        imul_and_add(10, low_word(group));
    } else {
        imul_and_add(low_word(factor), low_word(group));
    }
}

bool DecimalArgOutBuilder::end_accept_decimal() {
    if (m_is_overflow != 0) {
        return false;
    }
    if (is_zero()) {
        m_words[Flags] = 0;
        m_sign = 0;
        m_exponent = 0;
    }
    const std::uint32_t sign = low_word(static_cast<std::uint64_t>(m_sign)) << SignShift;
    if (m_exponent <= 0) {
        m_words[Flags] = sign | (low_word(static_cast<std::uint64_t>(-m_exponent)) << ScaleShift);
        return true;
    }
    move_exponent_to_mantissa();
    if (m_is_overflow != 0) {
        return false;
    }
    m_words[Flags] = sign;
    m_exponent = 0;
    return true;
}

int DecimalArgOutBuilder::accept_long(std::uint64_t value, int sign) {
    m_words[Low] = low_word(value);
    m_words[Middle] = low_word(value >> 32);
    m_words[Flags] = low_word(static_cast<std::uint64_t>(sign)) << SignShift;
    return 1;
}

int DecimalArgOutBuilder::accept_double(double value) {
    if (std::isnan(value)) {
        return -1;
    }
    const auto bits = std::bit_cast<std::uint64_t>(value);
    m_words[Low] = low_word(bits);
    m_words[Middle] = low_word(bits >> 32);
    const int magnitude = static_cast<int>((bits >> 52) & 0x7FF) - 1022;
    if (magnitude > 96) {
        return 1;
    }
    m_words[Flags] = 1;
    return 0;
}

bool DecimalArgOutBuilder::is_zero() const {
    return (m_words[Low] | m_words[Middle] | m_words[High]) == 0;
}

void DecimalArgOutBuilder::imul_and_add(std::uint32_t factor, std::uint32_t addend) {
    std::uint64_t carry = addend;
    for (const int word : {Low, Middle, High}) {
        carry += std::uint64_t{m_words[word]} * factor;
        m_words[word] = low_word(carry);
        carry >>= 32;
    }
    if (carry != 0) {
        m_is_overflow = 1;
    }
}

void DecimalArgOutBuilder::round_last(std::uint64_t& group, std::uint64_t factor) {
    // To even by the group alone: a digit that stands alone in its group has 0 before it, so a tie goes down.
    const std::uint64_t digit = group % 10;
    group /= 10;
    if (digit > 5 || (digit == 5 && (group & 1) != 0)) {
        ++group;
    }
    if (group == factor) {
        imul_and_add(1, 1);
        group = 0;
    }
}

bool DecimalArgOutBuilder::is_overflow_estimated(std::uint64_t group) const {
    const std::uint32_t* limit = MaxMantissaByHundred;
    for (const int word : {High, Middle, Low}) {
        if (m_words[word] != *limit) {
            return m_words[word] > *limit;
        }
        ++limit;
    }
    return group >= MaxMantissaLastGroup;
}

void DecimalArgOutBuilder::move_exponent_to_mantissa() {
    // The overflow flag stays set, so an exponent of any size ends after a few steps.
    for (; m_exponent >= GroupSize && m_is_overflow == 0; m_exponent -= GroupSize) {
        imul_and_add(GroupFactor, 0);
    }
    if (m_is_overflow == 0) {
        imul_and_add(low_word(TenPow::pow(static_cast<int>(m_exponent))), 0);
    }
}

DecimalFold DecimalFold::plan(std::int64_t exponent, std::int64_t digits) {
    constexpr std::int64_t max_digits = DecimalArgOutBuilder::MaxDigits;
    constexpr std::int64_t max_scale = DecimalArgOutBuilder::MaxScale;
    constexpr int no_rounding = DecimalArgOutBuilder::NoRounding;
    constexpr int last_rounded = DecimalArgOutBuilder::MaxDigits + 1;

    // Compared in a form in which no exponent overflows.
    if (exponent > max_digits - digits) {
        return {digits > 1, exponent, no_rounding, digits};
    }
    if (exponent >= -max_scale) {
        if (digits <= max_digits) {
            return {false, exponent, no_rounding, digits};
        }
        return {false, exponent + digits - max_digits, last_rounded, last_rounded};
    }
    if (exponent < -max_scale - digits) {
        return {false, -max_scale, no_rounding, 0};  // below the smallest step
    }
    const std::int64_t keep = digits + exponent + max_scale;
    if (keep <= max_digits) {
        return {false, -max_scale, static_cast<int>(keep + 1), keep + 1};
    }
    return {false, keep - max_digits - max_scale, last_rounded, last_rounded};
}

DecimalArgInBuilder::DecimalArgInBuilder(std::uint32_t* words) : m_words(words) {
    assign();
}

void DecimalArgInBuilder::assign() {
    do {
        std::uint64_t remainder = 0;
        for (const int word : {High, Middle, Low}) {
            const std::uint64_t dividend = (remainder << 32) | m_words[word];
            m_words[word] = low_word(dividend / 10);
            remainder = dividend % 10;
        }
        m_digits[m_mantissa_length++] = static_cast<std::uint8_t>(remainder);
    } while ((m_words[Low] | m_words[Middle] | m_words[High]) != 0);
    std::reverse(m_digits, m_digits + m_mantissa_length);
    m_exponent = static_cast<std::int32_t>((m_words[Flags] >> ScaleShift) & 0xFF);
    m_sign = static_cast<std::int32_t>(m_words[Flags] >> SignShift);
}
