"""Python lists, sequences, iterables and iterators that managed code drives."""

from __future__ import annotations

import gc
import io
import json
import sys
import weakref
from typing import Any, Callable, Iterator

import pytest
from velbor import pygc
from velbor.voxlar import FileFormat, Node, Scene
from velbor.voxlar.entities import PolygonModifier, VertexElementUV
from velbor.voxlar.utilities import Vector2, Vector3, Vector4


def settle() -> None:
    for _ in range(3):
        gc.collect()
        pygc.collect()
    Scene()  # the next entry releases what finalizers have queued


@pytest.fixture(autouse=True)
def nothing_kept() -> Iterator[None]:
    settle()
    before = pygc.living_handles()
    yield
    settle()
    assert pygc.living_handles() == before


class Sequence:
    """A sequence that makes nothing anew."""

    def __init__(self, items: Any) -> None:
        self.items = list(items)

    def __len__(self) -> int:
        return len(self.items)

    def __getitem__(self, index: int) -> Any:
        return self.items[index]


# --- the object itself comes back ----------------------------------------------------------------------


@pytest.mark.parametrize("given", [[1, "two"], (1, "two"), [], (), [[1], (2,)], [None, Vector3()]])
def test_a_collection_kept_by_managed_code_comes_back_as_itself(given: Any) -> None:
    node = Node("n")
    node.set_property("p", given)
    assert node.get_property("p") is given
    other = Node("m")
    other.set_property("q", node.get_property("p"))
    assert other.get_property("q") is given
    assert node.find_property("p").value is given


def test_a_list_changed_in_python_is_changed_for_managed_code() -> None:
    points = [Vector4(0.0, 0.0, 0.0), Vector4(1.0, 0.0, 0.0), Vector4(1.0, 1.0, 0.0)]
    assert len(PolygonModifier.triangulate(points)) == 1
    points.append(Vector4(0.0, 1.0, 0.0))
    assert len(PolygonModifier.triangulate(points)) == 2
    node, given = Node("n"), [1]
    node.set_property("p", given)
    given.append(2)
    assert node.get_property("p") == [1, 2]


def test_a_list_that_shrinks_while_managed_code_walks_it() -> None:
    class Shrinking(Sequence):
        def __getitem__(self, index: int) -> Any:
            item = self.items[index]
            del self.items[2:]
            return item

    with pytest.raises(RuntimeError, match="There is no control point"):  # the length is asked anew
        PolygonModifier.triangulate(Shrinking([Vector4()] * 5))


# --- what a managed member does to a proxy -------------------------------------------------------------

SQUARE = [Vector4(0.0, 0.0, 0.0), Vector4(1.0, 0.0, 0.0), Vector4(1.0, 1.0, 0.0), Vector4(0.0, 1.0, 0.0)]


class Sub(list):
    pass


@pytest.mark.parametrize("make", [list, tuple, Sub, Sequence], ids=["list", "tuple", "subclass", "sequence"])
def test_any_sequence_serves_as_a_list(make: Callable[[Any], Any]) -> None:
    assert len(PolygonModifier.triangulate(make(SQUARE))) == 2
    assert len(PolygonModifier.triangulate(make(SQUARE), make([make([0, 1, 2, 3]), make([0, 1, 2])]))) == 3


@pytest.mark.parametrize("make", [set, dict.fromkeys, iter, lambda x: (i for i in x)])
def test_what_is_no_sequence_serves_as_no_list(make: Callable[[Any], Any]) -> None:
    with pytest.raises(TypeError):
        PolygonModifier.triangulate(make([1, 2]))


COORDINATES = [Vector2(float(i), 0.5) for i in range(5)]


class GetItemOnly:
    def __getitem__(self, index: int) -> Any:
        return COORDINATES[index]


@pytest.mark.parametrize(
    "make",
    [
        list, tuple, iter, dict.fromkeys, Sequence, lambda x: (i for i in x), lambda x: GetItemOnly(),
        lambda x: map(lambda i: i, x),
    ],
    ids=["list", "tuple", "iterator", "dict", "sequence", "generator", "getitem only", "map"],
)  # fmt: skip
def test_any_iterable_serves_as_an_enumerable(make: Callable[[Any], Any]) -> None:
    element = VertexElementUV()
    element.add_data(make(COORDINATES))
    assert [item.x for item in element.data] == [0.0, 1.0, 2.0, 3.0, 4.0]


def test_a_python_collection_in_place_of_a_list_of_strings() -> None:
    options = FileFormat.WAVEFRONT_OBJ.create_load_options()
    for given in (["a", "é\U0001f600"], ("a", "é\U0001f600"), Sequence(["a", "é\U0001f600"])):
        options.lookup_paths = given
        assert list(options.lookup_paths) == ["a", "é\U0001f600"]
    with pytest.raises(RuntimeError, match="can't build String from 'int'"):
        options.lookup_paths = ["a", 5]


# --- exceptions of Python code inside ------------------------------------------------------------------


def fails(*_: Any) -> Any:
    raise LookupError("on purpose")


def with_method(name: str) -> Any:
    return type("Failing", (Sequence,), {name: fails})(SQUARE)


@pytest.mark.parametrize("name", ["__len__", "__getitem__"])
def test_exceptions_of_a_sequence_come_out(name: str) -> None:
    with pytest.raises(RuntimeError, match="(?s)Proxy error.*LookupError: on purpose"):
        PolygonModifier.triangulate(with_method(name))


def test_exceptions_of_an_iterator_come_out() -> None:
    class Walk:
        def __iter__(self) -> Any:
            return self

        __next__ = fails

    for given in (Walk(), type("Bad", (), {"__iter__": fails})()):
        with pytest.raises(RuntimeError, match="(?s)Proxy error.*LookupError: on purpose"):
            VertexElementUV().add_data(given)
    with pytest.raises(RuntimeError, match="non-iterator"):
        VertexElementUV().add_data(type("NoIterator", (), {"__iter__": lambda self: 5})())


def test_an_element_of_the_wrong_type_tells_which() -> None:
    for given in ([SQUARE[0], "x"], (SQUARE[0], "x"), Sequence([SQUARE[0], "x"])):
        with pytest.raises(RuntimeError, match="can't build Vector4 value from 'str'"):
            PolygonModifier.triangulate(given)
    with pytest.raises(RuntimeError, match="can't build Vector2 value from 'NoneType'|can't build Vector2"):
        VertexElementUV().add_data([None])


def test_half_of_an_iterable_stays_added() -> None:
    def half() -> Iterator[Vector2]:
        yield COORDINATES[0]
        raise LookupError("on purpose")

    element = VertexElementUV()
    with pytest.raises(RuntimeError, match="on purpose"):
        element.add_data(half())
    assert len(element.data) <= 1


# --- extend and slices of managed lists from Python ----------------------------------------------------


class Own(Exception):
    pass


def raises_own(*_: Any) -> Any:
    raise Own("mine")


def test_python_exceptions_in_extend_stay_what_they_are() -> None:
    points = VertexElementUV().data
    for given in (
        type("A", (Sequence,), {"__len__": raises_own})([1]),
        type("B", (Sequence,), {"__getitem__": raises_own})([1]),
        type("C", (), {"__iter__": raises_own})(),
        (raises_own() for _ in range(1)),
    ):
        with pytest.raises(Own, match="mine"):
            points.extend(given)


# --- lifetimes -----------------------------------------------------------------------------------------


class Weak(list):
    pass


@pytest.mark.parametrize("use", [
    lambda x: PolygonModifier.triangulate(x),
    lambda x: PolygonModifier.triangulate(SQUARE, [x]),
    lambda x: VertexElementUV().add_data(x),
])  # fmt: skip
@pytest.mark.parametrize("items", [SQUARE, COORDINATES, [0, 1, 2], ["x"], []])
def test_a_collection_that_outlived_its_call_is_released(use: Callable[[Any], Any], items: Any) -> None:
    given = Weak(items)
    seen = weakref.ref(given)
    try:
        use(given)
    except (RuntimeError, TypeError, ValueError):
        pass
    del given
    settle()
    assert seen() is None


class Item:
    """Something that knows when it goes; not convertible."""


def test_items_that_are_refused_are_let_go() -> None:
    for make in (list, tuple, Sequence, iter):
        item = Item()
        seen = weakref.ref(item)
        for call in (PolygonModifier.triangulate, VertexElementUV().add_data):
            with pytest.raises((RuntimeError, TypeError)):
                call(make([item]))
        del item
        settle()
        assert seen() is None, make


@pytest.mark.parametrize("make", [list, tuple])
@pytest.mark.parametrize("item", ["a text of its own", 2**40 + 7, 1.0e77, Vector3(), b"bytes"], ids=str)
def test_reading_items_of_any_type_leaves_no_reference(make: Callable[[Any], Any], item: Any) -> None:
    scene = Scene()
    given = make([item] * 100)
    scene.root_node.create_child_node("n").set_property("p", given)
    before = sys.getrefcount(item)
    file = io.BytesIO()
    scene.save(file, FileFormat.GLTF2)  # writes properties as extras, those of open type item by item
    assert sys.getrefcount(item) == before
    if isinstance(item, (str, float)):
        extras = [node["extras"]["p"] for node in json.loads(file.getvalue())["nodes"] if "extras" in node]
        assert extras == [list(given)]


def test_wrappers_in_collections_are_let_go() -> None:
    handles = pygc.living_handles()
    for make in (list, tuple, Sequence):
        for _ in range(10):
            nodes = make([Node("a"), Node("b")])
            PolygonModifier.merge_mesh(nodes)
            Node("n").set_property("p", make(Vector3() for _ in range(3)) if make is not Sequence else None)
            del nodes
    settle()
    assert pygc.living_handles() == handles
