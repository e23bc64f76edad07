#include "marshal/date_time_builders.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace {

using Fields = std::array<std::int32_t, 8>;

Fields fields_of(const DateTimeArgBuilder& b) {
    return {b.kind, b.year, b.month, b.day, b.hour, b.minute, b.second, b.microsecond};
}

DateTimeArgBuilder builder_of(const Fields& f) {
    DateTimeArgBuilder builder;
    builder.kind = f[0];
    builder.year = f[1];
    builder.month = f[2];
    builder.day = f[3];
    builder.hour = f[4];
    builder.minute = f[5];
    builder.second = f[6];
    builder.microsecond = f[7];
    return builder;
}

std::int64_t with_kind(std::uint64_t kind, std::int64_t ticks) {
    return static_cast<std::int64_t>(kind << 62 | static_cast<std::uint64_t>(ticks));
}

TEST(DateTimeArgBuilder, StartsAtTheFirstDay) {
    EXPECT_EQ(fields_of(DateTimeArgBuilder()), (Fields{0, 1, 1, 1, 0, 0, 0, 0}));
    std::int64_t ticks = -1;
    EXPECT_TRUE(DateTimeArgBuilder().to_ticks(ticks));
    EXPECT_EQ(ticks, 0);
}

TEST(DateTimeArgBuilder, EveryDayOfTheRangeThereAndBack) {
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    std::int64_t day_number = 0;
    for (int year = 1; year <= 9999; ++year) {
        const bool is_leap = year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
        for (int month = 1; month <= 12; ++month) {
            const int length = lengths[month - 1] + (month == 2 && is_leap ? 1 : 0);
            for (int day = 1; day <= length; ++day, ++day_number) {
                const DateTimeArgBuilder builder(day_number * TicksPerDay + 1);
                ASSERT_TRUE(builder.year == year && builder.month == month && builder.day == day)
                    << year << "-" << month << "-" << day;
                std::int64_t ticks = 0;
                ASSERT_TRUE(builder.to_ticks(ticks));
                ASSERT_EQ(ticks, day_number * TicksPerDay);
            }
            std::int64_t ticks = 0;
            ASSERT_FALSE(builder_of({0, year, month, length + 1, 0, 0, 0, 0}).to_ticks(ticks));
        }
    }
    EXPECT_EQ(day_number * TicksPerDay - 1, MaxDateTimeTicks);
}

TEST(DateTimeArgBuilder, TimeOfDayAndKind) {
    const Fields last{2, 9999, 12, 31, 23, 59, 59, 999999};
    std::int64_t ticks = 0;
    EXPECT_TRUE(builder_of(last).to_ticks(ticks));
    EXPECT_EQ(ticks, with_kind(2, 3155378975999999990));
    EXPECT_EQ(fields_of(DateTimeArgBuilder(ticks)), last);
    // The last digit is below a microsecond.
    EXPECT_EQ(fields_of(DateTimeArgBuilder(with_kind(1, MaxDateTimeTicks))),
              (Fields{1, 9999, 12, 31, 23, 59, 59, 999999}));
}

TEST(DateTimeArgBuilder, RefusesWhatIsNoDate) {
    std::int64_t ticks = 0;
    for (const Fields& fields : {Fields{0, 0, 1, 1}, Fields{0, 10000, 1, 1}, Fields{0, 1, 0, 1},
                                 Fields{0, 1, 13, 1}, Fields{0, 1, 1, 0}, Fields{0, 1900, 2, 29}}) {
        EXPECT_FALSE(builder_of(fields).to_ticks(ticks));
    }
    EXPECT_TRUE(builder_of({0, 2000, 2, 29}).to_ticks(ticks));
    // Hours are not validated, the range is.
    EXPECT_FALSE(builder_of({0, 9999, 12, 31, 24}).to_ticks(ticks));
}

TEST(DateTimeArgBuilder, LeapSecondIsTheLastSecondOfItsMinute) {
    std::int64_t leap = 0, last = 0;
    EXPECT_TRUE(builder_of({0, 2016, 12, 31, 23, 59, 60, 0}).to_ticks(leap));
    EXPECT_TRUE(builder_of({0, 2016, 12, 31, 23, 59, 59, 0}).to_ticks(last));
    EXPECT_EQ(leap, last);
}

TEST(DateTimeArgBuilder, ShiftToUtc) {
    std::int64_t ticks = 0;
    const DateTimeArgBuilder first = builder_of({1, 1, 1, 1});
    EXPECT_TRUE(first.to_utc_ticks(0, ticks));
    EXPECT_EQ(ticks, with_kind(1, 0));
    EXPECT_FALSE(first.to_utc_ticks(1, ticks));
    EXPECT_TRUE(first.to_utc_ticks(-TicksPerHour, ticks));
    EXPECT_EQ(ticks, with_kind(1, TicksPerHour));
    EXPECT_FALSE(first.to_utc_ticks(std::numeric_limits<std::int64_t>::max(), ticks));
    EXPECT_FALSE(first.to_utc_ticks(std::numeric_limits<std::int64_t>::min(), ticks));
    const DateTimeArgBuilder last = builder_of({1, 9999, 12, 31, 23, 59, 59, 999999});
    EXPECT_TRUE(last.to_utc_ticks(-9, ticks));
    EXPECT_EQ(ticks, with_kind(1, MaxDateTimeTicks));
    EXPECT_FALSE(last.to_utc_ticks(-10, ticks));
    EXPECT_FALSE(builder_of({1, 0, 1, 1}).to_utc_ticks(0, ticks));
}

TEST(DateTimeArgBuilder, TimeOfDayWraps) {
    struct Row {
        int hour, minute;
        std::int64_t offset, expected;
    };
    for (const Row& row :
         {Row{0, 30, TicksPerHour, 23 * TicksPerHour + 30 * TicksPerMinute},
          Row{23, 0, -2 * TicksPerHour, TicksPerHour}, Row{12, 0, 0, 12 * TicksPerHour},
          Row{1, 0, 3 * TicksPerDay + TicksPerHour, 0}, Row{1, 0, -3 * TicksPerDay, TicksPerHour}}) {
        std::int64_t ticks = 0;
        builder_of({1, 1, 1, 1, row.hour, row.minute}).to_time_ticks(row.offset, ticks);
        EXPECT_EQ(ticks, with_kind(1, row.expected));
    }
}

TEST(TimeSpanArgBuilder, ToTicks) {
    struct Row {
        std::int32_t days, seconds, microseconds;
        bool fits;
        std::int64_t ticks;
    };
    for (const Row& row : {
             Row{0, 0, 0, true, 0},
             Row{1, 2, 3, true, 864020000030},
             Row{-1, 0, 0, true, -TicksPerDay},
             Row{-1, 86399, 999999, true, -10},
             Row{-2, 86399, 999999, true, -TicksPerDay - 10},
             Row{-1, 86399, 0, true, -TicksPerSecond},
             Row{10675199, 10085, 477580, true, 9223372036854775800},
             Row{10675199, 10085, 477581, false, 0},
             Row{10675199, 10086, 0, false, 0},
             Row{-10675200, 76314, 522420, true, -9223372036854775800},
             Row{-10675200, 76314, 522419, false, 0},
             Row{999999999, 86399, 999999, false, 0},
             Row{-999999999, 0, 0, false, 0},
         }) {
        TimeSpanArgBuilder builder;
        builder.days = row.days;
        builder.seconds = row.seconds;
        builder.microseconds = row.microseconds;
        std::int64_t ticks = 0;
        EXPECT_EQ(builder.to_ticks(ticks), row.fits);
        EXPECT_EQ(ticks, row.ticks) << row.days << " " << row.seconds << " " << row.microseconds;
    }
}

TEST(TimeSpanArgBuilder, FromTicksSharesTheSign) {
    const TimeSpanArgBuilder positive(TicksPerDay + 2 * TicksPerSecond + 39);
    EXPECT_TRUE(positive.days == 1 && positive.seconds == 2 && positive.microseconds == 3);
    const TimeSpanArgBuilder negative(-(TicksPerDay + 2 * TicksPerSecond + 39));
    EXPECT_TRUE(negative.days == -1 && negative.seconds == -2 && negative.microseconds == -3);
    const TimeSpanArgBuilder lowest(std::numeric_limits<std::int64_t>::min());
    EXPECT_TRUE(lowest.days == -10675199 && lowest.seconds == -10085 && lowest.microseconds == -477580);
}

}  // namespace
