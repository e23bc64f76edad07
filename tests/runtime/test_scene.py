"""The scene library as a Python user meets it, over the real runtime."""

from __future__ import annotations

import datetime
import io
import uuid
import zipfile
from decimal import Decimal
from pathlib import Path
from typing import Any

import pytest
import velbor
from velbor import pygc, pyreflection
from velbor.voxlar import Axis, BonePose, CustomObject, FileFormat, ImageRenderOptions, Node, PropertyFlags, Scene
from velbor.voxlar.entities import (
    Box,
    Camera,
    Light,
    LightType,
    MappingMode,
    Mesh,
    ReferenceMode,
    Sphere,
    TextureMapping,
    VertexElementMaterial,
    VertexElementNormal,
    VertexElementType,
    VertexElementUV,
)
from velbor.voxlar.formats import GltfSaveOptions
from velbor.voxlar.shading import Material, PbrMaterial, PhongMaterial, Texture
from velbor.voxlar.utilities import (
    BoundingBox,
    FVector3,
    LocalFileSystem,
    Matrix4,
    MemoryFileSystem,
    Quaternion,
    Vector2,
    Vector3,
    Vector4,
    ZipArchiveFileSystem,
)


pytestmark = pytest.mark.usefixtures("no_handle_is_left")


def triangle() -> Mesh:
    mesh = Mesh("triangle")
    mesh.control_points.extend([Vector4(0.0, 0.0, 0.0, 1.0), Vector4(1.0, 0.0, 0.0, 1.0), Vector4(0.0, 1.0, 0.0, 1.0)])
    mesh.create_polygon(0, 1, 2)
    return mesh


def numbers(vector: Any) -> tuple[float, ...]:
    return tuple(getattr(vector, name) for name in "xyzw" if hasattr(vector, name))


# --- the tree -----------------------------------------------------------------------------------------------


def test_editing_the_tree() -> None:
    scene = Scene()
    root = scene.root_node
    a, b = root.create_child_node("a"), root.create_child_node("b", Box())
    unnamed = root.create_child_node()
    assert [node.name for node in root.child_nodes] == ["a", "b", ""]
    assert a.parent_node == root
    assert root.parent_node is None
    assert a.scene == scene
    assert root.get_child("b") == b == root.get_child(1)
    assert root.get_child("nobody") is None

    b.parent_node = a
    assert [node.name for node in root.child_nodes] == ["a", ""]
    assert [node.name for node in a.child_nodes] == ["b"]
    root.child_nodes.insert(0, b)
    assert (b.parent_node, len(a.child_nodes)) == (root, 0)
    assert [node.name for node in root.child_nodes] == ["b", "a", ""]
    root.child_nodes.remove(unnamed)
    assert (unnamed.parent_node, unnamed.scene) == (None, None)
    b.parent_node = None
    assert [node.name for node in root.child_nodes] == ["a"]
    root.child_nodes.clear()
    assert (len(root.child_nodes), a.parent_node) == (0, None)


def test_entities_of_a_node() -> None:
    node, box, light = Node("n"), Box("box", 1.0, 2.0, 3.0, 1, 1, 1), Light("lamp", LightType.SPOT)
    assert node.entity is None
    node.entity = box
    node.add_entity(light)
    node.add_entity(light)
    assert [entity.name for entity in node.entities] == ["box", "lamp"]
    assert node.entity == box
    assert [parent.name for parent in light.parent_nodes] == ["n"]
    other = Node("other", light)
    assert {parent.name for parent in light.parent_nodes} == {"n", "other"}
    other.entity = None
    assert (other.entity, len(other.entities)) == (None, 0)
    del node.entities[0]
    assert node.entity == light


def test_a_scene_of_scenes_and_merging() -> None:
    scene = Scene()
    inner = Scene(scene, "inner")
    assert [each.name for each in scene.sub_scenes] == ["inner"]
    one, two = Node("one"), Node("two")
    one.create_child_node("x")
    two.create_child_node("y")
    one.merge(two)
    assert [node.name for node in one.child_nodes] == ["x", "y"]
    assert len(two.child_nodes) == 0
    inner.root_node.add_child_node(one)
    scene.clear()
    assert len(scene.sub_scenes) == 0


def test_paths_select_objects() -> None:
    scene = Scene()
    scene.root_node.create_child_node("a").create_child_node("deep", Box())
    found = scene.root_node.select_single_object("//deep")
    assert isinstance(found, Node)
    assert found.name == "deep"
    assert len(scene.root_node.select_objects("//*")) >= 2
    assert scene.root_node.select_single_object("//nothing") is None


def test_a_deep_tree() -> None:
    scene = Scene()
    node = scene.root_node
    for _ in range(2000):
        node = node.create_child_node()
    node.entity = Box()
    assert numbers(scene.root_node.get_bounding_box().size) == numbers(Box().get_bounding_box().size)


# --- transforms ---------------------------------------------------------------------------------------------


def test_transforms() -> None:
    scene = Scene()
    outer = scene.root_node.create_child_node("outer")
    inner = outer.create_child_node("inner", Box(2.0, 2.0, 2.0))
    outer.transform.translation = Vector3(10.0, 0.0, 0.0)
    outer.transform.scale = Vector3(2.0, 2.0, 2.0)
    inner.transform.set_translation(1.0, 2.0, 3.0).set_euler_angles(0.0, 0.0, 90.0)
    assert numbers(inner.transform.translation) == (1.0, 2.0, 3.0)
    assert numbers(inner.global_transform.translation) == (12.0, 4.0, 6.0)
    assert numbers(inner.global_transform.scale) == pytest.approx((2.0, 2.0, 2.0))
    assert numbers(inner.transform.euler_angles) == pytest.approx((0.0, 0.0, 90.0))
    box = inner.get_bounding_box()
    assert numbers(box.minimum) == pytest.approx((10.0, 2.0, 4.0))
    assert numbers(box.maximum) == pytest.approx((14.0, 6.0, 8.0))

    # A struct is a copy: changing it changes nothing until it is set.
    translation = inner.transform.translation
    translation.x = 99.0
    assert inner.transform.translation.x == 1.0
    inner.transform.translation = translation
    assert inner.transform.translation.x == 99.0


def test_matrices_and_quaternions() -> None:
    matrix = Matrix4.translate(1.0, 2.0, 3.0)
    node = Node()
    node.transform.transform_matrix = matrix
    assert numbers(node.transform.translation) == (1.0, 2.0, 3.0)
    assert len(matrix.to_array()) == 16
    translation: list[Any] = []
    scaling: list[Any] = [None]
    rotation: list[Any] = [Quaternion(), "stays"]
    assert matrix.decompose(translation, scaling, rotation) is True
    assert numbers(translation[0]) == (1.0, 2.0, 3.0)
    assert numbers(scaling[0]) == (1.0, 1.0, 1.0)
    assert rotation[1:] == ["stays"]
    assert list(matrix.concatenate(matrix.inverse()).to_array()) == list(Matrix4.scale(1.0).to_array())
    angle: list[Any] = []
    axis: list[Any] = []
    assert Quaternion.from_angle_axis(0.5, Vector3(0.0, 0.0, 1.0)).to_angle_axis(angle, axis) is None
    assert angle == [pytest.approx(0.5)]
    assert numbers(axis[0]) == pytest.approx((0.0, 0.0, 1.0))


# --- meshes -------------------------------------------------------------------------------------------------


def test_building_a_mesh() -> None:
    mesh = triangle()
    points = mesh.control_points
    assert len(points) == 3
    points[1:] = [Vector4(2.0, 0.0, 0.0, 1.0), Vector4(0.0, 2.0, 0.0, 1.0)]
    assert [numbers(point)[:2] for point in points] == [(0.0, 0.0), (2.0, 0.0), (0.0, 2.0)]
    with pytest.raises(ValueError, match=".*"):
        points[:] = [Vector4(0.0, 0.0, 0.0, 1.0)]
    assert len(points) == 3
    points.extend(Vector4(float(i), 1.0, 0.0, 1.0) for i in range(5, 8))
    assert [point.x for point in points[3:]] == [5.0, 6.0, 7.0]
    assert [point.x for point in points[::-2]] == [7.0, 5.0, 2.0]
    mesh.create_polygon([0, 2, 3, 4, 5])
    mesh.create_polygon(0, 1, 2, 3)
    mesh.create_polygon((9, 9, 1, 2, 4, 9), 2, 3)
    assert mesh.polygon_count == 4
    assert [list(polygon) for polygon in mesh.polygons] == [[0, 1, 2], [0, 2, 3, 4, 5], [0, 1, 2, 3], [1, 2, 4]]
    assert [list(polygon) for polygon in mesh] == [list(polygon) for polygon in mesh.polygons]
    assert mesh.get_polygon_size(1) == 5
    assert -1 not in mesh.polygons[0]


def test_vertex_elements() -> None:
    mesh = triangle()
    normals = mesh.create_element(VertexElementType.NORMAL, MappingMode.CONTROL_POINT, ReferenceMode.DIRECT)
    actual = velbor.actual(normals)
    assert isinstance(actual, VertexElementNormal)
    actual.data.extend([Vector4(0.0, 0.0, 1.0, 0.0)] * 3)
    assert [numbers(normal) for normal in actual.data] == [(0.0, 0.0, 1.0, 0.0)] * 3
    uvs = mesh.create_element_uv(TextureMapping.DIFFUSE, MappingMode.POLYGON_VERTEX, ReferenceMode.INDEX_TO_DIRECT)
    assert isinstance(uvs, VertexElementUV)
    uvs.add_data([Vector2(0.0, 0.0), Vector2(1.0, 0.0), Vector2(0.0, 1.0)])
    uvs.set_indices([2, 1, 0])
    assert list(uvs.indices) == [2, 1, 0]
    assert mesh.get_vertex_element_of_uv(TextureMapping.DIFFUSE) == uvs
    material = VertexElementMaterial()
    material.mapping_mode = MappingMode.ALL_SAME
    material.set_indices([0])
    mesh.add_element(material)
    assert {element.vertex_element_type for element in mesh.vertex_elements} == {
        VertexElementType.NORMAL,
        VertexElementType.UV,
        VertexElementType.MATERIAL,
    }
    assert mesh.get_element(VertexElementType.TANGENT) is None


def test_primitives_become_meshes() -> None:
    mesh = Box(1.0, 2.0, 3.0).to_mesh()
    assert mesh.polygon_count == 6
    assert sorted(numbers(mesh.get_bounding_box().size)) == [1.0, 2.0, 3.0]
    assert Sphere().to_mesh().polygon_count > 10


# --- materials ----------------------------------------------------------------------------------------------


def test_materials() -> None:
    node = Node("n", Box())
    phong = PhongMaterial("red")
    phong.diffuse_color = Vector3(1.0, 0.0, 0.0)
    node.material = phong
    assert node.material == phong
    assert isinstance(node.material, Material)
    assert isinstance(velbor.actual(node.material), PhongMaterial)
    texture = Texture("t")
    texture.content = b"\x89PNG"
    texture.file_name = "t.png"
    phong.set_texture("DiffuseMap", texture)
    assert velbor.actual(phong.get_texture("DiffuseMap")).content == bytearray(b"\x89PNG")
    assert [slot.slot_name for slot in phong if slot.texture is not None] == ["DiffuseMap"]
    node.materials.append(PbrMaterial(Vector3(0.0, 1.0, 0.0)))
    assert [type(velbor.actual(each)) for each in node.materials] == [PhongMaterial, PbrMaterial]
    assert isinstance(PbrMaterial.from_material(phong), PbrMaterial)


# --- properties of any kind ---------------------------------------------------------------------------------

EQUAL = [
    None,
    "text",
    "",
    "\u00e9\u4e2d\U0001f600 a\0b",
    b"bytes",
    b"",
    bytearray(b"array"),
    memoryview(b"view"),
    True,
    False,
    0,
    -1,
    2**31 - 1,
    -(2**31),
    2**31,
    -(2**31) - 1,
    2**63 - 1,
    -(2**63),
    2**63,
    2**64 - 1,
    0.0,
    1.5,
    float("inf"),
    5e-324,
    Decimal("1.50"),
    Decimal("-79228162514264337593543950335"),
    Decimal("0.0000000000000000000000000001"),
    datetime.datetime(2020, 1, 2, 3, 4, 5, 678901),
    datetime.datetime(2020, 1, 2, tzinfo=datetime.timezone.utc),
    datetime.datetime(2020, 7, 2, 3, tzinfo=datetime.timezone(datetime.timedelta(hours=-2, minutes=30))),
    datetime.datetime.min,
    datetime.datetime.max,
    datetime.timedelta(days=-1, microseconds=5),
    datetime.timedelta(0),
    uuid.UUID("00112233-4455-6677-8899-aabbccddeeff"),
    [],
    [1, "a", None, [2.0, b"x"]],
    (),
    (1, (2, "b")),
]


@pytest.mark.parametrize("value", EQUAL, ids=lambda value: f"{type(value).__name__}-{str(value)[:20]!a}")
def test_a_property_gives_back_an_equal_value(value: Any) -> None:
    holder = CustomObject()
    holder.set_property("p", value)
    for found in (
        holder.get_property("p"),
        holder.find_property("p").value,
        holder.properties.get("p"),
        next(prop for prop in holder.properties if prop.name == "p").value,
    ):
        assert found == value
        assert type(found) is (bytearray if isinstance(value, (bytes, memoryview)) else type(value))
    holder.find_property("p").value = value
    assert holder.get_property("p") == value
    assert holder.remove_property("p") is True
    assert holder.find_property("p") is None


@pytest.mark.parametrize(
    ("value", "found"),
    [
        (Decimal("0.1").as_tuple(), Decimal("0.1")),
        (datetime.date(2020, 2, 29), datetime.datetime(2020, 2, 29)),
        (datetime.time(1, 2, 3, 4), datetime.datetime(1, 1, 1, 1, 2, 3, 4)),
    ],
)
def test_kinds_that_come_back_as_the_wider_kind(value: Any, found: Any) -> None:
    """The managed side has one type for each of these pairs."""
    holder = CustomObject()
    holder.set_property("p", value)
    assert holder.get_property("p") == found
    assert type(holder.get_property("p")) is type(found)


def test_what_is_no_number_comes_back_as_such() -> None:
    holder = CustomObject()
    holder.set_property("p", float("nan"))
    assert str(holder.get_property("p")) == "nan"
    holder.set_property("p", -0.0)
    assert str(holder.get_property("p")) == "-0.0"


@pytest.mark.parametrize(
    "value",
    [
        Vector3(1.0, 2.0, 3.0),
        FVector3(1.0, 2.0, 3.0),
        Matrix4.translate(1.0, 2.0, 3.0),
        Quaternion(1.0, 0.0, 0.0, 0.0),
        BoundingBox(0.0, 0.0, 0.0, 1.0, 1.0, 1.0),
    ],
    ids=lambda value: type(value).__name__,
)
def test_structs_as_values(value: Any) -> None:
    holder = CustomObject()
    holder.set_property("p", value)
    assert type(holder.get_property("p")) is type(value)
    assert str(holder.get_property("p")) == str(value)


def test_wrappers_as_values() -> None:
    holder, other = CustomObject("holder"), Node("other")
    for value in (other, holder, Mesh(), BonePose(), FileFormat.GLTF2):
        holder.set_property("p", value)
        found = holder.get_property("p")
        assert found == value
        assert type(found) is type(value)
    # What has no wrapper in this module comes back as its text.
    holder.set_property("p", pyreflection.Type._type_of())
    assert holder.get_property("p") == "System.Type"


def test_enums_as_values() -> None:
    """A member of a Python enum says nothing of its managed type; its managed form does, and comes back as a number."""
    holder = CustomObject()
    for member in (Axis.Y_AXIS, PropertyFlags.HIDDEN | PropertyFlags.ANIMATED):
        with pytest.raises(TypeError, match="^unknown variant type$"):
            holder.set_property("p", member)
        holder.set_property("p", member._as_uni_enum())
        assert holder.get_property("p") == int(member)
        assert holder.find_property("p").value_type.name == type(member).__name__


@pytest.mark.parametrize(
    ("value", "message"),
    [
        (2**64, "TypeError: can't build integer value from 'int'"),
        (Decimal("NaN"), "OverflowError: value is not a number"),
        (Decimal(2) ** 96, "OverflowError: value too large for .Net decimal"),
        (datetime.timedelta.max, "OverflowError: value too large or too small for .Net TimeSpan"),
    ],
    ids=repr,
)
def test_values_that_the_managed_kind_cannot_hold(value: Any, message: str) -> None:
    holder = CustomObject()
    with pytest.raises(RuntimeError) as caught:
        holder.set_property("p", value)
    assert str(caught.value).strip() == f"Proxy error(PythonException): {message}"
    assert holder.find_property("p") is None


@pytest.mark.parametrize("value", [{}, set(), object(), 1j, range(3), int, type("Sub", (list,), {})()], ids=repr)
def test_values_without_a_managed_form(value: Any) -> None:
    with pytest.raises(TypeError, match="^unknown variant type$"):
        CustomObject().set_property("p", value)


def test_own_properties_by_name() -> None:
    box = Box(1.0, 2.0, 3.0)
    count = box.properties.count
    assert box.get_property("Length") == box.length
    box.set_property("Length", 7.5)
    assert (box.length, box.properties.count) == (7.5, count)
    assert box.properties[0].name == next(iter(box.properties)).name
    with pytest.raises(RuntimeError):
        box.set_property("Length", "long")
    assert box.length == 7.5


# --- the wrapper of the run-time type -----------------------------------------------------------------------


def test_actual() -> None:
    assert velbor.actual(None) is None
    node = Node("n", Box())
    declared = node.entity
    box = velbor.actual(declared)
    assert (type(declared).__name__, type(box)) == ("Entity", Box)
    assert box == declared
    assert box.length == Box().length
    assert velbor.actual(box) is box
    assert velbor.actual(node) is node
    vector = Vector3(1.0, 2.0, 3.0)
    assert velbor.actual(vector) is vector
    assert type(velbor.actual(FileFormat.PLY)).__name__ == "PlyFormat"
    for value in (3, "text", object(), Axis.X_AXIS):
        with pytest.raises(TypeError, match="is no wrapper of a managed object"):
            velbor.actual(value)


def test_casts() -> None:
    node = Node("n", Camera("eye"))
    succeeded, camera = Camera._cast_as(node.entity)
    assert succeeded
    assert camera.name == "eye"
    result = Mesh._cast_as(node.entity)
    assert not result
    assert (result.succeeded, result.value) == (False, None)
    assert not Mesh._cast_as(None)
    assert Camera._is_assignable(camera) is True
    assert Camera._is_assignable(node) is False
    assert node.entity.get_type() == Camera._type_of()
    view = pyreflection.Object._cast_as(node).value
    assert Node._reinterpret_obj(view) == node


def test_identity_equality_and_hash() -> None:
    node = Node("n")
    child = node.create_child_node("c")
    again = node.child_nodes[0]
    assert again is not child
    assert again == child
    assert hash(again) == hash(child)
    assert {child: 1}[again] == 1
    assert child != node
    assert child != 3


def test_collecting() -> None:
    pygc.collect()
    before = pygc.living_handles()
    nodes = [Node(str(i)) for i in range(100)]
    assert pygc.living_handles() - before == 100
    del nodes
    pygc.collect()
    assert pygc.living_handles() == before
    assert pygc.total_memory() > 0


def test_statics_and_defaults() -> None:
    assert FileFormat.GLTF2 == FileFormat.GLTF2
    assert FileFormat.get_format_by_extension(".glb") == FileFormat.GLTF2_BINARY
    assert FileFormat.get_format_by_extension(".unknown") is None
    assert FileFormat.GLTF2.version == (2, 0)
    assert list(FileFormat.GLTF2_BINARY.extensions) == [".glb"]
    options = ImageRenderOptions()
    options.asset_directories = ["a", "b"]
    assert list(options.asset_directories) == ["a", "b"]
    info = Scene().asset_info
    moment = datetime.datetime(2024, 5, 6, 7, 8, 9)
    info.creation_time, info.up_vector, info.ambient = moment, Axis.Z_AXIS, Vector4(0.1, 0.2, 0.3, 1.0)
    assert (info.creation_time, info.up_vector, numbers(info.ambient)) == (moment, Axis.Z_AXIS, (0.1, 0.2, 0.3, 1.0))
    info.creation_time = info.up_vector = info.ambient = None
    assert (info.creation_time, info.up_vector, info.ambient) == (None, None, None)


# --- files, streams, file systems ---------------------------------------------------------------------------

BUILT = sorted(
    name
    for name in dir(FileFormat)
    if isinstance(getattr(FileFormat, name), FileFormat)
    and getattr(FileFormat, name).can_export
    and getattr(FileFormat, name).can_import
)

# A file in these formats stands with others beside it, so a stream has different content.
WITH_SIDE_FILES = ("GLTF2", "WAVEFRONT_OBJ")


def sample() -> Scene:
    scene = Scene()
    node = scene.root_node.create_child_node("tri", triangle())
    node.transform.translation = Vector3(1.0, 2.0, 3.0)
    scene.root_node.create_child_node("box", Box(1.0, 2.0, 3.0))
    return scene


def shape(scene: Scene) -> tuple[int, list[list[float]]]:
    """Polygons and corners of all meshes, in the space of the scene: what every built format keeps."""
    count, corners = 0, []
    for node in scene.root_node.select_objects("//*"):
        succeeded, node = Node._cast_as(node)
        if not succeeded:
            continue
        box = node.get_bounding_box()
        for entity in node.entities:
            mesh = velbor.actual(entity)
            if isinstance(mesh, Mesh):
                count += sum(len(polygon) - 2 for polygon in mesh.polygons)
                corners.append([*numbers(box.minimum), *numbers(box.maximum)])
    return count, sorted(corners)


@pytest.mark.parametrize("name", BUILT)
def test_a_stream_equals_a_path(name: str, tmp_path: Path) -> None:
    file_format = getattr(FileFormat, name)
    path = tmp_path / f"scene{file_format.extension}"
    sample().save(str(path), file_format)
    stream = io.BytesIO()
    sample().save(stream, file_format)
    assert not stream.closed
    if name not in WITH_SIDE_FILES:
        assert stream.getvalue() == path.read_bytes()
    with open(tmp_path / "out", "wb") as file:
        sample().save(file, file_format)
    assert (tmp_path / "out").read_bytes() == stream.getvalue()

    expected = shape(Scene(str(path)))
    assert expected[0] == 13
    scene = Scene()
    scene.open(io.BytesIO(stream.getvalue()))
    assert shape(scene) == expected
    with open(tmp_path / "out", "rb") as file:
        scene.open(file)
    assert shape(scene) == expected


def test_the_formats_that_are_built() -> None:
    assert {"GLTF2", "GLTF2_BINARY", "WAVEFRONT_OBJ", "STL_BINARY", "STLASCII", "PLY"} <= set(BUILT)


def test_a_stream_that_a_file_system_gives(tmp_path: Path) -> None:
    sample().save(str(tmp_path / "scene.glb"))
    expected = shape(Scene(str(tmp_path / "scene.glb")))
    with LocalFileSystem(str(tmp_path)) as folder:
        scene = Scene()
        with folder.read_file("scene.glb", None) as stream:
            scene.open(stream)
        assert shape(scene) == expected
        with pytest.raises(RuntimeError, match="UnauthorizedAccessException"):
            folder.read_file("../secret", None)
        with pytest.raises(RuntimeError, match=r"There is no file 'nothing' in '.*'\."):
            folder.read_file("nothing", None)


def test_side_files_in_memory() -> None:
    options = GltfSaveOptions(FileFormat.GLTF2)
    options.embed_assets = False
    options.buffer_file = "data.bin"
    with MemoryFileSystem() as memory:
        options.file_system = memory
        main = io.BytesIO()
        sample().save(main, options)
        assert list(memory.file_names) == ["data.bin"]
        assert isinstance(memory.get_file_content("data.bin"), bytearray)
        load = FileFormat.GLTF2.create_load_options()
        load.file_system = memory
        assert load.file_system == memory
        with memory.write_file("scene.gltf", None) as stream:
            stream.write(main.getvalue())
        assert memory.get_file_content("scene.gltf") == main.getvalue()


def test_an_archive(tmp_path: Path) -> None:
    content = io.BytesIO()
    sample().save(content, FileFormat.GLTF2_BINARY)
    packed = io.BytesIO()
    with zipfile.ZipFile(packed, "w") as archive:
        archive.writestr("folder/scene.glb", content.getvalue())
    path = tmp_path / "scene.zip"
    path.write_bytes(packed.getvalue())
    for files in (
        ZipArchiveFileSystem(str(path)),
        ZipArchiveFileSystem(io.BytesIO(packed.getvalue())),
        ZipArchiveFileSystem(io.BytesIO(packed.getvalue()), "folder"),
    ):
        with files:
            for name in ("folder/scene.glb", "scene.glb"):
                try:
                    with files.read_file(name, None) as stream:
                        assert stream.read() == content.getvalue()
                        break
                except RuntimeError:
                    continue
            else:
                pytest.fail("the archive's file was not found")


def test_a_save_replaces_the_file(tmp_path: Path) -> None:
    path = tmp_path / "scene.glb"
    path.write_bytes(b"old" * 100_000)
    sample().save(str(path))
    assert path.read_bytes()[:4] == b"glTF"
    assert shape(Scene(str(path)))[0] == 13
    assert [each.name for each in tmp_path.iterdir()] == ["scene.glb"]
