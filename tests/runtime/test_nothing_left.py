"""After thousands of repetitions of each kind of call, failing ones included, nothing is left: no living handle, no
Python object, no reference, no memory.
"""

from __future__ import annotations

import datetime
import gc
import io
import sys
import uuid
from decimal import Decimal
from typing import Any, Callable, Dict, Tuple

import pytest
import velbor
from velbor import pygc, pyreflection
from velbor.pycore import BytesAsStream
from velbor.voxlar import Axis, FileFormat, Node, PropertyFlags, Scene
from velbor.voxlar.entities import Box, Camera, Light, Mesh, VertexElementUV
from velbor.voxlar.utilities import Matrix4, MemoryFileSystem, Vector2, Vector3, Vector4

ROUNDS = 2_000

# Of 2,000 rounds a leak of one 32-byte block each would show; the allocators' own pages and the collector's budget move
# by less than this.
RESIDENT = 24 << 20


class Unreadable(io.RawIOBase):
    def readable(self) -> bool:
        return True

    def readinto(self, buffer: Any) -> int:
        raise ValueError("cannot be read")


def ignore(error: type, call: Callable[[], Any]) -> Callable[[], None]:
    def failing() -> None:
        try:
            call()
        except error:
            return
        raise AssertionError("the call did not fail")

    return failing


FORMATS = {
    name: getattr(FileFormat, name)
    for name in ("GLTF2", "GLTF2_BINARY", "WAVEFRONT_OBJ", "STLASCII", "STL_BINARY", "PLY")
    if getattr(FileFormat, name).can_import and getattr(FileFormat, name).can_export
}


def saved(file_format: FileFormat) -> bytes:
    scene = Scene()
    scene.root_node.create_child_node("box", Box())
    stream = io.BytesIO()
    scene.save(stream, file_format)
    return stream.getvalue()


def fixtures() -> Dict[str, Any]:
    node = Node("node", Box())
    node.create_child_node("child")
    mesh = Mesh()
    mesh.control_points.extend([Vector4(0.0, 0.0, 0.0, 1.0)] * 4)
    mesh.create_polygon(0, 1, 2)
    return {"node": node, "box": Box(), "mesh": mesh, "scene": Scene(), "vector": Vector3(1.0, 2.0, 3.0)}


def memory_file() -> None:
    with MemoryFileSystem() as files:
        with files.write_file("x", None) as stream:
            stream.write(b"content")
        with files.read_file("x", None) as stream:
            stream.read()
        files.get_file_content("x")


def decompose() -> None:
    outputs: Tuple[list, list, list] = ([], [None], [])
    Matrix4.translate(1.0, 2.0, 3.0).decompose(*outputs)


VALUES = [
    None,
    "text\u00e9",
    b"bytes",
    True,
    7,
    2**40,
    2**63,
    1.5,
    Decimal("1.5"),
    Decimal("1.5").as_tuple(),
    datetime.datetime(2020, 1, 2, 3, 4, 5),
    datetime.datetime(2020, 1, 2, tzinfo=datetime.timezone(datetime.timedelta(hours=1))),
    datetime.date(2020, 1, 2),
    datetime.time(1, 2),
    datetime.timedelta(1),
    uuid.UUID(int=5),
    [1, "a"],
    (1, "a"),
]


def properties(node: Any) -> None:
    for value in VALUES:
        node.set_property("p", value)
        node.get_property("p")
    node.set_property("p", node.entity)
    node.get_property("p")
    node.set_property("p", Axis.Y_AXIS._as_uni_enum())
    node.get_property("p")
    node.remove_property("p")


def edit_list(mesh: Any) -> None:
    points = mesh.control_points
    point = Vector4(1.0, 2.0, 3.0, 1.0)
    points.append(point)
    points.extend([point, point])
    points.insert(0, point)
    points[1:3] = [point, point]
    points[0] = point
    points.pop()
    del points[4:]
    point in points  # noqa: B015
    list(points)
    points[1:3]


# Name -> the call over what `fixtures` makes, and the share of the rounds that it is repeated for.
OPERATIONS: Dict[str, Tuple[Callable[[Dict[str, Any]], Any], float]] = {
    "a double": (lambda f: setattr(f["box"], "length", f["box"].length), 1),
    "a string": (lambda f: setattr(f["node"], "name", f["node"].name), 1),
    "a struct": (lambda f: setattr(f["node"].transform, "translation", f["node"].transform.translation), 1),
    "an enum": (lambda f: setattr(f["scene"].asset_info, "up_vector", Axis.Z_AXIS), 1),
    "a nullable": (lambda f: (setattr(f["scene"].asset_info, "creation_time", None), f["scene"].asset_info.up_vector), 1),
    "a version": (lambda f: FileFormat.GLTF2.version, 1),
    "a wrapper": (lambda f: f["node"].entity, 1),
    "the actual wrapper": (lambda f: velbor.actual(f["node"].entity), 1),
    "new objects": (lambda f: (Node("a", Box()), Camera("c"), Light(), Vector3(1.0, 2.0, 3.0), Mesh()), 0.5),
    "subclass, equality, hash": (lambda f: (f["node"] == f["node"].child_nodes[0], hash(f["node"]), str(f["node"])), 1),
    "methods of structs": (lambda f: (f["vector"].cross(f["vector"]).normalize(), f["vector"].dot(f["vector"])), 1),
    "casts": (lambda f: (Box._cast_as(f["node"].entity), Mesh._cast_as(f["node"].entity), Box._cast_as(None)), 1),
    "types": (lambda f: (f["node"].get_type().full_name, Node._type_of() == f["node"].get_type()), 1),
    "objects": (lambda f: Node._reinterpret_obj(pyreflection.Object._cast_as(f["node"]).value), 1),
    "enums": (lambda f: (Axis.X_AXIS.get_type(), PropertyFlags.HIDDEN._as_uni_enum(), Axis._type_of()), 1),
    "a tree": (lambda f: f["node"].child_nodes.remove(f["node"].create_child_node("x", f["box"])), 1),
    "a list": (lambda f: edit_list(f["mesh"]), 0.5),
    "iteration": (lambda f: [list(polygon) for polygon in f["mesh"].polygons], 1),
    "iteration left early": (lambda f: next(iter(f["mesh"].control_points)), 1),
    "an iterable argument": (lambda f: VertexElementUV().add_data([Vector2(0.0, 1.0)]), 1),
    "an array argument": (lambda f: Matrix4([1.0] * 16).to_array(), 1),
    "outputs by list": (lambda f: decompose(), 1),
    "properties of any kind": (lambda f: properties(f["node"]), 0.2),
    "found objects": (lambda f: (f["node"].select_objects("//*"), f["node"].select_single_object("//x")), 0.5),
    **{
        f"reading {name}": (lambda f, content=saved(file_format): f["scene"].open(io.BytesIO(content)), 0.1)
        for name, file_format in FORMATS.items()
    },
    **{
        f"writing {name}": (lambda f, file_format=file_format: saved(file_format), 0.1)
        for name, file_format in FORMATS.items()
    },
    **{
        f"reading half of {name}": (
            lambda f, half=saved(file_format)[:-200]: ignore(RuntimeError, lambda: f["scene"].open(io.BytesIO(half)))(),
            0.1,
        )
        for name, file_format in FORMATS.items()
        if name not in ("WAVEFRONT_OBJ",)  # any first lines of it are a whole file
    },
    "files in memory": (lambda f: memory_file(), 0.5),
    "bytes as a stream": (lambda f: BytesAsStream(b"content"), 1),
    # What fails.
    "a refused double": (lambda f: ignore(TypeError, lambda: setattr(f["box"], "length", 1))(), 1),
    "a refused struct": (lambda f: ignore(TypeError, lambda: setattr(f["node"].transform, "scale", None))(), 1),
    "refused by all overloads": (lambda f: ignore(TypeError, lambda: Vector3(1, 2, 3))(), 1),
    "a managed exception": (lambda f: ignore(RuntimeError, lambda: f["node"].add_child_node(f["node"]))(), 1),
    "a constructor that throws": (lambda f: ignore(RuntimeError, lambda: Scene("/no/such/file.glb"))(), 0.5),
    "a refused item": (lambda f: ignore(TypeError, lambda: f["mesh"].control_points.extend([f["vector"]]))(), 1),
    "an index too far": (lambda f: ignore(IndexError, lambda: f["mesh"].control_points[99])(), 1),
    "a slice of another length": (
        lambda f: ignore(ValueError, lambda: f["mesh"].control_points.__setitem__(slice(0, 2), []))(),
        1,
    ),
    "a refused variant": (lambda f: ignore(TypeError, lambda: f["node"].set_property("p", {}))(), 1),
    "a number too large": (lambda f: ignore(RuntimeError, lambda: f["node"].set_property("p", 2**70))(), 1),
    "a stream that raises": (lambda f: ignore(RuntimeError, lambda: f["scene"].open(Unreadable()))(), 0.5),
    "a content that is refused": (lambda f: ignore(RuntimeError, lambda: f["scene"].open(io.BytesIO(b"x")))(), 0.5),
    "a refused cast": (lambda f: ignore(TypeError, lambda: Node._reinterpret_obj(3))(), 1),
}


def resident() -> int:
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * 4096


def settle() -> None:
    for _ in range(2):
        gc.collect()
        pygc.collect()


@pytest.mark.parametrize("name", list(OPERATIONS))
def test_nothing_is_left(name: str) -> None:
    call, share = OPERATIONS[name]
    things = fixtures()
    rounds = int(ROUNDS * share)
    # Caches fill in the first rounds: bound entry points, known types, interned names, the heap's own budget.
    for _ in range(rounds // 2):
        call(things)
    settle()
    handles, objects, memory = pygc.living_handles(), len(gc.get_objects()), resident()
    singles = [None, True, Axis.Y_AXIS, Vector3, Node, TypeError, *VALUES[1:]]
    counts = [sys.getrefcount(single) for single in singles]

    for _ in range(rounds):
        call(things)

    settle()
    assert pygc.living_handles() == handles
    # Python's own modules, imported late, bring some.
    assert abs(len(gc.get_objects()) - objects) < max(rounds // 10, 50)
    for single, before, after in zip(singles, counts, [sys.getrefcount(single) for single in singles]):
        assert abs(after - before) < max(rounds // 10, 50), repr(single)
    assert resident() - memory < RESIDENT
