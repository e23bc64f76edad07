"""Values of open type go into managed code and come back."""

from __future__ import annotations

import datetime
import decimal
import enum
import gc
import sys
import uuid
from typing import Any

import pytest

from velbor import pygc
from velbor.voxlar import AssetInfo, Axis, CoordinatedSystem, FileFormat, Node, Scene
from velbor.voxlar.entities import Box, Mesh
from velbor.voxlar.formats import GltfSaveOptions
from velbor.voxlar.utilities import Vector3, Vector4

UTC = datetime.timezone.utc
HOUR_BEHIND = datetime.timezone(datetime.timedelta(hours=-1))


def through(value: Any) -> Any:
    """The value after a stay in managed code."""
    node = Node("n")
    node.set_property("p", value)
    return node.get_property("p")


@pytest.mark.parametrize(
    "value",
    [
        None, True, False, 0, -1, 2**31 - 1, -(2**31), 2**31, -(2**31) - 1, 2**63 - 1, -(2**63), 2**63,
        2**64 - 1,
        0.0, -0.5, 1e308, float("inf"), "", "ascii", "ÿ latin", "Ж basic plane", "𐍈 beyond 😀", "\0inside",
        decimal.Decimal("79228162514264337593543950335"), decimal.Decimal("-0.001"),
        datetime.datetime(1, 1, 1), datetime.datetime(9999, 12, 31, 23, 59, 59, 999999),
        datetime.datetime(2024, 2, 29, 12, 30, tzinfo=UTC),
        datetime.datetime(2024, 2, 29, 12, 30, tzinfo=HOUR_BEHIND),
        datetime.timedelta(microseconds=-1), datetime.timedelta(days=10000), uuid.UUID(int=2**127 + 5),
    ],
)  # fmt: skip
def test_a_value_comes_back_as_it_was(value: Any) -> None:
    back = through(value)
    assert back == value
    assert type(back) is type(value)


def test_an_aware_time_keeps_its_offset() -> None:
    value = datetime.datetime(2024, 2, 29, 12, 30, tzinfo=HOUR_BEHIND)
    assert through(value).utcoffset() == datetime.timedelta(hours=-1)


@pytest.mark.parametrize("value", [b"", b"abc", bytearray(b"\0\xff"), memoryview(b"view")])
def test_bytes_come_back_as_a_bytearray(value: Any) -> None:
    back = through(value)
    assert type(back) is bytearray
    assert back == bytes(value)


def test_a_date_and_a_time_come_back_as_date_and_time() -> None:
    assert through(datetime.date(2020, 1, 2)) == datetime.datetime(2020, 1, 2)
    assert through(datetime.time(3, 4)) == datetime.datetime(1, 1, 1, 3, 4)


@pytest.mark.parametrize("value", [[], [1, "two", None], (), (1, (2, 3))])
def test_a_list_or_tuple_is_kept_as_the_object_that_it_is(value: Any) -> None:
    assert through(value) is value


def test_a_kept_list_is_let_go_with_what_keeps_it() -> None:
    kept = [1, 2]
    before = sys.getrefcount(kept)
    node = Node("n")
    node.set_property("p", kept)
    assert sys.getrefcount(kept) == before + 1
    del node
    for _ in range(3):
        pygc.collect()
    assert sys.getrefcount(kept) == before


def test_a_class_derived_from_list_is_no_variant() -> None:
    class Told(list):  # type: ignore[type-arg]
        pass

    with pytest.raises(TypeError, match="unknown variant type"):
        through(Told())


def test_wrappers_come_back_around_the_same_object() -> None:
    box = Box()
    back = through(box)
    assert type(back) is Box
    assert back == box
    back.length = 7.0
    assert box.length == 7.0


def test_structs_come_back_as_copies() -> None:
    vector = Vector3(1.0, 2.0, 3.0)
    back = through(vector)
    assert type(back) is Vector3
    assert back == vector
    back.x = 9.0
    assert vector.x == 1.0


@pytest.mark.parametrize("value", [{}, set(), object(), 1j, [1].__iter__()])
def test_what_is_no_variant_is_refused(value: Any) -> None:
    with pytest.raises(TypeError, match="unknown variant type"):
        through(value)


def test_an_integer_that_fits_nowhere_tells_why() -> None:
    with pytest.raises(RuntimeError, match="can't build integer value from 'int'"):
        through(2**64)


def test_nullable_members() -> None:
    info = AssetInfo()
    moment = datetime.datetime(2020, 1, 2, 3, 4, 5)
    assert info.creation_time is None
    info.creation_time = moment
    assert info.creation_time == moment
    info.creation_time = None
    assert info.creation_time is None
    info.coordinated_system = CoordinatedSystem.LEFT_HANDED
    info.up_vector = Axis.Z_AXIS
    assert (info.coordinated_system, info.up_vector) == (CoordinatedSystem.LEFT_HANDED, Axis.Z_AXIS)
    assert isinstance(info.up_vector, enum.IntEnum)
    info.coordinated_system = info.up_vector = None
    assert (info.coordinated_system, info.up_vector) == (None, None)
    info.ambient = Vector4(1.0, 0.5, 0.0, 1.0)
    assert info.ambient == Vector4(1.0, 0.5, 0.0, 1.0)
    info.ambient = None
    assert info.ambient is None


def test_a_setter_changes_a_struct_in_place() -> None:
    vector = Vector3(1.0, 2.0, 3.0)
    same = vector
    vector.x = 5.0
    assert (same.x, str(same)) == (5.0, "(5, 2, 3)")
    options = GltfSaveOptions.__new__(GltfSaveOptions)
    with pytest.raises(RuntimeError, match="constructor"):
        options.fallback_normal  # noqa: B018


def test_constants_are_new_wrappers_around_equal_values() -> None:
    assert Vector3.ORIGIN is not Vector3.ORIGIN
    assert Vector3.ORIGIN == Vector3.ORIGIN
    Vector3.ORIGIN.x = 5.0
    assert Vector3.ORIGIN.x == 0.0
    assert FileFormat.WAVEFRONT_OBJ == FileFormat.WAVEFRONT_OBJ


def test_a_version_is_a_tuple() -> None:
    version = FileFormat.FBX7400_BINARY.version
    assert version is None or (isinstance(version, tuple) and all(isinstance(part, int) for part in version))


def test_a_null_object_tells_what_is_wrong() -> None:
    with pytest.raises(RuntimeError, match=r"^Proxy error\(NullReferenceException\): .*constructor"):
        Scene.__new__(Scene).clear()


def test_equality_and_hash_are_managed() -> None:
    scene = Scene()
    first, second = scene.root_node, scene.root_node
    assert first is not second
    assert first == second
    assert hash(first) == hash(second)
    assert first != scene
    assert first != None  # noqa: E711  the managed comparison is what is asked
    assert first != 5
    assert Vector3(1.0, 2.0, 3.0) == Vector3(1.0, 2.0, 3.0)
    assert hash(Vector3(1.0, 2.0, 3.0)) == hash(Vector3(1.0, 2.0, 3.0))


def test_a_mesh_walks_as_lists_of_indices() -> None:
    mesh = Box().to_mesh()
    assert type(mesh) is Mesh
    polygons = [list(polygon) for polygon in mesh]
    assert len(polygons) == mesh.polygon_count == 6
    assert all(len(polygon) == 4 for polygon in polygons)
    gc.collect()
