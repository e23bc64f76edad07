"""Dates, times and spans both ways, against Python's own datetime."""

from __future__ import annotations

import ctypes
import random
from datetime import date, datetime, time, timedelta, timezone, tzinfo
from typing import Any, List, Optional, Tuple

import pytest
from static_callbacks import callback

DAY = 864_000_000_000
LAST_TICK = 3_155_378_975_999_999_999
TWO = ctypes.c_int64 * 2
MICROSECOND = timedelta(microseconds=1)


class Zone(tzinfo):
    """A zone that answers `utcoffset` with whatever it was made with, or raises it."""

    def __init__(self, answer: Any) -> None:
        self.answer = answer

    def utcoffset(self, _: Optional[datetime]) -> Any:
        if isinstance(self.answer, Exception):
            raise self.answer
        return self.answer


def ticks(value: datetime) -> int:
    """Ticks of the clock time, by Python's own arithmetic."""
    return (value.replace(tzinfo=None) - datetime(1, 1, 1)) // MICROSECOND * 10


class Side:
    """The callbacks under test."""

    def __init__(self, managed: Any) -> None:
        def reader(name: str) -> Any:
            return callback(managed, name, ctypes.c_int, ctypes.py_object, ctypes.c_void_p)

        def writer(name: str) -> Any:
            return callback(managed, name, ctypes.py_object, ctypes.c_void_p)

        self.read_datetime = reader("fn_read_py_vers_datetime")
        self.read_date = reader("fn_read_py_vers_date")
        self.read_time = reader("fn_read_py_vers_time")
        self.read_span = reader("fn_read_py_datetimedelta")
        self.write_datetime = writer("fn_write_py_date_time")
        self.write_offset = writer("fn_write_py_date_time_offset")
        self.write_span = callback(managed, "fn_write_py_datetimedelta", ctypes.py_object, ctypes.c_int64)


@pytest.fixture
def side(managed: Any, voxlar: Any) -> Side:
    return Side(managed)


def read(reader: Any, value: Any) -> Tuple[int, List[int]]:
    out = TWO()
    return reader(value, ctypes.addressof(out)), list(out)


def written(writer: Any, *values: int) -> Any:
    record = TWO(*values)
    return writer(ctypes.addressof(record))


def test_every_day_there_and_back(side: Side) -> None:
    out = TWO()
    address = ctypes.addressof(out)
    day, one, count = date.min, timedelta(days=1), 0
    while True:
        assert side.read_date(day, address) == 1 and out[0] == count * DAY
        second, micro = count * 7919 % 86400, count * 104729 % 1_000_000
        moment = datetime(day.year, day.month, day.day, second // 3600, second // 60 % 60, second % 60, micro)
        assert side.read_datetime(moment, address) == 1
        assert out[0] == count * DAY + second * 10_000_000 + micro * 10
        out[0] += count % 10  # below a microsecond: lost on the way back
        assert side.write_datetime(address) == moment
        count += 1
        if day == date.max:
            break
        day += one
    assert count == 3_652_059 and count * DAY - 1 == LAST_TICK


def test_spans_there_and_back(side: Side) -> None:
    source = random.Random(452)
    out = TWO()
    address = ctypes.addressof(out)
    for _ in range(100_000):
        value = source.getrandbits(source.randrange(64)) * source.choice((1, -1))
        expected = timedelta(microseconds=abs(value) // 10) * (-1 if value < 0 else 1)
        span = side.write_span(value)
        assert span == expected
        assert side.read_span(span, address) == 1 and out[0] == expected // MICROSECOND * 10


@pytest.mark.parametrize("value", [timedelta.max, timedelta.min, timedelta(days=10675200), timedelta(days=-10675200)])
def test_spans_beyond_the_range(side: Side, value: timedelta) -> None:
    with pytest.raises(OverflowError, match="^value too large or too small for .Net TimeSpan$"):
        read(side.read_span, value)


def test_the_edges_of_spans(side: Side) -> None:
    edge = timedelta(seconds=922337203685, microseconds=477580)
    assert read(side.read_span, edge)[1][0] == 9223372036854775800
    assert read(side.read_span, -edge)[1][0] == -9223372036854775800
    for beyond in (edge + MICROSECOND, -edge - MICROSECOND):
        with pytest.raises(OverflowError):
            read(side.read_span, beyond)
    assert read(side.read_span, timedelta(days=-1))[1][0] == -DAY
    assert read(side.read_span, -MICROSECOND)[1][0] == -10


def test_offsets_keep_the_clock_time(side: Side) -> None:
    source = random.Random(453)
    for _ in range(20_000):
        offset = timedelta(microseconds=source.randrange(-86_399_999_999, 86_400_000_000))
        if source.random() < 0.5:
            offset = timedelta(minutes=source.randrange(-1439, 1440))
        moment = datetime.min + timedelta(microseconds=source.randrange(LAST_TICK // 10))
        moment = moment.replace(tzinfo=timezone(offset), fold=source.randrange(2))
        kind, (clock, shift) = read(side.read_datetime, moment)
        assert (kind, clock, shift) == (2, ticks(moment), offset // MICROSECOND * 10)
        back = written(side.write_offset, clock, shift)
        assert (back.replace(tzinfo=None), back.utcoffset()) == (moment.replace(tzinfo=None, fold=0), offset)
        # A local value is aware, with the offset that came with it.
        local = written(side.write_datetime, clock | 2 << 62 if clock < 0 else clock - 2**63, shift)
        assert (local.replace(tzinfo=None), local.utcoffset()) == (moment.replace(tzinfo=None, fold=0), offset)


def test_utc_comes_as_the_one_utc(side: Side) -> None:
    value = written(side.write_datetime, 1 << 62, 0)
    assert value == datetime(1, 1, 1, tzinfo=timezone.utc) and value.tzinfo is timezone.utc


def set_time(managed: Any, voxlar: Any, value: Any) -> Tuple[int, int]:
    """(kind, ticks) with which a property of type DateTime gets the value."""
    seen: List[Tuple[int, int]] = []
    managed.answer("AssetInfo", "set_CreationTime", lambda handle, flag, raw: seen.append((flag, raw)))
    voxlar.AssetInfo().creation_time = value
    ((flag, raw),) = seen
    assert flag == 1
    raw &= 2**64 - 1
    return raw >> 62, raw & (1 << 62) - 1


def test_an_aware_value_goes_as_utc(managed: Any, voxlar: Any) -> None:
    source = random.Random(454)
    for _ in range(3000):
        moment = datetime(2, 1, 1) + timedelta(microseconds=source.randrange(LAST_TICK // 10 - 2 * 365 * DAY // 10))
        offset = timedelta(seconds=source.randrange(-86399, 86400))
        aware = moment.replace(tzinfo=timezone(offset))
        assert set_time(managed, voxlar, aware) == (1, ticks(moment - offset))
        assert set_time(managed, voxlar, moment) == (0, ticks(moment))
    assert set_time(managed, voxlar, datetime(1, 1, 1, tzinfo=timezone.utc)) == (1, 0)
    assert set_time(managed, voxlar, datetime.max) == (0, 3155378975999999990)
    assert set_time(managed, voxlar, date.max) == (0, 3155378112000000000)


@pytest.mark.parametrize(
    ("value", "kind", "expected"),
    [
        (time(0, 30, tzinfo=timezone(timedelta(hours=1))), 1, time(23, 30)),
        (time(23, 30, tzinfo=timezone(timedelta(hours=-1))), 1, time(0, 30)),
        (time(0, 0, 0, 1, tzinfo=timezone(timedelta(microseconds=2))), 1, time(23, 59, 59, 999999)),
        (time(12, 1, 2, 3, fold=1), 0, time(12, 1, 2, 3)),
        (time(12, tzinfo=Zone(None)), 0, time(12)),
    ],
)
def test_a_time_wraps_past_midnight(managed: Any, voxlar: Any, value: time, kind: int, expected: time) -> None:
    assert set_time(managed, voxlar, value) == (kind, ticks(datetime.combine(date.min, expected)))


def test_a_subclass_is_served_as_its_base(managed: Any, voxlar: Any) -> None:
    class Moment(datetime):
        pass

    class Day(date):
        pass

    assert set_time(managed, voxlar, Moment(2020, 2, 29, 1)) == (0, ticks(datetime(2020, 2, 29, 1)))
    assert set_time(managed, voxlar, Day(2020, 2, 29)) == (0, ticks(datetime(2020, 2, 29)))


BEYOND = "value too large or too small for .Net DateTime"


@pytest.mark.parametrize(
    ("zone", "error", "text"),
    [
        (Zone(5), TypeError, None),
        (Zone(timedelta(days=1)), ValueError, None),
        (Zone(KeyError("zone")), KeyError, "'zone'"),
        (timezone(timedelta(hours=1)), OverflowError, BEYOND),
    ],
)
def test_zones_that_do_not_serve(managed: Any, voxlar: Any, zone: tzinfo, error: Any, text: Optional[str]) -> None:
    with pytest.raises(error) as caught:
        set_time(managed, voxlar, datetime(1, 1, 1, tzinfo=zone))
    if text is not None:
        assert str(caught.value) == text
    assert managed.calls_of("set_CreationTime") == []


def test_a_zone_that_declines_counts_as_none(managed: Any, voxlar: Any) -> None:
    assert set_time(managed, voxlar, datetime(1, 1, 1, 5, tzinfo=Zone(None))) == (0, 5 * DAY // 24)
    side = Side(managed)
    assert read(side.read_datetime, datetime(1, 1, 1, 5, tzinfo=Zone(None)))[0] == 1


def test_an_offset_of_a_subclass_that_lies(managed: Any, voxlar: Any) -> None:
    """The value's own utcoffset is asked, so a subclass may answer anything."""

    class Moment(datetime):
        answer: Any = None

        def utcoffset(self) -> Any:
            return self.answer

    moment = Moment(2020, 1, 1, tzinfo=timezone.utc)
    moment.answer = "an hour"
    with pytest.raises(TypeError, match=r"^instance utcoffset\(\) return wrong value$"):
        set_time(managed, voxlar, moment)
    moment.answer = timedelta.max
    with pytest.raises(OverflowError, match="^value too large or too small utc offset$"):
        set_time(managed, voxlar, moment)
    moment.answer = timedelta(days=800000)
    with pytest.raises(OverflowError, match=f"^{BEYOND}$"):
        set_time(managed, voxlar, moment)
    moment.answer = timedelta(hours=2, microseconds=1)
    assert set_time(managed, voxlar, moment) == (1, ticks(datetime(2019, 12, 31, 21, 59, 59, 999999)))


def test_the_interface_of_datetime_is_fetched_each_time(managed: Any, voxlar: Any, monkeypatch: Any) -> None:
    moment = datetime(2020, 1, 1)
    assert set_time(managed, voxlar, moment)
    monkeypatch.delattr("datetime.datetime_CAPI")
    with pytest.raises(AttributeError, match="datetime_CAPI"):
        set_time(managed, voxlar, moment)
    with pytest.raises(AttributeError, match="datetime_CAPI"):
        voxlar.Node().set_property("p", moment)
    monkeypatch.undo()
    assert set_time(managed, voxlar, moment)


@pytest.mark.parametrize("value", [5, "2020-01-01", timedelta(1), 1.5])
def test_what_is_no_time(managed: Any, voxlar: Any, value: Any) -> None:
    with pytest.raises(TypeError) as caught:
        set_time(managed, voxlar, value)
    name = "datetime.timedelta" if isinstance(value, timedelta) else type(value).__name__
    assert str(caught.value) == f"can't build DateTime from '{name}'"


def test_a_managed_time_arrives_by_its_kind(managed: Any, voxlar: Any) -> None:
    info = voxlar.AssetInfo()
    moment = datetime(2024, 2, 29, 23, 59, 59, 999999)

    def answer(kind: int, offset: int) -> None:
        def get(handle: int, flag: int, out: int) -> None:
            managed.store(flag, "i", 1)
            managed.store(out, "Qq", kind << 62 | ticks(moment), offset)

        managed.answer("AssetInfo", "get_CreationTime", get)

    answer(0, 7)
    assert info.creation_time == moment and info.creation_time.tzinfo is None
    answer(1, 7)
    assert info.creation_time == moment.replace(tzinfo=timezone.utc)
    for kind in (2, 3):
        answer(kind, 36_000_000_000)
        assert info.creation_time.utcoffset() == timedelta(hours=1)
        assert info.creation_time.replace(tzinfo=None) == moment
