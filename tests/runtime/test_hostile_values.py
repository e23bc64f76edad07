"""Python values that change, refuse or contain themselves while managed code reads them, and values that an own property
gave: nothing crashes, the reason is told, and nothing is half done."""

from __future__ import annotations

import datetime
import uuid
from typing import Any, Callable, Iterator, List, Tuple

import pytest
from velbor import voxlar
from velbor.voxlar import Node, Scene
from velbor.voxlar.entities import Box, Light, Mesh, PointCloud, PolygonModifier, TransformedCurve, TrimmedCurve
from velbor.voxlar.utilities import Vector4

pytestmark = pytest.mark.usefixtures("no_handle_is_left")


class Emptier(int):
    """An int that empties a list when it is asked what it is."""

    victim: List[Any] = []

    @property
    def __class__(self) -> Any:  # type: ignore[override]
        self.victim.clear()
        return int


class EmptyingSequence:
    """A sequence that empties the list which holds it while it is read."""

    def __init__(self, victim: List[Any]) -> None:
        self.victim = victim

    def __len__(self) -> int:
        self.victim.clear()
        return 3

    def __getitem__(self, index: int) -> int:
        return index


class EmptyingZone(datetime.tzinfo):
    def __init__(self, victim: List[Any]) -> None:
        self.victim = victim

    def utcoffset(self, _: Any) -> datetime.timedelta:
        self.victim.clear()
        return datetime.timedelta(0)


def save(value: Any, tmp_path: Any) -> None:
    scene = Scene()
    scene.root_node.create_child_node("holder").set_property("p", value)
    scene.save(str(tmp_path / "scene.gltf"))


def test_a_list_that_loses_the_item_being_read(tmp_path: Any) -> None:
    for _ in range(100):
        items: List[Any] = [Emptier(5), 6, 7]
        Emptier.victim = items
        with pytest.raises(RuntimeError, match="can't build 'Int32' from 'Emptier'"):
            Mesh().create_polygon(items)
        items = [Emptier(5), 7]
        Emptier.victim = items
        with pytest.raises(RuntimeError, match="the value of the property 'p' of 'holder'"):
            save(items, tmp_path)


def test_a_nested_sequence_that_loses_itself() -> None:
    points = [Vector4(float(i), float(i * i), 0.0, 1.0) for i in range(6)]
    outer: List[Any] = []
    for _ in range(200):
        outer[:] = [EmptyingSequence(outer), EmptyingSequence(outer)]
        try:
            PolygonModifier.triangulate(points, outer)
        except RuntimeError as error:
            assert "Proxy error" in str(error)
        assert outer == []


def test_a_date_whose_zone_empties_the_list(tmp_path: Any) -> None:
    for _ in range(50):
        items: List[Any] = []
        items[:] = [datetime.datetime(2020, 5, 17, tzinfo=EmptyingZone(items)), 1]
        try:
            save(items, tmp_path)
        except RuntimeError as error:
            assert "too large or too small" not in str(error)


def nested(depth: int) -> List[Any]:
    value: List[Any] = [1]
    for _ in range(depth):
        value = [value]
    return value


def test_values_nested_too_deep_are_refused_by_name(tmp_path: Any) -> None:
    endless: List[Any] = [1]
    endless.append(endless)
    for value in (endless, nested(64), nested(20_000)):
        with pytest.raises(RuntimeError, match="'p' of 'holder': It is nested more than 64 deep, or holds itself"):
            save(value, tmp_path)
    assert list(tmp_path.iterdir()) == []
    save(nested(60), tmp_path)
    Scene(str(tmp_path / "scene.gltf"))


def test_a_property_that_holds_itself_has_a_text() -> None:
    node = Node("x")
    node.set_property("p", 1)
    prop = node.find_property("p")
    prop.value = prop
    assert str(prop) == "p = p"


def test_the_largest_whole_number_comes_back(tmp_path: Any) -> None:
    save(2**64 - 1, tmp_path)
    child = Scene(str(tmp_path / "scene.gltf")).root_node.child_nodes[0]
    assert child.get_property("p") == 2**64 - 1


def test_a_moment_with_an_offset_keeps_its_fractions(tmp_path: Any) -> None:
    zone = datetime.timezone(datetime.timedelta(hours=2))
    save(datetime.datetime(2020, 5, 17, 12, 0, 0, 123456, tzinfo=zone), tmp_path)
    child = Scene(str(tmp_path / "scene.gltf")).root_node.child_nodes[0]
    assert child.get_property("p") == "2020-05-17T12:00:00.1234560+02:00"


def objects_with_own_properties() -> Iterator[Tuple[str, Any]]:
    for module in (voxlar, *(getattr(voxlar, name) for name in ("animation", "entities", "shading", "deformers"))):
        for name, kind in vars(module).items():
            if isinstance(kind, type) and hasattr(kind, "find_property"):
                try:
                    yield name, kind()
                except (TypeError, RuntimeError):
                    continue  # abstract, or made from something


def test_own_properties_take_back_what_they_gave() -> None:
    taken = 0
    for name, target in objects_with_own_properties():
        for prop in target.properties:
            value = prop.value
            prop.value = value
            after = prop.value
            assert after == value or value != value, f"{name}.{prop.name}"
            taken += 1
    assert taken > 200


def test_an_enum_property_takes_numbers_of_its_members_alone() -> None:
    prop = Light().find_property("LightType")
    prop.value = 1
    assert prop.value == 1
    with pytest.raises(RuntimeError, match="The property 'LightType' takes a LightType; none is 77"):
        prop.value = 77
    assert prop.value == 1


def test_a_whole_property_refuses_fractions() -> None:
    prop = Box().find_property("LengthSegments")
    prop.value = 4.0
    assert prop.value == 4
    for value in (2.5, float("nan"), float("inf"), 1e300):
        with pytest.raises(RuntimeError, match="The property 'LengthSegments' takes a Int32"):
            prop.value = value
    assert prop.value == 4


def test_an_identifier_that_cannot_be_read_leaves_the_old_value() -> None:
    class Broken(uuid.UUID):
        @property
        def bytes_le(self) -> bytes:
            raise KeyError("no bytes")

    node = Node("x")
    node.set_property("p", "before")
    with pytest.raises(RuntimeError, match="no bytes"):
        node.set_property("p", Broken(int=5))
    assert node.get_property("p") == "before"


@pytest.mark.parametrize("kind", [TrimmedCurve, TransformedCurve])
def test_a_curve_is_no_part_of_itself(kind: Callable[[], Any]) -> None:
    first, second = kind(), kind()
    first.basis_curve = second
    for target, basis in ((first, first), (second, first)):
        with pytest.raises(RuntimeError, match="A curve cannot be a part of itself"):
            target.basis_curve = basis


def test_a_cloud_of_too_many_points_is_refused_before_the_first() -> None:
    with pytest.raises(RuntimeError, match="points are too many"):
        PointCloud.from_geometry(Box().to_mesh(), 2**31 - 1)


def test_merging_nothing_says_what_is_missing() -> None:
    with pytest.raises(RuntimeError, match="ArgumentNullException"):
        PolygonModifier.merge_mesh([None])
