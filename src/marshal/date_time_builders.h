#pragma once

#include <cstdint>

// Calendar arithmetic between the fields of a date or a time span and managed ticks of 100 ns; no Python in
// it.

inline constexpr std::int64_t TicksPerMicrosecond = 10;
inline constexpr std::int64_t TicksPerSecond = 10000000;
inline constexpr std::int64_t TicksPerMinute = 600000000;
inline constexpr std::int64_t TicksPerHour = 36000000000;
inline constexpr std::int64_t TicksPerDay = 864000000000;

/// The last tick of the year 9999.
inline constexpr std::int64_t MaxDateTimeTicks = 3155378975999999999;

/// A DateTime as fields. As ticks it counts from 0001-01-01 00:00 in bits 0 to 61, with the kind in bits 62
/// and 63.
struct DateTimeArgBuilder {
    static constexpr std::int32_t KindUnspecified = 0;
    static constexpr std::int32_t KindUtc = 1;
    static constexpr std::int32_t KindLocal = 2;

    std::int32_t kind = KindUnspecified;
    std::int32_t year = 1;
    std::int32_t month = 1;
    std::int32_t day = 1;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t microsecond = 0;

    DateTimeArgBuilder() = default;
    /// From ticks with kind bits; what is below a microsecond is lost.
    explicit DateTimeArgBuilder(std::int64_t value) { from_ticks(value); }

    bool is_leap_year() const;

    /// Ticks with the kind bits. False when the fields are no date of the years 1 to 9999.
    bool to_ticks(std::int64_t& out) const;

    /// The same, shifted to UTC. False when the shift leaves the range.
    bool to_utc_ticks(std::int64_t offset, std::int64_t& out) const;

    /// The time of day on the date as it stands, shifted to UTC within its day: it wraps and never fails.
    void to_time_ticks(std::int64_t offset, std::int64_t& out) const;

    /// Ticks alone, without kind bits.
    bool to_ticks_non_kind(std::int64_t& out) const;

    void from_ticks(std::int64_t value);

private:
    /// Days before each month, and at the end the days of the year.
    static const std::int32_t m_days_to_month365[13];
    static const std::int32_t m_days_to_month366[13];

    void add_shift(std::int64_t& out) const;
};

/// A TimeSpan as the fields of a `timedelta`.
struct TimeSpanArgBuilder {
    std::int32_t days = 0;
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;

    TimeSpanArgBuilder() = default;
    /// From ticks: the fields share their sign, and what is below a microsecond is lost.
    explicit TimeSpanArgBuilder(std::int64_t ticks) { from_ticks(ticks); }

    /// False when the span does not fit 64-bit ticks. Leaves the fields with one common sign.
    bool to_ticks(std::int64_t& out);

    void from_ticks(std::int64_t ticks);

private:
    void normalize();
    static bool is_overflow(std::int64_t total_seconds, std::int64_t microseconds);
};
