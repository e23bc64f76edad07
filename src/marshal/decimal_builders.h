#pragma once

#include <cstddef>
#include <cstdint>

// The arithmetic between a managed decimal and decimal digits; no Python in it.
//
// A managed decimal is four 32-bit words: low, middle and high word of a 96-bit mantissa, then the flags: bit
// 31 the sign, bits 16 to 23 the scale (0 to 28), the power of ten to divide by.

/// Powers of ten.
struct TenPow {
    /// `n` is 0 to 19.
    static std::uint64_t pow(int n);
};

/// Folds decimal digits into a managed decimal, in groups of up to nine from the front.
class DecimalArgOutBuilder {
public:
    /// Digits that a managed decimal holds at most.
    static constexpr int MaxDigits = 29;
    static constexpr int MaxScale = 28;
    static constexpr int GroupSize = 9;
    static constexpr int NoRounding = -1;

    /// Clears the four words.
    explicit DecimalArgOutBuilder(std::uint32_t* words);

    /// `round_position`: at which digit, counted from 1, a last digit is folded only to round the one before
    /// it.
    void begin_accept_decimal(int sign, std::int64_t exponent, int round_position);

    /// Takes a group of one to nine digits.
    void accept_decimal_mantissa(std::uint64_t group, int digits);

    /// Writes the flags. False when the value does not fit 96 bits; the words are then undefined.
    bool end_accept_decimal();

    /// The plain value; always 1.
    int accept_long(std::uint64_t value, int sign);

    /// The bits of the value in the low and middle words: -1 for a NaN, 1 when it is too large, else 0 with
    /// the flags word 1.
    int accept_double(double value);

    bool is_zero() const;

private:
    void imul_and_add(std::uint32_t factor, std::uint32_t addend);
    void round_last(std::uint64_t& group, std::uint64_t factor);
    bool is_overflow_estimated(std::uint64_t group) const;
    void move_exponent_to_mantissa();

    std::uint32_t* m_words;
    std::int32_t m_is_overflow = 0;
    std::int32_t m_round_position = NoRounding;
    std::int64_t m_exponent = 0;
    std::int32_t m_sign = 0;
    std::int32_t m_digits_seen = 0;
};

/// Which digits of a Python decimal are folded, and how.
struct DecimalFold {
    bool is_too_large;
    std::int64_t exponent;  // as begin_accept_decimal takes it
    int round_position;
    std::int64_t digit_count;  // digits to fold, from the front

    /// The plan for `digits` digits with the power of ten `exponent`.
    static DecimalFold plan(std::int64_t exponent, std::int64_t digits);
};

/// Divides a managed decimal down to decimal digits. The mantissa in the source record is zero afterwards.
class DecimalArgInBuilder {
public:
    explicit DecimalArgInBuilder(std::uint32_t* words);

    /// Digit values, most significant first.
    const std::uint8_t* mantissa_cbegin() const { return m_digits; }
    std::int32_t mantissa_length() const { return m_mantissa_length; }
    /// The scale: the power of ten to divide by.
    std::int32_t exponent() const { return m_exponent; }
    std::int32_t sign() const { return m_sign; }

private:
    void assign();

    std::uint32_t* m_words;
    std::uint8_t m_digits[32] = {};
    std::int32_t m_mantissa_length = 0;
    std::int32_t m_exponent = 0;
    std::int32_t m_sign = 0;
};
