"""No path leaves anything behind, the failing ones included."""

from __future__ import annotations

import io
from typing import Any, Callable

import pytest

from conftest import Repeat
from velbor.voxlar import AssetInfo, Axis, Entity, FileFormat, Node, Scene
from velbor.voxlar.entities import Box, Mesh, PolygonModifier, VertexElementUV
from velbor.voxlar.utilities import FVector3, Matrix4, MemoryFileSystem, Vector2, Vector3, Vector4


def refused(operation: Callable[[], Any]) -> Callable[[], None]:
    def run() -> None:
        with pytest.raises((TypeError, RuntimeError, ValueError, IndexError)):
            operation()

    return run


SCENE = Scene()
MESH = Box().to_mesh()
POINTS = MESH.control_points
MATRIX = Matrix4.translate(1.0, 2.0, 3.0)
ARRAY = MATRIX.to_array()
INFO = AssetInfo()
NODE = Node("n")
OPTIONS = FileFormat.WAVEFRONT_OBJ.create_load_options()


def corners() -> "list[Vector4]":
    return [Vector4(), Vector4(1.0, 0.0, 0.0), Vector4(1.0, 1.0, 0.0)]


def walk_file_system() -> None:
    files = MemoryFileSystem()
    stream = files.write_file("a", OPTIONS)
    stream.write(b"hello\nworld")
    stream.seek(0)
    assert list(stream) == [b"hello\n", b"world"]
    stream.close()
    assert files.get_file_content("a") == b"hello\nworld"


# Each read of a Python file leaves its view object allocated, and each seek its answer: so the callbacks stand.
FILE_CALLBACKS = 256
READING = ("broken file", "no format")


class Broken(io.RawIOBase):
    def readable(self) -> bool:
        return True

    def readinto(self, room: Any) -> int:
        raise ValueError("torn")


OPERATIONS: dict[str, Callable[[], Any]] = {
    "construct": Scene,
    "struct": lambda: Vector3(1.0, 2.0, 3.0).normalize(),
    "constant": lambda: (Vector3.ORIGIN, FileFormat.GLTF2, Matrix4.identity),
    "property": lambda: (NODE.name, NODE.transform.translation, SCENE.root_node),
    "set": lambda: (setattr(NODE, "name", "name"), setattr(NODE.transform, "scale", Vector3(1.0, 1.0, 1.0))),
    "nullable": lambda: (setattr(INFO, "ambient", Vector4()), INFO.ambient, setattr(INFO, "ambient", None)),
    "value": lambda: (NODE.set_property("p", "é" * 100), NODE.get_property("p")),
    "bytes": lambda: (NODE.set_property("p", b"x" * 100), NODE.get_property("p")),
    "list value": lambda: (NODE.set_property("p", [1, 2]), NODE.get_property("p")),
    "wrapper value": lambda: (NODE.set_property("p", Vector3()), NODE.get_property("p")),
    "text": lambda: (str(NODE), repr(MATRIX), hash(NODE), NODE == SCENE, NODE == None),  # noqa: E711
    "types": lambda: (Scene._type_of(), NODE.get_type(), Axis.X_AXIS.get_type(), Axis.X_AXIS._as_uni_enum()),
    "casts": lambda: (
        Vector3._cast_to(FVector3()), Mesh._cast_to(MESH), Box._cast_as(MESH), Entity._is_assignable(MESH),
        Vector3()._cast_from(FVector3._type_of()),
    ),
    "items": lambda: (POINTS[0], POINTS[1:3], list(POINTS), Vector4() in POINTS, POINTS.count(Vector4())),
    "change items": lambda: (POINTS.append(Vector4()), POINTS.pop(), POINTS.reverse()),
    "array": lambda: (list(ARRAY), ARRAY.index(3.0), ARRAY[2:5]),
    "polygons": lambda: [list(polygon) for polygon in MESH],
    "outputs": lambda: MATRIX.decompose([], [], []),
    "python list": lambda: PolygonModifier.triangulate(corners()),
    "python tuple": lambda: PolygonModifier.triangulate(tuple(corners())),
    "python iterable": lambda: VertexElementUV().add_data(Vector2(float(x), 0.0) for x in range(3)),
    "strings": lambda: (setattr(OPTIONS, "lookup_paths", ["a", "b"]), list(OPTIONS.lookup_paths)),
    "null object": refused(lambda: Scene.__new__(Scene).clear()),
    "refused value": refused(lambda: NODE.set_property("p", {})),
    "refused integer": refused(lambda: NODE.set_property("p", 2**70)),
    "refused element": refused(lambda: PolygonModifier.triangulate([Vector4(), 5])),
    "refused overloads": refused(lambda: SCENE.save(1)),
    "index": refused(lambda: POINTS[99]),
    "missing file": refused(lambda: SCENE.open("not there")),
    "broken file": refused(lambda: SCENE.open(Broken())),
    "no format": refused(lambda: SCENE.open(io.BytesIO(b"garbage"))),
}  # fmt: skip


@pytest.mark.parametrize("name", OPERATIONS)
def test_an_operation_leaves_nothing_behind(repeat: Repeat, name: str) -> None:
    repeat(OPERATIONS[name], left=FILE_CALLBACKS if name in READING else 0)


def test_a_stream_leaves_nothing_behind(repeat: Repeat) -> None:
    repeat(walk_file_system, times=500)


def test_references_of_a_given_list_are_given_back(repeat: Repeat) -> None:
    given = [1, "two"]
    repeat(lambda: Node("n").set_property("p", given), watched=given)


def test_references_of_a_file_are_given_back(repeat: Repeat) -> None:
    file = io.BytesIO(b"garbage")

    def read() -> None:
        file.seek(0)
        with pytest.raises(RuntimeError):
            SCENE.open(file)

    repeat(read, times=500, watched=file, left=FILE_CALLBACKS)
