#include "marshal/datetime.h"

#include "python_fixture.h"

#include <array>
#include <random>

namespace {

using Converter = int (*)(PyObject*, std::int64_t*);

constexpr char OutOfRange[] = "OverflowError: value too large or too small for .Net DateTime";

std::int64_t utc(std::int64_t ticks) {
    return ticks | std::int64_t{1} << 62;
}

std::int64_t local(std::int64_t ticks) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(ticks) | std::uint64_t{2} << 62);
}

class DateTime : public ::testing::Test {
protected:
    void SetUp() override {
        run("from datetime import *\n"
            "hour = timezone(timedelta(hours=1))\n"
            "class Zone(tzinfo):\n"
            "    def __init__(self, offset):\n        self.offset = offset\n"
            "    def utcoffset(self, value):\n        return self.offset\n"
            "class Odd(datetime):\n"
            "    def utcoffset(self):\n        return self.tzinfo.offset() \n");
        ASSERT_TRUE(fn_import_datetime_api());
    }

    /// "status: first[, second]" or the error.
    static std::string convert(Converter converter, const char* expression) {
        const PyRef value = eval(expression);
        const SameReferences same(value.get());
        std::int64_t out[2] = {-7, -7};
        const int status = converter(value.get(), out);
        if (status == 0) {
            return take_error();
        }
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        return std::to_string(status) + ": " + std::to_string(out[0]) +
               (out[1] != -7 ? ", " + std::to_string(out[1]) : "");
    }

    static std::string one(std::int64_t ticks) { return "1: " + std::to_string(ticks); }

    static std::string pair(int status, std::int64_t ticks, std::int64_t offset) {
        return std::to_string(status) + ": " + std::to_string(ticks) + ", " + std::to_string(offset);
    }

    static std::string shown(PyObject* value) {
        return value == nullptr ? take_error() : repr_of(PyRef::steal(value).get());
    }
};

TEST_F(DateTime, NaiveValues) {
    const Converter to = fn_conv_py_datetime_to_clr_datetime;
    EXPECT_EQ(convert(to, "datetime(1, 1, 1)"), one(0));
    EXPECT_EQ(convert(to, "datetime(9999, 12, 31, 23, 59, 59, 999999)"), one(3155378975999999990));
    EXPECT_EQ(convert(to, "date(1, 1, 2)"), one(TicksPerDay));
    EXPECT_EQ(convert(to, "time(1, 2, 3, 4)"),
              one(TicksPerHour + 2 * TicksPerMinute + 3 * TicksPerSecond + 40));
    EXPECT_EQ(convert(to, "datetime(1, 1, 1, tzinfo=Zone(None))"), one(0));
    EXPECT_EQ(convert(to, "1"), "TypeError: can't build DateTime from 'int'");
    EXPECT_EQ(convert(to, "timedelta(1)"), "TypeError: can't build DateTime from 'datetime.timedelta'");
    EXPECT_EQ(convert(to, "None"), "TypeError: can't build DateTime from 'NoneType'");
}

TEST_F(DateTime, AwareValuesAreShiftedToUtc) {
    const Converter to = fn_conv_py_datetime_to_clr_datetime;
    EXPECT_EQ(convert(to, "datetime(1, 1, 1, tzinfo=timezone.utc)"), one(utc(0)));
    EXPECT_EQ(convert(to, "datetime(1, 1, 1, 2, tzinfo=hour)"), one(utc(TicksPerHour)));
    EXPECT_EQ(convert(to, "datetime(1, 1, 1, tzinfo=hour)"), OutOfRange);
    EXPECT_EQ(convert(to, "datetime(9999, 12, 31, 23, 30, tzinfo=timezone(-timedelta(hours=1)))"),
              OutOfRange);
    EXPECT_EQ(convert(to, "time(0, 30, tzinfo=hour)"), one(utc(23 * TicksPerHour + 30 * TicksPerMinute)));
}

TEST_F(DateTime, OffsetsThatCannotBeHad) {
    const Converter to = fn_conv_py_datetime_to_clr_datetime;
    run("def odd(offset):\n"
        "    zone = Zone(None)\n    zone.offset = offset\n    return Odd(2000, 1, 1, tzinfo=zone)\n");
    EXPECT_EQ(convert(to, "odd(lambda: 1 / 0)"), "ZeroDivisionError: division by zero");
    EXPECT_EQ(convert(to, "odd(lambda: 5)"), "TypeError: instance utcoffset() return wrong value");
    EXPECT_EQ(convert(to, "odd(lambda: timedelta.max)"),
              "OverflowError: value too large or too small utc offset");
    EXPECT_EQ(convert(to, "odd(lambda: timedelta(days=10000000))"), OutOfRange);
    EXPECT_EQ(convert(fn_read_py_vers_datetime, "odd(lambda: 5)"),
              "TypeError: instance utcoffset() return wrong value");
}

TEST_F(DateTime, WithOffset) {
    const Converter to = fn_conv_py_datetime_to_clr_datetimeoffset;
    EXPECT_EQ(convert(to, "datetime(1, 1, 1, tzinfo=hour)"), pair(1, 0, TicksPerHour));
    EXPECT_EQ(convert(to, "time(2, tzinfo=hour)"), pair(1, 2 * TicksPerHour, TicksPerHour));
    EXPECT_EQ(convert(to, "datetime(1, 1, 1)"),
              "ValueError: The tzinfo property of a given datetime should not be None");
    EXPECT_EQ(convert(to, "time(1)"), "ValueError: The tzinfo property of a given time should not be None");
    EXPECT_EQ(convert(to, "date(1, 1, 1)"), "TypeError: can't build DateTime from 'datetime.date'");
    EXPECT_EQ(convert(to, "5"), "TypeError: can't build DateTime from 'int'");
}

TEST_F(DateTime, ReadCallbacks) {
    EXPECT_EQ(convert(fn_read_py_vers_datetime, "datetime(1, 1, 2)"), one(TicksPerDay));
    EXPECT_EQ(convert(fn_read_py_vers_datetime, "datetime(1, 1, 1, tzinfo=hour)"), pair(2, 0, TicksPerHour));
    EXPECT_EQ(convert(fn_read_py_vers_date, "date(1, 1, 2)"), one(TicksPerDay));
    EXPECT_EQ(convert(fn_read_py_vers_time, "time(2)"), one(2 * TicksPerHour));
    EXPECT_EQ(convert(fn_read_py_vers_time, "time(2, tzinfo=hour)"), pair(2, 2 * TicksPerHour, TicksPerHour));
    EXPECT_EQ(convert(fn_read_py_datetimedelta, "timedelta(microseconds=-1)"), one(-10));
}

TEST_F(DateTime, TimeSpans) {
    const Converter to = fn_conv_py_datetimedelta_to_clr_timespan;
    EXPECT_EQ(convert(to, "timedelta(days=-1)"), one(-TicksPerDay));
    EXPECT_EQ(convert(to, "timedelta(days=1, microseconds=1)"), one(TicksPerDay + 10));
    for (const char* expression : {"timedelta.max", "timedelta.min"}) {
        EXPECT_EQ(convert(to, expression), "OverflowError: value too large or too small for .Net TimeSpan");
    }
    EXPECT_EQ(convert(to, "1.5"), "TypeError: can't build TimeSpan from 'float'");
    EXPECT_EQ(shown(fn_write_py_datetimedelta(-19)),
              "datetime.timedelta(days=-1, seconds=86399, microseconds=999999)");
    EXPECT_EQ(shown(fn_write_py_datetimedelta(TicksPerDay + 19)),
              "datetime.timedelta(days=1, microseconds=1)");
    EXPECT_EQ(shown(fn_write_py_datetimedelta(INT64_MIN)),
              "datetime.timedelta(days=-10675200, seconds=76314, microseconds=522420)");
}

TEST_F(DateTime, ManagedDateTimes) {
    const auto to_py = [](std::int64_t value, std::int64_t offset) {
        const std::int64_t values[] = {value, offset};
        return shown(fn_write_py_date_time(values));
    };
    EXPECT_EQ(to_py(0, 5), "datetime.datetime(1, 1, 1, 0, 0)");
    EXPECT_EQ(to_py(MaxDateTimeTicks, 0), "datetime.datetime(9999, 12, 31, 23, 59, 59, 999999)");
    EXPECT_EQ(to_py(utc(TicksPerHour), 5), "datetime.datetime(1, 1, 1, 1, 0, tzinfo=datetime.timezone.utc)");
    EXPECT_EQ(to_py(local(0), -TicksPerHour),
              "datetime.datetime(1, 1, 1, 0, 0, "
              "tzinfo=datetime.timezone(datetime.timedelta(days=-1, seconds=82800)))");
    EXPECT_EQ(to_py(local(0), 2 * TicksPerDay).substr(0, 11), "ValueError:");
    const std::int64_t with_offset[] = {TicksPerDay, TicksPerHour};
    EXPECT_EQ(shown(fn_write_py_date_time_offset(with_offset)),
              "datetime.datetime(1, 1, 2, 0, 0, tzinfo=datetime.timezone(datetime.timedelta(seconds=3600)))");
}

TEST_F(DateTime, ThereAndBackLosesNothing) {
    run("import random\nrandom.seed(20231)\n"
        "first = datetime(1, 1, 1)\n"
        "span = (datetime.max - first) // timedelta(microseconds=1)\n"
        "def some():\n    return first + timedelta(microseconds=random.randrange(span + 1))\n"
        "def ticks(value):\n    return (value - first) // timedelta(microseconds=1) * 10\n");
    const PyRef some = eval("some");
    const PyRef ticks = eval("ticks");
    for (int i = 0; i < 20000; ++i) {
        const PyRef value = PyRef::steal(PyObject_CallNoArgs(some.get()));
        const PyRef expected = PyRef::steal(PyObject_CallOneArg(ticks.get(), value.get()));
        std::int64_t out[2] = {};
        ASSERT_EQ(fn_conv_py_datetime_to_clr_datetime(value.get(), out), 1);
        ASSERT_EQ(out[0], PyLong_AsLongLong(expected.get()));
        const PyRef back = PyRef::steal(fn_conv_clr_datetime_to_py_datetime(out));
        ASSERT_EQ(PyObject_RichCompareBool(back.get(), value.get(), Py_EQ), 1);
    }
}

TEST_F(DateTime, NothingIsLeftBehind) {
    const PyRef zone_type = eval("timezone");
    const PyRef datetime_type = eval("datetime");
    const SameReferences same_zone(zone_type.get()), same_datetime(datetime_type.get());
    const std::int64_t values[] = {local(TicksPerDay), TicksPerHour};
    EXPECT_TRUE(PyRef::steal(fn_conv_clr_datetime_to_py_datetime(values)));
    const std::int64_t in_utc[] = {utc(TicksPerDay), 0};
    EXPECT_TRUE(PyRef::steal(fn_conv_clr_datetime_to_py_datetime(in_utc)));
}

TEST_F(DateTime, TimeZones) {
    const std::u16string_view name = u"Caf\u00e9";
    EXPECT_EQ(shown(fn_write_py_timezone(reinterpret_cast<const char*>(name.data()), 4, TicksPerHour)),
              "datetime.timezone(datetime.timedelta(seconds=3600), 'Caf\u00e9')");
    // None is no name for Python: its own refusal passes through.
    EXPECT_EQ(shown(fn_write_py_timezone(nullptr, -1, 0)),
              "TypeError: timezone() argument 2 must be str, not None");
}

}  // namespace
