"""Each operation many times, with memory and handle counts flat; VELBOR_STRESS=100000 runs the full count."""

from __future__ import annotations

import io
import os
from operator import setitem as set_item
from typing import Any, Callable

import pytest

from conftest import Repeat
from velbor.voxlar import FileFormat, Node, Scene
from velbor.voxlar.entities import Mesh, PolygonModifier, TriMesh, VertexElementNormal, VertexElementUV
from velbor.voxlar.utilities import (
    MemoryFileSystem,
    Vector2,
    Vector3,
    Vector4,
    VertexDeclaration,
    VertexFieldDataType,
    VertexFieldSemantic,
)

TIMES = int(os.environ.get("VELBOR_STRESS", "2000"))
CALLBACK = 256  # a call of a Python file leaves its view or its answer allocated: so the callbacks stand

OPTIONS = FileFormat.GLTF2.create_save_options()
FILES = MemoryFileSystem()
STREAM = FILES.write_file("a", OPTIONS)
STREAM.write(b"one\ntwo\nthree\n" * 100)
CLOSED = FILES.write_file("closed", OPTIONS)
CLOSED.close()
ROOM = bytearray(1000)

INTEGERS = VertexElementNormal().indices
INTEGERS.extend(range(10))
MORE = VertexElementNormal().indices
MORE.extend(range(10))
STRINGS = OPTIONS.lookup_paths
STRINGS.extend(["a", "b", "c"])
POINTS = Mesh().control_points
POINTS.extend([Vector4(float(i), 0.0, 0.0, 1.0) for i in range(4)])
NODE = Node("n")
HOLDER = Scene()
HOLDER.root_node.add_child_node(NODE)
SQUARE = [Vector4(), Vector4(1.0, 0.0, 0.0), Vector4(1.0, 1.0, 0.0), Vector4(0.0, 1.0, 0.0)]
TRIANGLES = Mesh()

DECLARATION = VertexDeclaration()
FIELD = DECLARATION.add_field(VertexFieldDataType.F_VECTOR3, VertexFieldSemantic.POSITION, 0, "p")
TRI_MESH = TriMesh.from_raw_data(DECLARATION, bytes(36), [0, 1, 2], False)


class Failing(io.RawIOBase):
    def readable(self) -> bool:
        return True

    writable = readable

    def readinto(self, room: Any) -> Any:
        raise OSError("torn")

    def write(self, data: Any) -> Any:
        raise OSError("full")


class Half(io.RawIOBase):
    """Takes some data, then fails."""

    def __init__(self) -> None:
        self.left = 2

    def writable(self) -> bool:
        return True

    def write(self, data: Any) -> Any:
        self.left -= 1
        if self.left < 0:
            raise OSError("full")
        return 5


class Sequence:
    def __init__(self, length: Any, item: Any) -> None:
        self.length, self.item = length, item

    def __len__(self) -> int:
        return self.length()

    def __getitem__(self, index: int) -> Any:
        return self.item(index)


def fails(*_: Any) -> Any:
    raise LookupError("on purpose")


def half(item: Any) -> Any:
    yield item
    fails()


def refused(operation: Callable[[], Any]) -> Callable[[], None]:
    def run() -> None:
        try:
            operation()
        except (TypeError, RuntimeError, ValueError, IndexError, LookupError, OverflowError, BufferError):
            return
        raise AssertionError("it should have failed")

    return run


def add_and_remove(operation: Callable[[Any], Any]) -> Callable[[], None]:
    def run() -> None:
        operation(INTEGERS)
        del INTEGERS[10:]

    return run


def save_property(value: Any) -> None:
    """Saving reads a property of open type item by item."""
    NODE.set_property("p", value)
    STREAM.seek(0)
    HOLDER.save(STREAM, FileFormat.GLTF2)


def buffered() -> None:
    STREAM.seek(0)
    reader = io.BufferedReader(STREAM, 100)
    reader.read(150)
    reader.detach()


LISTS: dict[str, Callable[[], Any]] = {
    "iterate": lambda: [*INTEGERS],
    "iterate half": lambda: next(iter(INTEGERS)),
    "item": lambda: (INTEGERS[0], INTEGERS[-1], STRINGS[1], POINTS[2]),
    "set item": lambda: (set_item(INTEGERS, 0, 5), set_item(STRINGS, 0, "é"), set_item(POINTS, 0, Vector4())),
    "slice": lambda: (INTEGERS[2:5], STRINGS[::-1], POINTS[::2]),
    "set slice": lambda: (set_item(INTEGERS, slice(0, 2), [1, 2]), set_item(POINTS, slice(0, 1), (Vector4(),))),
    "set slice managed": lambda: INTEGERS.__setitem__(slice(0, 10), MORE),
    "append": add_and_remove(lambda x: x.append(1)),
    "extend list": add_and_remove(lambda x: x.extend([1, 2])),
    "extend iterator": add_and_remove(lambda x: x.extend(iter((1, 2)))),
    "extend managed": add_and_remove(lambda x: x.extend(MORE)),
    "insert": add_and_remove(lambda x: (x.insert(0, 1), x.pop(0))),
    "concat": lambda: (INTEGERS + [1], STRINGS + ("x",), POINTS + iter([1]), INTEGERS * 2, POINTS.copy()),
    "search": lambda: (INTEGERS.count(1), 5 in INTEGERS, STRINGS.index("b"), POINTS.contains(Vector4())),
    "sort": lambda: (INTEGERS.sort(reverse=True), STRINGS.sort(), POINTS.reverse()),
    "item out of range": refused(lambda: INTEGERS[99]),
    "item of wrong type": refused(lambda: INTEGERS.append("x")),
    "slice of wrong size": refused(lambda: INTEGERS.__setitem__(slice(0, 2), [1])),
    "slice half refused": refused(lambda: POINTS.__setitem__(slice(0, 2), [Vector4(), 5])),
    "extend half refused": add_and_remove(lambda x: refused(lambda: x.extend([1, "x"]))()),
    "extend half failed": add_and_remove(lambda x: refused(lambda: x.extend(half(1)))()),
    "extend by a bad length": refused(lambda: INTEGERS.extend(Sequence(fails, fails))),
    "extend by a bad item": refused(lambda: INTEGERS.extend(Sequence(lambda: 3, fails))),
    "concat failed": refused(lambda: INTEGERS + half(1)),
    "absent": refused(lambda: INTEGERS.remove(1000)),
    "sort by key": refused(lambda: INTEGERS.sort(key=len)),
}  # fmt: skip

PYTHON: dict[str, Callable[[], Any]] = {
    "list": lambda: PolygonModifier.triangulate(SQUARE),
    "tuple": lambda: PolygonModifier.triangulate(tuple(SQUARE), ((0, 1, 2, 3),)),
    "sequence": lambda: PolygonModifier.triangulate(Sequence(lambda: 4, SQUARE.__getitem__)),
    "iterable": lambda: VertexElementUV().add_data(Vector2() for _ in range(3)),
    "strings": lambda: setattr(OPTIONS, "lookup_paths", ("a", "b", "c")),
    "polygon": lambda: (TRIANGLES.create_polygon([0, 1, 2]), TRIANGLES.polygons.clear()),
    "kept list": lambda: (NODE.set_property("p", [1, "x", Vector3()]), NODE.get_property("p")),
    "kept tuple": lambda: (NODE.set_property("p", (1, "x", Vector3())), NODE.get_property("p")),
    "saved list": lambda: save_property([object.__repr__(STREAM), 1.5e10, Vector3()]),
    "saved tuple": lambda: save_property((object.__repr__(STREAM), 1.5e10, Vector3())),
    "refused element": refused(lambda: PolygonModifier.triangulate([Vector4(), 5])),
    "refused element of tuple": refused(lambda: PolygonModifier.triangulate((Vector4(), 5))),
    "bad length": refused(lambda: PolygonModifier.triangulate(Sequence(fails, fails))),
    "bad item": refused(lambda: PolygonModifier.triangulate(Sequence(lambda: 3, fails))),
    "bad iterator": refused(lambda: VertexElementUV().add_data(half(Vector2()))),
    "no iterator": refused(lambda: VertexElementUV().add_data(5)),
    "refused strings": refused(lambda: setattr(OPTIONS, "lookup_paths", ["a", 5])),
}  # fmt: skip

STREAMS: dict[str, Callable[[], Any]] = {
    "read": lambda: (STREAM.seek(0), STREAM.read(10), STREAM.read(), STREAM.read(5)),
    "readinto": lambda: (STREAM.seek(0), STREAM.readinto(ROOM), STREAM.readinto(memoryview(ROOM)[3:5])),
    "lines": lambda: (STREAM.seek(0), STREAM.readline(), STREAM.readline(2), STREAM.readlines(50)),
    "next line": lambda: (STREAM.seek(0), next(STREAM)),
    "write": lambda: (STREAM.seek(0), STREAM.write(b"one"), STREAM.write(bytearray(b"\n")), STREAM.tell()),
    "truncate": lambda: STREAM.truncate(1400),
    "tests": lambda: (STREAM.readable(), STREAM.writable(), STREAM.seekable(), STREAM.closed),
    "buffered": buffered,
    "bad room": refused(lambda: STREAM.readinto(b"read-only")),
    "bad data": refused(lambda: STREAM.write("text")),
    "bad lines": refused(lambda: STREAM.writelines([5])),
    "bad place": refused(lambda: STREAM.seek(-10**6, 1)),
    "bad size": refused(lambda: STREAM.read("x")),
    "closed": refused(lambda: CLOSED.read()),
    "no such file": refused(lambda: FILES.read_file("none", OPTIONS)),
}  # fmt: skip

FILE_CALLS: dict[str, Callable[[], Any]] = {
    "write to memory": lambda: TRI_MESH.write_vertices_to(io.BytesIO()),
    "write to failing": refused(lambda: TRI_MESH.write_vertices_to(Failing())),
    "write half": refused(lambda: TRI_MESH.write_vertices_to(Half())),
    "write to closed": refused(lambda: TRI_MESH.write_vertices_to(closed_memory())),
    "read garbage": refused(lambda: Scene().open(io.BytesIO(b"garbage"))),
    "read failing": refused(lambda: Scene().open(Failing())),
    "no file": refused(lambda: TRI_MESH.write_vertices_to(io.StringIO())),
}

BYTES: dict[str, Callable[[], Any]] = {
    "raw data": lambda: TriMesh.from_raw_data(DECLARATION, bytearray(36), (0, 1, 2), False),
    "load": lambda: TRI_MESH.load_vertices_from_bytes(memoryview(bytes(36))),
    "content": lambda: TRI_MESH.vertices_to_array(),
    "vertex": lambda: (TRI_MESH.read_f_vector3(1, FIELD), [*TRI_MESH], [*DECLARATION]),
    "bad size": refused(lambda: TRI_MESH.load_vertices_from_bytes(bytes(37))),
    "no bytes": refused(lambda: TRI_MESH.load_vertices_from_bytes(5)),
    "strided": refused(lambda: TRI_MESH.load_vertices_from_bytes(memoryview(bytes(72))[::2])),
    "bad indices": refused(lambda: TriMesh.from_raw_data(DECLARATION, bytes(36), [0, 1, "x"], False)),
}  # fmt: skip


def closed_memory() -> io.BytesIO:
    file = io.BytesIO()
    file.close()
    return file


ALL = {
    **{f"list: {name}": operation for name, operation in LISTS.items()},
    **{f"python: {name}": operation for name, operation in PYTHON.items()},
    **{f"stream: {name}": operation for name, operation in STREAMS.items()},
    **{f"file: {name}": operation for name, operation in FILE_CALLS.items()},
    **{f"bytes: {name}": operation for name, operation in BYTES.items()},
}


@pytest.mark.parametrize("name", ALL)
def test_an_operation_leaves_nothing_behind(repeat: Repeat, name: str) -> None:
    callbacks = 12 * CALLBACK if name in ("file: read garbage", "file: read failing") else CALLBACK
    repeat(ALL[name], times=TIMES, left=callbacks if name.startswith("file:") else 0)
