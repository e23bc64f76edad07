"""File systems, vertex data, point clouds and key frames as Python sees them."""

from __future__ import annotations

import io
import struct
import zipfile
from pathlib import Path
from typing import Any

import pytest
from velbor.voxlar import FileFormat, Scene, entities
from velbor.voxlar.animation import Interpolation, KeyframeSequence
from velbor.voxlar.entities import (
    Box,
    MappingMode,
    Mesh,
    PointCloud,
    ReferenceMode,
    TriMesh,
    VertexElement,
    VertexElementType,
    VertexElementUV,
)
from velbor.voxlar.utilities import (
    DummyFileSystem,
    LocalFileSystem,
    MemoryFileSystem,
    Vector2,
    Vector3,
    Vector4,
    VertexDeclaration,
    VertexFieldDataType,
    VertexFieldSemantic,
    ZipArchiveFileSystem,
)

OPTIONS = FileFormat.GLTF2.create_save_options()

# --- file systems --------------------------------------------------------------------------------------


def test_memory() -> None:
    files = MemoryFileSystem()
    assert list(files.file_names) == []
    with files.write_file("folder/a", OPTIONS) as stream:
        stream.write(b"content")
    assert list(files.file_names) == ["folder/a"]
    assert bytes(files.get_file_content("folder/a")) == b"content"
    assert files.read_file("folder/a", OPTIONS).read() == b"content"
    with pytest.raises(RuntimeError, match="FileNotFoundException"):
        files.read_file("b", OPTIONS)


def test_local(tmp_path: Path) -> None:
    files = LocalFileSystem(str(tmp_path))
    with files.write_file("a", OPTIONS) as stream:
        stream.write(b"content")
    assert (tmp_path / "a").read_bytes() == b"content"
    with files.read_file("a", OPTIONS) as stream:
        assert stream.readlines() == [b"content"]
    with pytest.raises(RuntimeError):
        files.read_file("b", OPTIONS)


def test_zip_over_a_python_file() -> None:
    held = io.BytesIO()
    with ZipArchiveFileSystem(held) as files:
        with files.write_file("folder/a", OPTIONS) as stream:
            stream.write(b"content")
    assert not held.closed
    with zipfile.ZipFile(held) as archive:
        assert archive.namelist() == ["folder/a"] and archive.read("folder/a") == b"content"
    assert ZipArchiveFileSystem(held, "folder").read_file("a", OPTIONS).read() == b"content"
    with pytest.raises(RuntimeError, match="InvalidDataException"):
        ZipArchiveFileSystem(io.BytesIO(b"no archive")).read_file("a", OPTIONS)


def test_zip_by_name(tmp_path: Path) -> None:
    name = str(tmp_path / "a.zip")
    with ZipArchiveFileSystem(name) as files:
        with files.write_file("a", OPTIONS) as stream:
            stream.write(b"x" * 100_000)
    with zipfile.ZipFile(name) as archive:
        assert archive.read("a") == b"x" * 100_000


def test_dummy_takes_all_and_keeps_nothing() -> None:
    files = DummyFileSystem()
    with files.write_file("a", OPTIONS) as stream:
        assert stream.write(b"content") == 7
    with pytest.raises(RuntimeError):
        files.read_file("a", OPTIONS)


def test_a_format_writes_its_companions_to_the_file_system_told(tmp_path: Path) -> None:
    scene = Scene()
    scene.root_node.create_child_node("box", Box().to_mesh())
    saving, files = FileFormat.GLTF2.create_save_options(), MemoryFileSystem()
    saving.file_system = files
    assert saving.file_system == files
    saving.file_name = "scene.gltf"
    main = io.BytesIO()
    scene.save(main, saving)
    companions = list(files.file_names)
    assert companions == ["scene.bin"]
    path = tmp_path / "scene.gltf"
    path.write_bytes(main.getvalue())
    loading = FileFormat.GLTF2.create_load_options()
    loading.file_system = files
    read = Scene()
    read.open(str(path), loading)
    assert Mesh._cast_as(read.root_node.child_nodes[0].entities[0]).value.polygon_count == 12
    loading.file_system = MemoryFileSystem()
    with pytest.raises(RuntimeError, match="scene.bin"):
        read.open(str(path), loading)


# --- vertices ------------------------------------------------------------------------------------------


def declaration() -> tuple[VertexDeclaration, list[Any]]:
    made = VertexDeclaration()
    kinds, semantics = VertexFieldDataType, VertexFieldSemantic
    fields = [
        made.add_field(kinds.F_VECTOR3, semantics.POSITION, 0, "place"),
        made.add_field(kinds.VECTOR2, semantics.UV, 1, "uv"),
        made.add_field(kinds.FLOAT, semantics.WEIGHT, 0, "w"),
    ]
    return made, fields


def test_a_declaration_is_a_sequence_of_fields() -> None:
    made, fields = declaration()
    assert made.count == 3 and made.size == 12 + 16 + 4
    assert [(f.alias, f.index, f.offset, f.size) for f in made] == [
        ("place", 0, 0, 12), ("uv", 1, 12, 16), ("w", 0, 28, 4),
    ]  # fmt: skip
    assert made[1] == fields[1] and made[1].semantic == VertexFieldSemantic.UV
    assert made[2].data_type == VertexFieldDataType.FLOAT
    other, _ = declaration()
    assert made.compare_to(other) == 0 and fields[0].compare_to(fields[1]) != 0
    TriMesh("t", made)
    assert made.sealed
    with pytest.raises(RuntimeError):
        made.add_field(VertexFieldDataType.FLOAT, VertexFieldSemantic.WEIGHT, 1, "")
    other.clear()
    assert other.count == 0


def test_a_triangle_mesh_of_a_box() -> None:
    mesh = Box().to_mesh()
    made = VertexDeclaration.from_geometry(mesh, True)
    triangles = TriMesh.from_mesh(made, mesh)
    assert triangles.indices_count == 36 and triangles.unmerged_vertices_count == 36
    assert triangles.vertices_count <= 36
    sink, indices = io.BytesIO(), io.BytesIO()
    triangles.write_vertices_to(sink)
    assert sink.getvalue() == bytes(triangles.vertices_to_array())
    assert len(sink.getvalue()) == triangles.vertices_count * triangles.vertex_declaration.size
    triangles.write_16b_indices_to(indices)
    assert len(indices.getvalue()) == 72
    triangles.write_32b_indices_to(indices)
    assert len(indices.getvalue()) == 72 + 144
    result: list[Any] = []
    triangles.indices_to_array(result)
    assert max(result[0]) < triangles.vertices_count and len(result[0]) == 36
    position = next(f for f in triangles.vertex_declaration if f.semantic == VertexFieldSemantic.POSITION)
    read = [triangles.read_vector3(i, position) for i in range(triangles.vertices_count)]
    assert [vertex.read_vector3(position) for vertex in triangles] == read
    corners = {(p.x, p.y, p.z) for p in mesh.control_points}
    assert {(p.x, p.y, p.z) for p in read} == corners
    copy = TriMesh.copy_from(triangles, made)
    assert copy.vertices_count == triangles.vertices_count
    with pytest.raises(RuntimeError):
        triangles.read_vector3(10**6, position)


def test_raw_data_go_in_and_out() -> None:
    made, (place, uv, weight) = declaration()
    data = b"".join(struct.pack("<3f2df", i, i + 1, i + 2, i / 2, i / 4, i * 8) for i in range(4))
    mesh = TriMesh.from_raw_data(made, data, [0, 1, 2, 1, 2, 3], True)
    assert (mesh.vertices_count, mesh.indices_count) == (4, 6)
    point, coordinate = mesh.read_f_vector3(2, place), mesh.read_vector2(3, uv)
    assert (point.x, point.y, point.z) == (2.0, 3.0, 4.0)
    assert (coordinate.x, coordinate.y) == (1.5, 0.75) and mesh.read_float(3, weight) == 24.0
    vertices = list(mesh)
    assert vertices[0].compare_to(vertices[0]) == 0 and vertices[0].compare_to(vertices[1]) != 0
    for indices in ([0, 1], [0, 1, 4], [0, 1, -1]):
        with pytest.raises(RuntimeError, match="ArgumentException"):
            TriMesh.from_raw_data(made, data, indices, False)


# --- vertex elements -----------------------------------------------------------------------------------

POINTS = [Vector4(1.0, 2.0, 3.0, 4.0), Vector4()]


def element_classes() -> dict[str, Any]:
    found = {}
    for name in dir(entities):
        kind = getattr(entities, name)
        if name.startswith("VertexElement") and isinstance(kind, type):
            try:
                kind()
            except TypeError:
                continue
            if issubclass(kind, VertexElement):
                found[name] = kind
    return found


ELEMENTS = element_classes()


@pytest.mark.parametrize("name", ELEMENTS)
def test_every_vertex_element_holds_what_it_is_given(name: str) -> None:
    element = ELEMENTS[name]()
    element.name = "name"
    element.mapping_mode, element.reference_mode = MappingMode.POLYGON_VERTEX, ReferenceMode.INDEX_TO_DIRECT
    element.set_indices([1, 0, 1])
    element.indices.append(0)
    assert list(element.indices) == [1, 0, 1, 0] and element.name == "name"
    assert (element.mapping_mode, element.reference_mode) == (
        MappingMode.POLYGON_VERTEX, ReferenceMode.INDEX_TO_DIRECT,
    )  # fmt: skip
    for given in (POINTS, [1, 2], [1.0, 2.0], [True, False]):
        set_data = getattr(element, "set_data", None)
        if set_data is None:
            break
        try:
            set_data(given)
        except (TypeError, RuntimeError):
            continue
        if hasattr(element, "data"):
            assert list(element.data) == given
    mesh = Mesh()
    mesh.add_element(element)
    assert len(mesh.vertex_elements) == 1 and mesh.vertex_elements[0] == element
    element.clear()
    if name not in ("VertexElementUserData",) and hasattr(element, "data"):
        assert len(element.data) == 0


def test_there_are_all_kinds_of_elements() -> None:
    assert len(ELEMENTS) >= 15


def test_coordinates_come_from_any_iterable() -> None:
    element = VertexElementUV()
    element.add_data([Vector2(1.0, 2.0)])
    element.add_data(Vector2(float(i), 0.0) for i in range(2))
    assert [(v.x, v.y) for v in element.data] == [(1.0, 2.0), (0.0, 0.0), (1.0, 0.0)]
    assert element.vertex_element_type == VertexElementType.UV
    # Any iterable is one of the first overload's, so the one for three coordinates is not reached.
    with pytest.raises(RuntimeError, match="can't build Vector2 value from"):
        element.add_data([Vector3()])


# --- point clouds and key frames -----------------------------------------------------------------------


def test_a_point_cloud_takes_the_points_of_a_mesh() -> None:
    mesh = Box().to_mesh()
    cloud = PointCloud.from_geometry(mesh)
    assert [*cloud.control_points] == [*mesh.control_points]
    own = PointCloud("cloud")
    own.control_points.extend(POINTS)
    assert own.name == "cloud" and len(own.control_points) == 2
    assert len(PointCloud.from_geometry(mesh, 10).control_points) > len(mesh.control_points)


def test_key_frames_are_kept_in_order() -> None:
    keys = KeyframeSequence("keys")
    for time in (2.0, 0.0, 1.0):
        keys.add(time, time * 10)
    keys.add(1.5, 7.0, Interpolation.LINEAR)
    assert [(key.time, key.value) for key in keys] == [(0.0, 0.0), (1.0, 10.0), (1.5, 7.0), (2.0, 20.0)]
    assert len(keys.key_frames) == 4 and keys.key_frames[2].interpolation == Interpolation.LINEAR
    keys.key_frames[0].value = 5.0
    assert next(iter(keys)).value == 5.0
    keys.reset()
    assert list(keys) == []
