"""Managed collections as Python sees them, over the real runtime: as lists, in `for`, and as arguments."""

from __future__ import annotations

import random
from typing import Any, Callable, Iterable

import pytest
import velbor.voxlar as voxlar
from velbor.voxlar.entities import Mesh, VertexElementNormal
from velbor.voxlar.utilities import Matrix4, Vector4

OPERATIONS = 20_000


def outcome(function: Callable[..., Any], *arguments: Any) -> tuple[str, Any]:
    """What a call gives: its value, or the class of its exception."""
    try:
        return "value", function(*arguments)
    except Exception as error:
        return "error", type(error)


def assign_slice(model: list[Any], key: slice, values: list[Any]) -> None:
    """A managed collection never changes its length by an assignment."""
    places = range(*key.indices(len(model)))
    if len(places) != len(values):
        raise ValueError
    for place, value in zip(places, values):
        model[place] = value


def random_slice(chance: random.Random, size: int) -> slice:
    def bound() -> int | None:
        return chance.choice([None, chance.randint(-size - 2, size + 2)])

    return slice(bound(), bound(), chance.choice([None, 1, 2, 3, -1, -2]))


def operations(chance: random.Random, values: list[Any], size: int) -> dict[str, Callable[[Any], Any]]:
    """One random operation of each kind, to be done to a managed collection and to a list."""
    place, value, key = chance.randint(-size - 2, size + 2), chance.choice(values), random_slice(chance, size)
    some = [chance.choice(values) for _ in range(chance.randint(0, 3))]
    fitting = [chance.choice(values) for _ in range(*key.indices(size))]
    made = chance.choice([list, tuple, iter])

    def extended(x: Any) -> None:
        x.extend(made(some))

    def assigned(x: Any, written: list[Any]) -> None:
        if type(x) is list:
            assign_slice(x, key, written)
        else:
            x[key] = written

    return {
        "get": lambda x: x[place],
        "set": lambda x: x.__setitem__(place, value),
        "slice": lambda x: x[key],
        "set_slice": lambda x: assigned(x, fitting),
        "set_wrong": lambda x: assigned(x, some),
        "count": lambda x: x.count(value),
        "index": lambda x: x.index(value, place),
        "contains": lambda x: value in x,
        "concat": lambda x: x + list(some),
        "repeat": lambda x: x * 2,
        "copy": lambda x: x.copy(),
        "iterate": lambda x: [*x],
        "length": lambda x: len(x),
        "sort": lambda x: x.sort(reverse=bool(place % 2)),
        "reverse": lambda x: x.reverse(),
        "append": lambda x: x.append(value),
        "extend": extended,
        "remove": lambda x: x.remove(value),
        "pop": lambda x: x.pop(),
        "delete": lambda x: x.__delitem__(place),
        "delete_slice": lambda x: x.__delitem__(key),
    }


FIXED = (
    "get", "set", "slice", "set_slice", "set_wrong", "count", "index", "contains", "concat", "repeat", "copy",
    "iterate", "length", "reverse",
)  # fmt: skip
GROWING = (*FIXED, "append", "extend", "remove", "pop", "delete", "delete_slice")


def hold_against_a_list(wrapper: Any, values: list[Any], names: Iterable[str], seed: int) -> None:
    chance, model = random.Random(seed), wrapper[:]
    names = tuple(names)
    for _ in range(OPERATIONS):
        name = chance.choice(names)
        state = chance.getstate()
        size, results = len(model), []
        for target in (wrapper, model):
            chance.setstate(state)
            results.append(outcome(operations(chance, values, size)[name], target))
        assert results[0] == results[1], name
        if len(model) > 60:
            wrapper.clear()
            model.clear()
    assert wrapper[:] == model


def test_a_list_of_strings_is_a_list() -> None:
    paths = voxlar.ImageRenderOptions().asset_directories
    assert type(paths).__name__ == "_ListWrapper_CBE911FC"
    hold_against_a_list(paths, ["", "a", "b", "\u20ac", "\U0001f600"], GROWING, 1)


def test_a_list_of_integers_is_a_list() -> None:
    indices = VertexElementNormal().indices
    assert type(indices).__name__ == "_IListWrapper_A4A29720"
    hold_against_a_list(indices, [0, 1, 2, -7, 2**31 - 1], (*GROWING, "sort"), 2)


def test_a_list_of_vectors_is_a_list() -> None:
    points = Mesh().control_points
    assert type(points).__name__ == "_IListWrapper_29B75A02"
    hold_against_a_list(points, [Vector4(float(i), 0.0, 0.0, 1.0) for i in range(4)], GROWING, 3)


def test_an_array_of_doubles_keeps_its_length() -> None:
    array = Matrix4([float(i) for i in range(16)]).to_array()
    assert type(array).__name__ == "_ArrayWrapper_1BA766B5"
    hold_against_a_list(array, [0.0, 1.5, -2.0], (*FIXED, "sort"), 4)
    with pytest.raises(ValueError, match="elements removing not supported"):
        del array[0]
    with pytest.raises(TypeError, match="can't build 'Double' from 'int'"):
        array[0] = 1


def test_children_are_nodes() -> None:
    root = voxlar.Scene().root_node
    nodes = [root.create_child_node(name) for name in "abc"]
    children = root.child_nodes
    assert [child.name for child in children] == ["a", "b", "c"] and children.index(nodes[1]) == 1
    assert nodes[2] in children and children[-1] == nodes[2] and len(children) == children.length == 3
    with pytest.raises(TypeError, match="can't build Node value from 'int'"):
        5 in children
    with iter(children) as walk:
        assert next(walk) == nodes[0]


def test_enumerables_of_the_api() -> None:
    mesh = Mesh()
    mesh.control_points.extend([Vector4(0.0, 0.0, 0.0, 1.0)] * 4)
    for polygon in ([0, 1, 2], (1, 2, 3)):
        mesh.create_polygon(polygon)
    assert [[*polygon] for polygon in mesh] == [[0, 1, 2], [1, 2, 3]]
    assert [[*polygon] for polygon in mesh.polygons] == [[0, 1, 2], [1, 2, 3]]
    assert type(iter(mesh)).__name__ == "_IterWrapper_DAF680C1"


def test_a_python_list_goes_in_and_is_read() -> None:
    options = voxlar.ImageRenderOptions()
    options.asset_directories = ["first", "second"]
    assert options.asset_directories[:] == ["first", "second"]
    options.asset_directories = ("third",)
    assert options.asset_directories[:] == ["third"]
    with pytest.raises(TypeError, match="can't build List value from 'set'"):
        options.asset_directories = {"fourth"}
    # The elements are read by managed code, so a bad one comes back as a managed error that carries it.
    with pytest.raises(RuntimeError, match="TypeError: can't build String from 'int'"):
        options.asset_directories = ["fifth", 6]


def test_a_failing_element_ends_the_operation() -> None:
    points = Mesh().control_points
    with pytest.raises(TypeError, match="can't build Vector4 value from 'int'"):
        points.extend([Vector4(), 5])
    assert len(points) == 1
    with pytest.raises(TypeError, match="can't build Vector4 value from 'NoneType'"):
        points.append(None)
