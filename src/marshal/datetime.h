#pragma once

#include "marshal/date_time_builders.h"
#include "startup/cpython.h"

#include <cstdint>

// Dates and times, in ticks of 100 ns: a DateTime has its kind in the top two bits, a DateTimeOffset is a
// pair of clock ticks and offset, a TimeSpan is signed ticks.
//
// The C API of "datetime" is fetched by `fn_import_datetime_api`; the outer converters and the callbacks do
// that themselves, the inner ones and the type tests rely on it.

/// False with an error set when "datetime" cannot be had.
bool fn_import_datetime_api();

bool is_py_datetime(PyObject* value);       // a `datetime` or a subclass
bool is_py_date(PyObject* value);           // a `date`, and so a `datetime`
bool is_py_time(PyObject* value);           // a `time`
bool is_py_datetimedelta(PyObject* value);  // a `timedelta`

void copy_py_date(PyObject* value, DateTimeArgBuilder& builder);
void copy_py_time(PyObject* value, DateTimeArgBuilder& builder);
void copy_py_datetime(PyObject* value, DateTimeArgBuilder& builder);
void copy_py_datetimedelta(PyObject* value, TimeSpanArgBuilder& builder);

/// The offset from UTC of a `datetime` or a `time`, in ticks.
struct UtcOffset {
    bool is_error = false;  // a Python error is set
    bool has_offset = false;
    std::int64_t ticks = 0;
};
UtcOffset get_utc_offset(PyObject* value);

// From Python: "O&" converters ----------------------------------------------------------------------------

/// A `datetime`, `date` or `time`. An aware one is shifted to UTC.
int fn_conv_py_datetime_to_clr_datetime(PyObject* value, std::int64_t* out);
int fn_conv_py_datetime_ex_to_clr_datetime(PyObject* value, std::int64_t* out);
int fn_conv_py_date_to_clr_datetime(PyObject* value, std::int64_t* out);
/// A time of day of the first of January 1; the shift to UTC wraps past midnight.
int fn_conv_py_time_to_clr_datetime(PyObject* value, std::int64_t* out);

/// A `datetime` or `time` that is aware; `out` takes two values.
int fn_conv_py_datetime_to_clr_datetimeoffset(PyObject* value, std::int64_t* out);
int fn_conv_py_datetime_ex_to_clr_datetimeoffset(PyObject* value, std::int64_t* out);
int fn_conv_py_time_to_clr_datetimeoffset(PyObject* value, std::int64_t* out);

int fn_conv_py_datetimedelta_to_clr_timespan(PyObject* value, std::int64_t* out);
/// The same for a known `timedelta`.
int fn_conv_py_datetimedelta_to_clr_timespan_value(PyObject* value, std::int64_t* out);

// To Python: new references -------------------------------------------------------------------------------

/// `value`: ticks with kind bits, then the offset of local time. Naive for kind 0, else aware.
PyObject* fn_conv_clr_datetime_to_py_datetime(const std::int64_t* value);
PyObject* fn_conv_clr_datetimeoffset_to_py_datetime(const std::int64_t* value);
PyObject* fn_conv_clr_timespan_to_py_datetimedelta(std::int64_t ticks);
PyObject* create_py_datetime_from_zone(const DateTimeArgBuilder& builder, PyObject* tz);
PyObject* create_py_datetime_from_tz_ticks(const DateTimeArgBuilder& builder, std::int64_t ticks);

// Callbacks of the managed side: signatures are a wire format ---------------------------------------------

/// 1 a DateTime in out[0], 2 a DateTimeOffset in out[0] and out[1], 0 failure.
int fn_read_py_vers_datetime(PyObject* value, std::int64_t* out);
int fn_read_py_vers_date(PyObject* value, std::int64_t* out);
int fn_read_py_vers_time(PyObject* value, std::int64_t* out);
int fn_read_py_datetimedelta(PyObject* value, std::int64_t* ticks);

PyObject* fn_write_py_date_time(const std::int64_t* value);
PyObject* fn_write_py_date_time_offset(const std::int64_t* value);
PyObject* fn_write_py_datetimedelta(std::int64_t ticks);
/// A `timezone` with a name of UTF-16 units, None for a length of -1.
PyObject* fn_write_py_timezone(const char* utf16_name, int units, std::int64_t ticks);
