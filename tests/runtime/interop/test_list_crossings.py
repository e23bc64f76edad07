"""Managed collections as Python sequences, and Python collections as managed ones."""

from __future__ import annotations

import random
from typing import Any, Iterator

import pytest

from velbor.voxlar import FileFormat, Node, Scene
from velbor.voxlar.entities import Box, Line, Mesh, PolygonModifier, VertexElementUV
from velbor.voxlar.utilities import Matrix4, Quaternion, Vector2, Vector3, Vector4


def points(*values: float) -> list[Vector4]:
    return [Vector4(value, 0.0, 0.0, 1.0) for value in values]


def numbers(items: Any) -> list[float]:
    return [item.x for item in items]


def model() -> tuple[Any, list[float]]:
    """A managed list of points and a Python list that should behave alike."""
    mesh = Mesh()
    mesh.control_points.extend(points(0.0, 1.0, 2.0, 3.0, 4.0))
    return mesh.control_points, [0.0, 1.0, 2.0, 3.0, 4.0]


def test_reading() -> None:
    managed, plain = model()
    assert len(managed) == managed.length == len(plain)
    assert numbers(managed) == plain
    for index in range(-5, 5):
        assert managed[index].x == plain[index]
    for index in (5, -6, 100):
        with pytest.raises(IndexError, match="list index out of range"):
            managed[index]
    pieces = [slice(None), slice(1, 3), slice(None, None, 2), slice(None, None, -1), slice(4, 1, -2), slice(9, 2)]
    for piece in pieces:
        assert numbers(managed[piece]) == plain[piece]
        assert type(managed[piece]) is list
    assert points(3.0)[0] in managed
    assert managed.index(points(3.0)[0]) == 3
    assert managed.count(points(3.0)[0]) == 1
    with pytest.raises(TypeError, match="can't build Vector4 value from 'int'"):
        5 in managed  # noqa: B015


def test_writing() -> None:
    managed, plain = model()

    def both(change: Any) -> None:
        change(managed, lambda value: Vector4(value, 0.0, 0.0, 1.0))
        change(plain, lambda value: value)
        assert numbers(managed) == plain

    both(lambda items, make: items.append(make(9.0)))
    both(lambda items, make: items.insert(0, make(8.0)))
    both(lambda items, make: items.insert(-1, make(7.0)))
    both(lambda items, make: items.insert(100, make(6.0)))
    both(lambda items, make: items.__setitem__(2, make(5.0)))
    both(lambda items, make: items.__setitem__(slice(1, 3), [make(1.5), make(2.5)]))
    both(lambda items, make: items.__setitem__(slice(None, None, -4), [make(x) for x in (11.0, 12.0, 13.0)]))
    both(lambda items, make: items.__delitem__(0))
    both(lambda items, make: items.__delitem__(slice(1, 3)))
    both(lambda items, make: items.__delitem__(slice(None, None, 2)))
    both(lambda items, make: items.extend((make(1.0), make(2.0))))
    both(lambda items, make: items.extend(make(float(x)) for x in range(3)))
    both(lambda items, make: items.reverse())
    both(lambda items, make: items.pop())
    both(lambda items, make: items.pop(0))
    both(lambda items, make: items.pop(-2))
    both(lambda items, make: items.remove(make(2.0)))
    both(lambda items, make: items.__imul__(3))
    both(lambda items, make: items.clear())
    with pytest.raises(IndexError, match="pop from empty list"):
        managed.pop()
    with pytest.raises(ValueError, match="not in list"):
        managed.remove(points(1.0)[0])


def test_random_changes_follow_a_python_list() -> None:
    managed, plain = model()
    dice = random.Random(7)
    for _ in range(300):
        value = float(dice.randrange(10))
        index = dice.randrange(len(plain)) if plain else 0
        match_ = dice.randrange(5)
        if match_ == 0 or len(plain) < 3:
            managed.append(Vector4(value, 0.0, 0.0, 1.0))
            plain.append(value)
        elif match_ == 1:
            managed.insert(index, Vector4(value, 0.0, 0.0, 1.0))
            plain.insert(index, value)
        elif match_ == 2:
            del managed[index]
            del plain[index]
        elif match_ == 3:
            assert managed.pop(index).x == plain.pop(index)
        else:
            managed[index] = Vector4(value, 0.0, 0.0, 1.0)
            plain[index] = value
    assert numbers(managed) == plain


def test_managed_lists_join_without_leaving_managed_code() -> None:
    managed, _ = model()
    managed += managed
    assert numbers(managed) == [0.0, 1.0, 2.0, 3.0, 4.0] * 2
    other = Mesh()
    other.control_points.extend(managed)
    assert len(other.control_points) == 10
    managed[0:10] = other.control_points
    with pytest.raises(ValueError, match="attempt to assign sequence of size 10 to extended slice of size 2"):
        managed[0:2] = other.control_points


def test_an_array_keeps_its_length() -> None:
    array = Matrix4.translate(1.0, 2.0, 3.0).to_array()
    assert list(array)[12:15] == [1.0, 2.0, 3.0]
    assert array.index(3.0) == 14
    assert array.count(0.0) == 9
    array[0:2] = (7.0, 8.0)
    assert (array[0], array[1]) == (7.0, 8.0)
    array.sort(reverse=True)
    assert list(array) == sorted(array, reverse=True)
    array.reverse()
    assert array[15] == 8.0
    with pytest.raises(ValueError, match="elements removing not supported"):
        del array[0]
    with pytest.raises(TypeError, match="can't build 'Double' from 'int'"):
        array[0] = 1
    assert type(array + [1.0]) is list


def test_a_sort_is_stable_and_managed() -> None:
    options = FileFormat.WAVEFRONT_OBJ.create_load_options()
    options.lookup_paths = ["b", "c", "a"]
    paths = options.lookup_paths
    paths.sort()
    assert list(paths) == ["a", "b", "c"]
    paths.sort(reverse=True)
    assert list(paths) == ["c", "b", "a"]
    paths.append(None)
    assert list(paths) == ["c", "b", "a", None]
    with pytest.raises(TypeError, match="can't build String from 'int'"):
        paths.append(1)


class Sequence:
    """A sequence that is neither a list nor a tuple."""

    def __init__(self, items: list[Any]) -> None:
        self.items = items

    def __len__(self) -> int:
        return len(self.items)

    def __getitem__(self, index: int) -> Any:
        return self.items[index]


def square() -> list[Vector4]:
    return [Vector4(0.0, 0.0, 0.0), Vector4(1.0, 0.0, 0.0), Vector4(1.0, 1.0, 0.0), Vector4(0.0, 1.0, 0.0)]


@pytest.mark.parametrize("make", [list, tuple, Sequence])
def test_python_sequences_serve_as_managed_lists(make: Any) -> None:
    triangles = PolygonModifier.triangulate(make(square()))
    assert sorted(index for triangle in triangles for index in triangle) in (
        [0, 0, 1, 2, 2, 3], [0, 1, 1, 2, 3, 3],
    )  # fmt: skip
    assert len(PolygonModifier.triangulate(make(square()), make([make([0, 1, 2, 3])]))) == 2


def test_an_element_that_does_not_fit_is_refused_in_the_call() -> None:
    with pytest.raises(RuntimeError, match="can't build 'Int32' from 'str'"):
        PolygonModifier.triangulate(square(), [[0, 1, "2"]])
    with pytest.raises(RuntimeError, match="can't build Array value from 'int'"):
        PolygonModifier.triangulate(square(), [0, 1, 2])  # the overload over any list stands first
    with pytest.raises(TypeError):
        PolygonModifier.triangulate({1, 2})


def test_python_iterables_serve_as_managed_ones() -> None:
    def coordinates() -> Iterator[Vector2]:
        yield Vector2(0.0, 0.5)
        yield Vector2(1.0, 0.5)

    element = VertexElementUV()
    element.add_data(coordinates())
    element.add_data([Vector2(0.25, 0.25)])
    assert [(item.x, item.y) for item in element.data] == [(0.0, 0.5), (1.0, 0.5), (0.25, 0.25)]


def test_an_iterable_that_raises_tells_its_own_error() -> None:
    def broken() -> Iterator[Vector2]:
        yield Vector2(0.0, 0.5)
        raise ValueError("in the middle")

    with pytest.raises(RuntimeError, match="(?s)Traceback.*ValueError: in the middle"):
        VertexElementUV().add_data(broken())


def test_outputs_by_list() -> None:
    translation: list[Any] = []
    scaling: list[Any] = [None, "kept"]
    rotation: list[Any] = [Quaternion(1.0, 0.0, 0.0, 0.0)]
    assert Matrix4.translate(1.0, 2.0, 3.0).decompose(translation, scaling, rotation) is True
    assert translation == [Vector3(1.0, 2.0, 3.0)]
    assert scaling == [Vector3(1.0, 1.0, 1.0), "kept"]
    assert rotation == [Quaternion(1.0, 0.0, 0.0, 0.0)]
    angle, axis = [1.5], []
    Quaternion(1.0, 0.0, 0.0, 0.0).to_angle_axis(angle, axis)
    assert type(angle[0]) is float
    assert type(axis[0]) is Vector3


def test_a_changed_collection_ends_the_walk() -> None:
    scene = Scene()
    for _ in range(3):
        scene.root_node.create_child_node(Box())
    nodes = scene.root_node.child_nodes
    walk = iter(nodes)
    next(walk)
    nodes.clear()
    with pytest.raises((RuntimeError, StopIteration)):
        next(walk)
        next(walk)


def test_typed_enumerators_can_be_left_early() -> None:
    managed, plain = model()
    with iter(managed) as walk:
        assert next(walk).x == plain[0]
    assert type(Line.from_points([Vector3(0.0, 0.0, 0.0), Vector3(1.0, 0.0, 0.0)])) is Line


def test_nodes_merge_from_a_list_of_wrappers() -> None:
    nodes = []
    for _ in range(2):
        node = Node("n")
        node.add_entity(Box())
        nodes.append(node)
    mesh = PolygonModifier.merge_mesh(nodes)
    assert mesh.polygon_count == 12
    with pytest.raises(RuntimeError, match="can't build Node value from 'int'"):
        PolygonModifier.merge_mesh([1, 2])
