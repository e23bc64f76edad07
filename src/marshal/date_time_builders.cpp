#include "marshal/date_time_builders.h"

namespace {

constexpr unsigned KindShift = 62;
constexpr std::uint64_t TicksMask = (std::uint64_t{1} << KindShift) - 1;

constexpr std::int64_t DaysPerYear = 365;
constexpr std::int64_t DaysPer4Years = 1461;
constexpr std::int64_t DaysPer100Years = 36524;
constexpr std::int64_t DaysPer400Years = 146097;

// A leap second counts as one second before the end of its minute.
constexpr std::int64_t LeapSecondTicks = 590000000;

constexpr std::int64_t SecondsPerDay = 86400;
constexpr std::int64_t MicrosecondsPerSecond = 1000000;

// The span of 64-bit ticks is 922337203685 seconds and 477580 microseconds, either way.
constexpr std::int64_t MaxSpanSeconds = 922337203685;
constexpr std::int64_t MaxSpanMicroseconds = 477580;

}  // namespace

const std::int32_t DateTimeArgBuilder::m_days_to_month365[13] = {0,   31,  59,  90,  120, 151, 181,
                                                                 212, 243, 273, 304, 334, 365};
const std::int32_t DateTimeArgBuilder::m_days_to_month366[13] = {0,   31,  60,  91,  121, 152, 182,
                                                                 213, 244, 274, 305, 335, 366};

bool DateTimeArgBuilder::is_leap_year() const {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

bool DateTimeArgBuilder::to_ticks_non_kind(std::int64_t& out) const {
    if (year < 1 || year > 9999 || month < 1 || month > 12) {
        return false;
    }
    const std::int32_t* days_to_month = is_leap_year() ? m_days_to_month366 : m_days_to_month365;
    if (day < 1 || day > days_to_month[month] - days_to_month[month - 1]) {
        return false;
    }
    const std::int64_t y = year - 1;
    const std::int64_t days =
        y * DaysPerYear + y / 4 - y / 100 + y / 400 + days_to_month[month - 1] + day - 1;
    const std::int64_t second_ticks = second == 60 ? LeapSecondTicks : second * TicksPerSecond;
    out = days * TicksPerDay + hour * TicksPerHour + minute * TicksPerMinute + second_ticks +
          microsecond * TicksPerMicrosecond;
    return out <= MaxDateTimeTicks;
}

bool DateTimeArgBuilder::to_ticks(std::int64_t& out) const {
    if (!to_ticks_non_kind(out)) {
        return false;
    }
    add_shift(out);
    return true;
}

bool DateTimeArgBuilder::to_utc_ticks(std::int64_t offset, std::int64_t& out) const {
    std::int64_t ticks = 0;
    if (!to_ticks_non_kind(ticks) || ticks < offset) {
        return false;
    }
    // Unsigned: a difference of two 64-bit values that is not negative fits, whatever the offset.
    const std::uint64_t shifted = static_cast<std::uint64_t>(ticks) - static_cast<std::uint64_t>(offset);
    if (shifted > static_cast<std::uint64_t>(MaxDateTimeTicks)) {
        return false;
    }
    out = static_cast<std::int64_t>(shifted);
    add_shift(out);
    return true;
}

void DateTimeArgBuilder::to_time_ticks(std::int64_t offset, std::int64_t& out) const {
    std::int64_t ticks = 0;
    to_ticks_non_kind(ticks);
    out = (ticks + TicksPerDay - offset % TicksPerDay) % TicksPerDay;
    add_shift(out);
}

void DateTimeArgBuilder::add_shift(std::int64_t& out) const {
    out = static_cast<std::int64_t>(static_cast<std::uint64_t>(out) | static_cast<std::uint64_t>(kind)
                                                                          << KindShift);
}

void DateTimeArgBuilder::from_ticks(std::int64_t value) {
    kind = static_cast<std::int32_t>(static_cast<std::uint64_t>(value) >> KindShift);
    const auto ticks = static_cast<std::int64_t>(static_cast<std::uint64_t>(value) & TicksMask);

    const std::int64_t days = ticks / TicksPerDay;
    const std::int64_t cycles = days / DaysPer400Years;
    std::int64_t d = days % DaysPer400Years;
    // The last day of a 400-year cycle, and that of a leap year, would begin a fifth part.
    const std::int64_t centuries = d / DaysPer100Years == 4 ? 3 : d / DaysPer100Years;
    d -= centuries * DaysPer100Years;
    const std::int64_t four_years = d / DaysPer4Years;
    d %= DaysPer4Years;
    const std::int64_t years = d / DaysPerYear == 4 ? 3 : d / DaysPerYear;
    d -= years * DaysPerYear;

    year = static_cast<std::int32_t>(400 * cycles + 100 * centuries + 4 * four_years + years + 1);
    const bool is_leap = years == 3 && (four_years != 24 || centuries == 3);
    const std::int32_t* days_to_month = is_leap ? m_days_to_month366 : m_days_to_month365;
    auto m = static_cast<std::int32_t>(d / 32 + 1);  // no month is longer than that
    while (days_to_month[m] <= d) {
        ++m;
    }
    month = m;
    day = static_cast<std::int32_t>(d + 1 - days_to_month[m - 1]);

    hour = static_cast<std::int32_t>(ticks / TicksPerHour % 24);
    minute = static_cast<std::int32_t>(ticks / TicksPerMinute % 60);
    second = static_cast<std::int32_t>(ticks / TicksPerSecond % 60);
    microsecond = static_cast<std::int32_t>(ticks / TicksPerMicrosecond % MicrosecondsPerSecond);
}

bool TimeSpanArgBuilder::to_ticks(std::int64_t& out) {
    if (days < 0) {
        normalize();
    }
    const std::int64_t total_seconds = days * SecondsPerDay + seconds;
    if (is_overflow(total_seconds, microseconds)) {
        return false;
    }
    out = (total_seconds * MicrosecondsPerSecond + microseconds) * TicksPerMicrosecond;
    return true;
}

void TimeSpanArgBuilder::from_ticks(std::int64_t ticks) {
    days = static_cast<std::int32_t>(ticks / TicksPerDay);
    seconds = static_cast<std::int32_t>(ticks / TicksPerSecond % SecondsPerDay);
    microseconds = static_cast<std::int32_t>(ticks / TicksPerMicrosecond % MicrosecondsPerSecond);
}

void TimeSpanArgBuilder::normalize() {
    const std::int64_t rest =
        seconds * MicrosecondsPerSecond + microseconds - SecondsPerDay * MicrosecondsPerSecond;
    ++days;
    seconds = static_cast<std::int32_t>(rest / MicrosecondsPerSecond);
    microseconds = static_cast<std::int32_t>(rest % MicrosecondsPerSecond);
}

bool TimeSpanArgBuilder::is_overflow(std::int64_t total_seconds, std::int64_t microseconds) {
    if (total_seconds >= MaxSpanSeconds) {
        return total_seconds > MaxSpanSeconds || microseconds > MaxSpanMicroseconds;
    }
    if (total_seconds <= -MaxSpanSeconds) {
        return total_seconds < -MaxSpanSeconds || microseconds < -MaxSpanMicroseconds;
    }
    return false;
}
