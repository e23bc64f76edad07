"""What becomes of any Python value that is given as a managed object, and the small value kinds beside it."""

from __future__ import annotations

import array
import collections
import ctypes
import datetime
import decimal
import enum
import fractions
import io
import pathlib
import sys
import uuid
from typing import Any, Callable, List, Tuple

import pytest
from static_callbacks import callback

UNKNOWN = "unknown variant type"
NULL, OBJECT, STRUCT = 0, 1, 2
TEXT, BYTES, BOOL, INTEGER, REAL = 3, 4, 5, 6, 7
DECIMAL, DECIMAL_TUPLE, DATETIME, DATE, TIME, SPAN, GUID, LIST, TUPLE = 8, 9, 10, 11, 12, 13, 14, 15, 16


def derived(base: type, *arguments: Any) -> Any:
    """A value of a subclass of `base` made on the spot."""
    return type(f"Own{base.__name__.title()}", (base,), {})(*arguments)


class Plain:
    """No wrapper and nothing that a managed object could hold."""


class Index:
    """Has every numeric conversion and is no number."""

    def __index__(self) -> int:
        return 1

    def __int__(self) -> int:
        return 1

    def __float__(self) -> float:
        return 1.0


Point = collections.namedtuple("Point", "x y")
Colour = enum.Enum("Colour", "RED")
Whole = enum.IntEnum("Whole", "ONE")
Flags = enum.IntFlag("Flags", "A B")
StrEnum = enum.Enum("StrEnum", [("A", "a")], type=str)
UTC = datetime.timezone.utc

# Each value and the kind under which it crosses; None where it is refused.
TABLE: List[Tuple[str, Callable[[Any], Any], Any]] = [
    ("None", lambda v: None, NULL),
    ("True", lambda v: True, BOOL),
    ("False", lambda v: False, BOOL),
    ("0", lambda v: 0, INTEGER),
    ("-1", lambda v: -1, INTEGER),
    ("2**63-1", lambda v: 2**63 - 1, INTEGER),
    ("2**64", lambda v: 2**64, INTEGER),
    ("int subclass", lambda v: derived(int, 1), None),
    ("IntEnum member", lambda v: Whole.ONE, None),
    ("IntFlag member", lambda v: Flags.A | Flags.B, None),
    ("1.5", lambda v: 1.5, REAL),
    ("nan", lambda v: float("nan"), REAL),
    ("float subclass", lambda v: derived(float, 1.5), REAL),
    ("complex", lambda v: 1j, None),
    ("Fraction", lambda v: fractions.Fraction(1, 2), None),
    ("Decimal", lambda v: decimal.Decimal("1.5"), DECIMAL),
    ("Decimal NaN", lambda v: decimal.Decimal("NaN"), DECIMAL),
    ("Decimal subclass", lambda v: derived(decimal.Decimal, "1"), DECIMAL),
    ("DecimalTuple", lambda v: decimal.Decimal(1).as_tuple(), DECIMAL_TUPLE),
    ("UUID", lambda v: uuid.UUID(int=5), GUID),
    ("UUID subclass", lambda v: derived(uuid.UUID, "12345678123456781234567812345678"), GUID),
    ("timedelta", lambda v: datetime.timedelta(1), SPAN),
    ("timedelta subclass", lambda v: derived(datetime.timedelta, 1), SPAN),
    ("datetime", lambda v: datetime.datetime(2020, 1, 1), DATETIME),
    ("aware datetime", lambda v: datetime.datetime(2020, 1, 1, tzinfo=UTC), DATETIME),
    ("datetime subclass", lambda v: derived(datetime.datetime, 2020, 1, 1), DATETIME),
    ("date", lambda v: datetime.date(2020, 1, 1), DATE),
    ("date subclass", lambda v: derived(datetime.date, 2020, 1, 1), DATE),
    ("time", lambda v: datetime.time(1), TIME),
    ("time subclass", lambda v: derived(datetime.time, 1), TIME),
    ("timezone", lambda v: UTC, None),
    ("empty str", lambda v: "", TEXT),
    ("str", lambda v: "text", TEXT),
    ("str subclass", lambda v: derived(str, "text"), TEXT),
    ("str enum member", lambda v: StrEnum.A, TEXT),
    ("bytes", lambda v: b"bytes", BYTES),
    ("bytes subclass", lambda v: derived(bytes, b"bytes"), BYTES),
    ("bytearray", lambda v: bytearray(b"bytes"), BYTES),
    ("bytearray subclass", lambda v: derived(bytearray, b"bytes"), BYTES),
    ("memoryview", lambda v: memoryview(b"bytes"), BYTES),
    ("strided memoryview", lambda v: memoryview(b"bytes")[::2], BYTES),
    ("array.array", lambda v: array.array("i", [1]), None),
    ("ctypes array", lambda v: (ctypes.c_int * 2)(), None),
    ("empty list", lambda v: [], LIST),
    ("list", lambda v: [1, "a"], LIST),
    ("list subclass", lambda v: derived(list, [1]), None),
    ("empty tuple", lambda v: (), TUPLE),
    ("tuple", lambda v: (1, "a"), TUPLE),
    ("tuple subclass", lambda v: derived(tuple, [1]), None),
    ("namedtuple", lambda v: Point(1, 2), None),
    ("struct_time", lambda v: __import__("time").gmtime(0), None),
    ("dict", lambda v: {}, None),
    ("set", lambda v: {1}, None),
    ("frozenset", lambda v: frozenset([1]), None),
    ("deque", lambda v: collections.deque([1]), None),
    ("range", lambda v: range(3), None),
    ("iterator", lambda v: iter([1]), None),
    ("generator", lambda v: (x for x in [1]), None),
    ("slice", lambda v: slice(1), None),
    ("Ellipsis", lambda v: ..., None),
    ("NotImplemented", lambda v: NotImplemented, None),
    ("a class", lambda v: Plain, None),
    ("an object", lambda v: Plain(), None),
    ("an object with numeric conversions", lambda v: Index(), None),
    ("an enum member", lambda v: Colour.RED, None),
    ("a function", lambda v: len, None),
    ("an exception", lambda v: ValueError("x"), None),
    ("a stream", lambda v: io.BytesIO(), None),
    ("a path", lambda v: pathlib.PurePosixPath("a"), None),
    ("a wrapper of a class", lambda v: v.Node(), OBJECT),
    ("a wrapper of a struct", lambda v: v.utilities.Vector3(), STRUCT),
    ("a wrapper without a handle", lambda v: v.Node.__new__(v.Node), None),
    ("a wrapped enum's member", lambda v: v.Axis.X_AXIS, None),
    ("a wrapper type", lambda v: v.Node, None),
]


def given(managed: Any, voxlar: Any, value: Any) -> Tuple[int, int]:
    """(kind, payload) as a parameter of type object sees them."""
    seen: List[Tuple[int, int]] = []
    managed.answer("VbrObject", "call_000_SetProperty", lambda handle, name, record: seen.append(managed.variant(record)))
    voxlar.Node().set_property("p", value)
    return seen[0]


@pytest.mark.parametrize(("name", "make", "kind"), TABLE, ids=[row[0] for row in TABLE])
def test_a_value_crosses_under_its_kind(name: str, make: Any, kind: Any, managed: Any, voxlar: Any) -> None:
    value = make(voxlar)
    before = sys.getrefcount(value)
    if kind is None:
        with pytest.raises(TypeError, match=f"^{UNKNOWN}$"):
            given(managed, voxlar, value)
        assert managed.calls_of("call_000_SetProperty") == []
    else:
        actual, payload = given(managed, voxlar, value)
        assert actual == kind
        if kind in (OBJECT, STRUCT):
            assert payload in managed.living
        else:
            assert payload == id(value)
    if before < 100:  # what the interpreter itself holds everywhere comes and goes
        assert sys.getrefcount(value) == before


def test_the_table_is_long_enough() -> None:
    assert len(TABLE) >= 60


def numpy_scalars() -> List[Any]:
    numpy = pytest.importorskip("numpy")
    return [(numpy.float64(1.5), REAL), (numpy.str_("a"), TEXT), (numpy.bytes_(b"a"), BYTES), (numpy.float32(1), None),
            (numpy.int64(1), None), (numpy.bool_(True), None), (numpy.array([1]), None), (numpy.datetime64("2020"), None)]  # fmt: skip


def test_numpy_scalars(managed: Any, voxlar: Any) -> None:
    for value, kind in numpy_scalars():
        if kind is None:
            with pytest.raises(TypeError, match=f"^{UNKNOWN}$"):
                given(managed, voxlar, value)
        else:
            assert given(managed, voxlar, value)[0] == kind, type(value)


def test_wrappers_of_sibling_modules(managed: Any, voxlar: Any) -> None:
    """A sibling's wrapper has a marker of its own in its type, and its handle behind the object's head."""
    sibling = voxlar.Node._type_of()
    kind, handle = given(managed, voxlar, sibling)
    assert kind == OBJECT and handle in managed.living


def test_an_own_type_with_the_marker_is_no_wrapper_by_a_wrong_value(managed: Any, voxlar: Any) -> None:
    fake = type("Fake", (), {"_velbor_clr_host": "neither"})()
    with pytest.raises(TypeError, match=f"^{UNKNOWN}$"):
        given(managed, voxlar, fake)


# Guids


def test_guids_there_and_back(managed: Any, voxlar: Any) -> None:
    read = callback(managed, "fn_read_py_guid", None, ctypes.py_object, ctypes.c_void_p)
    write = callback(managed, "fn_write_py_guid", ctypes.py_object, ctypes.c_void_p)
    room = (ctypes.c_uint8 * 16)()
    for number in (0, 1, 2**128 - 1, 0x0123456789ABCDEF0123456789ABCDEF, *(3**n % 2**128 for n in range(500))):
        value = uuid.UUID(int=number)
        read(value, ctypes.addressof(room))
        assert bytes(room) == value.bytes_le
        assert write(ctypes.addressof(room)) == value


# Versions


def test_versions_arrive_as_tuples(managed: Any, voxlar: Any) -> None:
    fmt = voxlar.FileFormat.__new__(voxlar.FileFormat)
    for count in (-1, 2, 3, 4):
        numbers = (7, 1, 0, 2147483647)[: max(count, 0)]

        def answer(handle: int, out: int) -> None:
            managed.store(out, "i" * (len(numbers) + 1), count, *numbers)

        managed.answer("FileFormat", "get_Version", answer)
        assert fmt.version == (None if count == -1 else numbers)


# Nullables


def test_a_nullable_struct(managed: Any, voxlar: Any) -> None:
    info = voxlar.AssetInfo()
    seen: List[Any] = []
    managed.answer("AssetInfo", "set_Ambient", lambda handle, flag, value: seen.append((flag, managed.variant(value))))
    info.ambient = voxlar.utilities.Vector4()
    info.ambient = None
    assert (seen[0][0], seen[0][1][0]) == (1, 1) and seen[1] == (0, (0, 0))
    with pytest.raises(TypeError, match="^can't build Vector4 value from 'Vector3'$|^can't build Vector4 value from 'velbor"):
        info.ambient = voxlar.utilities.Vector3()
    managed.answer("AssetInfo", "get_Ambient", lambda handle, flag: managed.store(flag, "i", 0) or 0)
    assert info.ambient is None
    managed.answer("AssetInfo", "get_Ambient", lambda handle, flag: managed.new_handle())
    assert type(info.ambient) is voxlar.utilities.Vector4


def test_nullable_refusals_are_those_of_the_value(managed: Any, voxlar: Any) -> None:
    info = voxlar.AssetInfo()
    with pytest.raises(TypeError, match="^can't build DateTime from 'int'$"):
        info.creation_time = 5
    with pytest.raises(TypeError, match="^can't build Axis value from 'int'$"):
        info.up_vector = 1
    with pytest.raises(TypeError, match="^can't delete attribute$"):
        del info.up_vector


# By-reference lists


def test_by_ref_lists(managed: Any, voxlar: Any) -> None:
    seen: List[Any] = []

    def to_angle_axis(this: int, angle: float, angle_out: int, axis: int, axis_out: int, pins: int) -> None:
        seen.append((angle, managed.variant(axis)))
        handle = managed.new_handle()
        managed.store(angle_out, "d", 2.5)
        managed.store(axis_out, "Q", handle)
        managed.store(pins, "Q", handle)

    managed.answer("Quaternion", "call_000_ToAngleAxis", to_angle_axis)
    turn, Vector3 = voxlar.utilities.Quaternion(), voxlar.utilities.Vector3
    for angle, axis in (([], []), ([None], [None]), ([1.5, "stays"], [Vector3(), 4])):
        rest = angle[1:], axis[1:]
        assert turn.to_angle_axis(angle, axis) is None
        assert angle[0] == 2.5 and type(axis[0]) is Vector3 and (angle[1:], axis[1:]) == rest
    assert [a for a, _ in seen] == [0.0, 0.0, 1.5]
    assert [v[0] for _, v in seen] == [0, 0, 1] and seen[0][1] == seen[1][1] == (0, 0)
    same: List[Any] = []
    turn.to_angle_axis(same, same)
    assert [type(item) for item in same] in ([float, Vector3], [Vector3])


BY_REF = "argument should be empty list or list contains default value, not '%s'"


@pytest.mark.parametrize("value", [(), None, 5, "text", derived(list), {}], ids=repr)
def test_what_is_no_by_ref_list(managed: Any, voxlar: Any, value: Any) -> None:
    turn = voxlar.utilities.Quaternion()
    with pytest.raises(TypeError) as caught:
        turn.to_angle_axis([], value)
    assert str(caught.value) == BY_REF % type(value).__name__
    with pytest.raises(TypeError, match="^can't build Vector3 value from 'int'$"):
        turn.to_angle_axis([], [5])
    assert managed.calls_of("call_000_ToAngleAxis") == []
