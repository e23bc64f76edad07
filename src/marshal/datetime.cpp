#include "marshal/datetime.h"

#include "exchange/text.h"
#include "startup/identifiers.h"
#include "startup/import.h"
#include "startup/py_ref.h"

#include <datetime.h>

namespace {

constexpr char DateTimeOutOfRange[] = "value too large or too small for .Net DateTime";
constexpr char DateTimeOffsetOutOfRange[] = "value too large or too small for .Net DateTimeOffSet";

int refuse_range(const char* message) {
    PyErr_SetString(PyExc_OverflowError, message);
    return 0;
}

int refuse_type(const char* managed_name, PyObject* value) {
    PyErr_Format(PyExc_TypeError, "can't build %s from '%s'", managed_name, Py_TYPE(value)->tp_name);
    return 0;
}

PyRef import_type(PyObject* name) {
    return PyRef::steal(PyShImport_ImportType("datetime", name));
}

/// The clock ticks and the offset of an aware value.
int read_datetime_with_offset(PyObject* value, const UtcOffset& offset, const char* message,
                              std::int64_t* out) {
    DateTimeArgBuilder builder;
    copy_py_datetime(value, builder);
    out[1] = offset.ticks;
    return builder.to_ticks(out[0]) ? 1 : refuse_range(message);
}

void read_time_with_offset(PyObject* value, const UtcOffset& offset, std::int64_t* out) {
    DateTimeArgBuilder builder;
    copy_py_time(value, builder);
    out[1] = offset.ticks;
    builder.to_ticks(out[0]);
}

int refuse_naive(const char* type_name) {
    PyErr_Format(PyExc_ValueError, "The tzinfo property of a given %s should not be None", type_name);
    return 0;
}

}  // namespace

bool fn_import_datetime_api() {
    // Fetched each time: a module that is gone shows as an error, not as a table that nobody keeps.
    PyDateTimeAPI = static_cast<PyDateTime_CAPI*>(PyCapsule_Import(PyDateTime_CAPSULE_NAME, 0));
    return PyDateTimeAPI != nullptr;
}

bool is_py_datetime(PyObject* value) {
    return PyDateTime_Check(value);
}
bool is_py_date(PyObject* value) {
    return PyDate_Check(value);
}
bool is_py_time(PyObject* value) {
    return PyTime_Check(value);
}
bool is_py_datetimedelta(PyObject* value) {
    return PyDelta_Check(value);
}

void copy_py_date(PyObject* value, DateTimeArgBuilder& builder) {
    builder.year = PyDateTime_GET_YEAR(value);
    builder.month = PyDateTime_GET_MONTH(value);
    builder.day = PyDateTime_GET_DAY(value);
}

void copy_py_time(PyObject* value, DateTimeArgBuilder& builder) {
    builder.hour = PyDateTime_TIME_GET_HOUR(value);
    builder.minute = PyDateTime_TIME_GET_MINUTE(value);
    builder.second = PyDateTime_TIME_GET_SECOND(value);
    builder.microsecond = PyDateTime_TIME_GET_MICROSECOND(value);
}

void copy_py_datetime(PyObject* value, DateTimeArgBuilder& builder) {
    copy_py_date(value, builder);
    builder.hour = PyDateTime_DATE_GET_HOUR(value);
    builder.minute = PyDateTime_DATE_GET_MINUTE(value);
    builder.second = PyDateTime_DATE_GET_SECOND(value);
    builder.microsecond = PyDateTime_DATE_GET_MICROSECOND(value);
}

void copy_py_datetimedelta(PyObject* value, TimeSpanArgBuilder& builder) {
    builder.days = PyDateTime_DELTA_GET_DAYS(value);
    builder.seconds = PyDateTime_DELTA_GET_SECONDS(value);
    builder.microseconds = PyDateTime_DELTA_GET_MICROSECONDS(value);
}

UtcOffset get_utc_offset(PyObject* value) {
    constexpr UtcOffset error{true, false, 0};
    const PyRef tzinfo = PyRef::steal(PyObject_GetAttr(value, PyWrpIdDateTime_Tzinfo));
    if (!tzinfo) {
        return error;
    }
    if (tzinfo.get() == Py_None) {
        return {};
    }
    const PyRef offset = PyRef::steal(PyObject_CallMethodNoArgs(value, PyWrpIdDateTime_UtcOffset));
    if (!offset) {
        return error;
    }
    if (offset.get() == Py_None) {
        return {};
    }
    if (!is_py_datetimedelta(offset.get())) {
        PyErr_SetString(PyExc_TypeError, "instance utcoffset() return wrong value");
        return error;
    }
    TimeSpanArgBuilder builder;
    copy_py_datetimedelta(offset.get(), builder);
    UtcOffset result;
    if (!builder.to_ticks(result.ticks)) {
        PyErr_SetString(PyExc_OverflowError, "value too large or too small utc offset");
        return error;
    }
    result.has_offset = true;
    return result;
}

int fn_conv_py_datetime_to_clr_datetime(PyObject* value, std::int64_t* out) {
    if (!fn_import_datetime_api()) {
        return 0;
    }
    if (is_py_datetime(value)) {
        return fn_conv_py_datetime_ex_to_clr_datetime(value, out);
    }
    if (is_py_date(value)) {
        return fn_conv_py_date_to_clr_datetime(value, out);
    }
    if (is_py_time(value)) {
        return fn_conv_py_time_to_clr_datetime(value, out);
    }
    return refuse_type("DateTime", value);
}

int fn_conv_py_datetime_ex_to_clr_datetime(PyObject* value, std::int64_t* out) {
    const UtcOffset offset = get_utc_offset(value);
    if (offset.is_error) {
        return 0;
    }
    DateTimeArgBuilder builder;
    copy_py_datetime(value, builder);
    if (offset.has_offset) {
        builder.kind = DateTimeArgBuilder::KindUtc;
        return builder.to_utc_ticks(offset.ticks, *out) ? 1 : refuse_range(DateTimeOutOfRange);
    }
    return builder.to_ticks(*out) ? 1 : refuse_range(DateTimeOutOfRange);
}

int fn_conv_py_date_to_clr_datetime(PyObject* value, std::int64_t* out) {
    DateTimeArgBuilder builder;
    copy_py_date(value, builder);
    return builder.to_ticks(*out) ? 1 : refuse_range(DateTimeOutOfRange);
}

int fn_conv_py_time_to_clr_datetime(PyObject* value, std::int64_t* out) {
    const UtcOffset offset = get_utc_offset(value);
    if (offset.is_error) {
        return 0;
    }
    DateTimeArgBuilder builder;
    copy_py_time(value, builder);
    if (offset.has_offset) {
        builder.kind = DateTimeArgBuilder::KindUtc;
        builder.to_time_ticks(offset.ticks, *out);
    } else {
        builder.to_ticks(*out);
    }
    return 1;
}

int fn_conv_py_datetime_to_clr_datetimeoffset(PyObject* value, std::int64_t* out) {
    if (!fn_import_datetime_api()) {
        return 0;
    }
    if (is_py_datetime(value)) {
        return fn_conv_py_datetime_ex_to_clr_datetimeoffset(value, out);
    }
    if (is_py_time(value)) {
        return fn_conv_py_time_to_clr_datetimeoffset(value, out);
    }
    return refuse_type("DateTime", value);
}

int fn_conv_py_datetime_ex_to_clr_datetimeoffset(PyObject* value, std::int64_t* out) {
    const UtcOffset offset = get_utc_offset(value);
    if (offset.is_error) {
        return 0;
    }
    return offset.has_offset ? read_datetime_with_offset(value, offset, DateTimeOutOfRange, out)
                             : refuse_naive("datetime");
}

int fn_conv_py_time_to_clr_datetimeoffset(PyObject* value, std::int64_t* out) {
    const UtcOffset offset = get_utc_offset(value);
    if (offset.is_error) {
        return 0;
    }
    if (!offset.has_offset) {
        return refuse_naive("time");
    }
    read_time_with_offset(value, offset, out);
    return 1;
}

int fn_conv_py_datetimedelta_to_clr_timespan(PyObject* value, std::int64_t* out) {
    if (!fn_import_datetime_api()) {
        return 0;
    }
    if (!is_py_datetimedelta(value)) {
        return refuse_type("TimeSpan", value);
    }
    return fn_conv_py_datetimedelta_to_clr_timespan_value(value, out);
}

int fn_conv_py_datetimedelta_to_clr_timespan_value(PyObject* value, std::int64_t* out) {
    TimeSpanArgBuilder builder;
    copy_py_datetimedelta(value, builder);
    return builder.to_ticks(*out) ? 1 : refuse_range("value too large or too small for .Net TimeSpan");
}

PyObject* fn_conv_clr_datetime_to_py_datetime(const std::int64_t* value) {
    if (!fn_import_datetime_api()) {
        return nullptr;
    }
    const DateTimeArgBuilder builder(value[0]);
    if (builder.kind == DateTimeArgBuilder::KindUnspecified) {
        return PyDateTimeAPI->DateTime_FromDateAndTime(builder.year, builder.month, builder.day, builder.hour,
                                                       builder.minute, builder.second, builder.microsecond,
                                                       Py_None, PyDateTimeAPI->DateTimeType);
    }
    if (builder.kind == DateTimeArgBuilder::KindUtc) {
        const PyRef zone_type = import_type(PyWrpIdTypeName_TimeZone);
        if (!zone_type) {
            return nullptr;
        }
        const PyRef utc = PyRef::steal(PyObject_GetAttr(zone_type.get(), PyWrpIdDateTime_Utc));
        return utc ? create_py_datetime_from_zone(builder, utc.get()) : nullptr;
    }
    return create_py_datetime_from_tz_ticks(builder, value[1]);
}

PyObject* fn_conv_clr_datetimeoffset_to_py_datetime(const std::int64_t* value) {
    return create_py_datetime_from_tz_ticks(DateTimeArgBuilder(value[0]), value[1]);
}

PyObject* fn_conv_clr_timespan_to_py_datetimedelta(std::int64_t ticks) {
    if (!fn_import_datetime_api()) {
        return nullptr;
    }
    const TimeSpanArgBuilder builder(ticks);
    return PyDateTimeAPI->Delta_FromDelta(builder.days, builder.seconds, builder.microseconds, 1,
                                          PyDateTimeAPI->DeltaType);
}

PyObject* create_py_datetime_from_zone(const DateTimeArgBuilder& builder, PyObject* tz) {
    const PyRef arguments =
        PyRef::steal(Py_BuildValue("iiiiiiiO", builder.year, builder.month, builder.day, builder.hour,
                                   builder.minute, builder.second, builder.microsecond, tz));
    const PyRef type = import_type(PyWrpIdTypeName_DateTime);
    return arguments && type ? PyObject_Call(type.get(), arguments.get(), nullptr) : nullptr;
}

PyObject* create_py_datetime_from_tz_ticks(const DateTimeArgBuilder& builder, std::int64_t ticks) {
    const PyRef zone_type = import_type(PyWrpIdTypeName_TimeZone);
    if (!zone_type) {
        return nullptr;
    }
    const PyRef delta = PyRef::steal(fn_conv_clr_timespan_to_py_datetimedelta(ticks));
    if (!delta) {
        return nullptr;
    }
    const PyRef zone = PyRef::steal(PyObject_CallOneArg(zone_type.get(), delta.get()));
    return zone ? create_py_datetime_from_zone(builder, zone.get()) : nullptr;
}

int fn_read_py_vers_datetime(PyObject* value, std::int64_t* out) {
    if (!fn_import_datetime_api()) {
        return 0;
    }
    const UtcOffset offset = get_utc_offset(value);
    if (offset.is_error) {
        return 0;
    }
    if (offset.has_offset) {
        return read_datetime_with_offset(value, offset, DateTimeOffsetOutOfRange, out) == 1 ? 2 : 0;
    }
    DateTimeArgBuilder builder;
    copy_py_datetime(value, builder);
    return builder.to_ticks(*out) ? 1 : refuse_range(DateTimeOutOfRange);
}

int fn_read_py_vers_date(PyObject* value, std::int64_t* out) {
    return fn_import_datetime_api() ? fn_conv_py_date_to_clr_datetime(value, out) : 0;
}

int fn_read_py_vers_time(PyObject* value, std::int64_t* out) {
    if (!fn_import_datetime_api()) {
        return 0;
    }
    const UtcOffset offset = get_utc_offset(value);
    if (offset.is_error) {
        return 0;
    }
    if (offset.has_offset) {
        read_time_with_offset(value, offset, out);
        return 2;
    }
    DateTimeArgBuilder builder;
    copy_py_time(value, builder);
    builder.to_ticks(*out);
    return 1;
}

int fn_read_py_datetimedelta(PyObject* value, std::int64_t* ticks) {
    return fn_import_datetime_api() ? fn_conv_py_datetimedelta_to_clr_timespan_value(value, ticks) : 0;
}

PyObject* fn_write_py_date_time(const std::int64_t* value) {
    return fn_conv_clr_datetime_to_py_datetime(value);
}

PyObject* fn_write_py_date_time_offset(const std::int64_t* value) {
    return fn_conv_clr_datetimeoffset_to_py_datetime(value);
}

PyObject* fn_write_py_datetimedelta(std::int64_t ticks) {
    return fn_conv_clr_timespan_to_py_datetimedelta(ticks);
}

PyObject* fn_write_py_timezone(const char* utf16_name, int units, std::int64_t ticks) {
    PyRef zone_type = import_type(PyWrpIdTypeName_TimeZone);
    if (!zone_type) {
        return nullptr;
    }
    PyRef delta = PyRef::steal(fn_conv_clr_timespan_to_py_datetimedelta(ticks));
    if (!delta) {
        return nullptr;
    }
    PyRef name = units == -1 ? PyRef::borrow(Py_None)
                             : PyRef::steal(fn_conv_clr_string_to_py_string_value(utf16_name, units));
    if (!name) {
        return nullptr;
    }
    PyObject* zone = PyObject_CallFunctionObjArgs(zone_type.get(), delta.get(), name.get(), nullptr);
    // By definition of this callback the type, the span and the name keep one reference each for good.
    static_cast<void>(zone_type.release());
    static_cast<void>(delta.release());
    static_cast<void>(name.release());
    return zone;
}
