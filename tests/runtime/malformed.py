"""Small malformed files of each format, and small valid ones to make mutations of."""

from __future__ import annotations

import base64
import copy
import io
import json
import struct
import zipfile
from typing import Any, Callable, Dict, List, Optional, Tuple, Union

Content = Union[str, bytes]

# A case: the name of the file, its content, and what the message says behind the file's name; None where any answer
# that is bounded in time and memory will do.
Case = Tuple[str, Content, Optional[str]]

LINE = r", line \d+: "
BYTE = r", byte \d+: "

# --- OBJ ------------------------------------------------------------------------------------------------------

POINTS = "v 0 0 0\nv 1 0 0\nv 0 1 0\n"

OBJ: List[Case] = [
    ("index_past_the_end.obj", POINTS + "f 1 2 4\n", LINE),
    ("index_zero.obj", POINTS + "f 0 1 2\n", LINE),
    ("index_far_negative.obj", POINTS + "f -1 -2 -4\n", LINE),
    ("index_overflow.obj", POINTS + "f 1 2 99999999999999999999\n", LINE),
    ("index_of_normal.obj", POINTS + "vn 0 0 1\nf 1//1 2//2 3//3\n", LINE),
    ("index_of_texture.obj", POINTS + "vt 0 0\nf 1/9 2/1 3/1\n", LINE),
    ("letters_for_numbers.obj", "v a b c\nf 1 1 1\n", LINE),
    ("too_few_coordinates.obj", "v 1 2\n" + POINTS + "f 1 2 3\n", LINE),
    ("letters_in_a_face.obj", POINTS + "f 1 x 3\n", LINE),
    ("cut_in_a_number.obj", POINTS + "f 1 2 3\nv 1.0 2.", None),
    ("face_of_two.obj", POINTS + "f 1 2\nf 1 2 3\n", None),
    ("face_of_many.obj", POINTS + "f" + " 1 2 3" * 50_000 + "\n", None),
    ("one_long_line.obj", POINTS + "f 1 2 3\ng " + "x" * 4_000_000, None),
    ("null_bytes.obj", POINTS.encode() + b"\0" * 1000 + b"\nf 1 2 3\n", None),
    ("backslash_at_the_end.obj", POINTS + "f 1 2 \\", None),
    ("material_outside.obj", "mtllib ../../../../../../etc/passwd\nusemtl root\n" + POINTS + "f 1 2 3\n", None),
    ("material_absolute.obj", "mtllib /etc/passwd\nusemtl root\n" + POINTS + "f 1 2 3\n", None),
    ("material_missing.obj", "mtllib nowhere.mtl\nusemtl nothing\n" + POINTS + "f 1 2 3\n", None),
    ("utf16.obj", (POINTS + "f 1 2 3\n").encode("utf-16"), None),
    ("infinite.obj", "v 1e999 nan -inf\n" + POINTS + "f 1 2 3\n", None),
]

# --- STL ------------------------------------------------------------------------------------------------------

FACET = "facet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\n"
TRIANGLE = struct.pack("<12fH", 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0)


def stl(count: int, triangles: bytes) -> bytes:
    return b"made by hand".ljust(80) + struct.pack("<I", count) + triangles


STL: List[Case] = [
    ("header_only.stl", stl(7, b""), BYTE),
    ("count_of_4g.stl", stl(0xFFFFFFFF, TRIANGLE * 10), BYTE),
    ("cut_in_a_facet.stl", stl(2, TRIANGLE + TRIANGLE[:30]), BYTE),
    ("header_cut.stl", b"made by hand".ljust(60), None),
    ("more_than_told.stl", stl(1, TRIANGLE * 3), None),
    ("binary_called_solid.stl", b"solid" + stl(2, TRIANGLE)[5:], None),
    ("text_cut.stl", "solid x\n" + FACET + "facet normal 0 0 1\nouter loop\nvertex 0 0", LINE),
    ("text_letters.stl", "solid x\n" + FACET.replace("1 0 0", "one 0 0") + "endsolid x\n", LINE),
    ("text_two_vertices.stl", "solid x\n" + FACET.replace("vertex 1 0 0\n", "") + "endsolid x\n", LINE),
    ("text_loop_in_loop.stl", "solid x\n" + FACET.replace("outer loop", "outer loop\nouter loop"), LINE),
    ("text_without_end.stl", "solid x\n" + FACET, None),
    ("text_long_word.stl", "solid " + "x" * 4_000_000, None),
]

# --- PLY ------------------------------------------------------------------------------------------------------


def ply(vertices: Any, faces: Any, data: Content, form: str = "ascii", count_type: str = "uchar") -> bytes:
    header = (
        f"ply\nformat {form} 1.0\nelement vertex {vertices}\nproperty float x\nproperty float y\nproperty float z\n"
        f"element face {faces}\nproperty list {count_type} int vertex_indices\nend_header\n"
    )
    return header.encode() + (data.encode() if isinstance(data, str) else data)


CORNERS = "0 0 0\n1 0 0\n0 1 0\n"
CORNERS_LE = struct.pack("<9f", 0, 0, 0, 1, 0, 0, 0, 1, 0)
BINARY = "binary_little_endian"

PLY: List[Case] = [
    ("negative_count.ply", ply(-1, 1, CORNERS + "3 0 1 2\n"), LINE),
    ("count_of_4g.ply", ply(4_000_000_000, 1, CORNERS), LINE),
    ("count_of_4g_binary.ply", ply(4_000_000_000, 1, CORNERS_LE, BINARY), f"({LINE}|{BYTE})"),
    ("count_overflow.ply", ply(10**30, 1, CORNERS), LINE),
    ("count_of_letters.ply", ply("many", 1, CORNERS), LINE),
    ("list_of_255.ply", ply(3, 1, CORNERS_LE + b"\xff" + struct.pack("<3i", 0, 1, 2), BINARY), BYTE),
    ("list_negative.ply", ply(3, 1, CORNERS_LE + struct.pack("<4i", -1, 0, 1, 2), BINARY, "int"), BYTE),
    ("list_of_2g.ply", ply(3, 1, CORNERS_LE + struct.pack("<4i", 2**31 - 1, 0, 1, 2), BINARY, "int"), BYTE),
    ("index_past_the_end.ply", ply(3, 1, CORNERS + "3 0 1 3\n"), LINE),
    ("index_negative.ply", ply(3, 1, CORNERS + "3 0 1 -2\n"), LINE),
    ("index_past_the_end_binary.ply", ply(3, 1, CORNERS_LE + struct.pack("<B3i", 3, 0, 1, 7), BINARY), BYTE),
    ("cut_in_the_vertices.ply", ply(3, 1, "0 0 0\n1 0"), LINE),
    ("cut_in_the_vertices_binary.ply", ply(3, 1, CORNERS_LE[:20], BINARY), BYTE),
    ("letters_for_numbers.ply", ply(3, 1, "0 0 0\nx y z\n0 1 0\n3 0 1 2\n"), LINE),
    ("header_without_end.ply", ply(3, 1, CORNERS).split(b"end_header")[0], LINE),
    ("format_missing.ply", ply(3, 1, CORNERS).replace(b"format ascii 1.0\n", b""), LINE),
    ("format_unknown.ply", ply(3, 1, CORNERS, "middle_endian"), LINE),
    ("type_unknown.ply", ply(3, 1, CORNERS).replace(b"float x", b"quad x"), LINE),
    ("property_without_element.ply", b"ply\nformat ascii 1.0\nproperty float x\nend_header\n", LINE),
    ("list_by_floats.ply", ply(3, 1, CORNERS, count_type="float"), None),
    ("header_of_one_line.ply", b"ply\nformat ascii 1.0\ncomment " + b"x" * 4_000_000, LINE),
    ("huge_list.ply", ply(3, 1, CORNERS + "99999999999 0 1 2\n"), LINE),
]

# --- glTF -----------------------------------------------------------------------------------------------------

BUFFER = struct.pack("<9f", 0, 0, 0, 1, 0, 0, 0, 1, 0) + struct.pack("<3H", 0, 1, 2) + b"\0\0"


def data_uri(content: bytes) -> str:
    return "data:application/octet-stream;base64," + base64.b64encode(content).decode()


DOCUMENT: Dict[str, Any] = {
    "asset": {"version": "2.0"},
    "scene": 0,
    "scenes": [{"nodes": [0]}],
    "nodes": [{"mesh": 0, "name": "n"}],
    "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "indices": 1}]}],
    "accessors": [
        {
            "bufferView": 0,
            "componentType": 5126,
            "count": 3,
            "type": "VEC3",
            "min": [0, 0, 0],
            "max": [1, 1, 0],
        },
        {"bufferView": 1, "componentType": 5123, "count": 3, "type": "SCALAR"},
    ],
    "bufferViews": [
        {"buffer": 0, "byteOffset": 0, "byteLength": 36},
        {"buffer": 0, "byteOffset": 36, "byteLength": 6},
    ],
    "buffers": [{"byteLength": len(BUFFER), "uri": data_uri(BUFFER)}],
}


def gltf(change: Callable[[Dict[str, Any]], Any] = lambda document: None) -> str:
    """The valid document with one change: a function that edits it."""
    document = copy.deepcopy(DOCUMENT)
    change(document)
    return json.dumps(document)


def put(*path: Any) -> Callable[[Dict[str, Any]], None]:
    """Sets the value that the last argument gives at the place that the others tell."""
    *steps, last, value = path

    def change(document: Dict[str, Any]) -> None:
        at: Any = document
        for step in steps:
            at = at[step]
        at[last] = value

    return change


URI = ("buffers", 0, "uri")
INDICES = data_uri(BUFFER[:36] + struct.pack("<3H", 0, 1, 9) + b"\0\0")
FILE_ONLY = r"[:,] "

GLTF: List[Case] = [
    ("cut.gltf", gltf()[:-40], FILE_ONLY),
    ("no_object.gltf", '["asset", "version", "2.0"]', None),
    ("deep.gltf", '{"asset": {"version": "2.0"}, "extras": ' + "[" * 100_000, FILE_ONLY),
    ("version_3.gltf", gltf(put("asset", "version", "3.0")), FILE_ONLY),
    ("accessor_count.gltf", gltf(put("accessors", 0, "count", 2**31 - 1)), FILE_ONLY),
    ("accessor_offset.gltf", gltf(put("accessors", 0, "byteOffset", 2**31 - 1)), FILE_ONLY),
    ("accessor_negative.gltf", gltf(put("accessors", 0, "count", -1)), FILE_ONLY),
    ("accessor_type.gltf", gltf(put("accessors", 0, "type", "VEC9")), FILE_ONLY),
    ("accessor_component.gltf", gltf(put("accessors", 0, "componentType", 1)), FILE_ONLY),
    ("accessor_without_view.gltf", gltf(put("accessors", 0, "bufferView", 7)), FILE_ONLY),
    ("accessor_zeros.gltf", gltf(lambda d: d["accessors"][0].update(bufferView=None, count=2**31 - 1)), FILE_ONLY),
    ("view_length.gltf", gltf(put("bufferViews", 0, "byteLength", 10**9)), FILE_ONLY),
    ("view_offset.gltf", gltf(put("bufferViews", 0, "byteOffset", -4)), FILE_ONLY),
    ("view_buffer.gltf", gltf(put("bufferViews", 0, "buffer", 3)), FILE_ONLY),
    ("view_stride.gltf", gltf(put("bufferViews", 0, "byteStride", 1)), FILE_ONLY),
    ("buffer_length.gltf", gltf(put("buffers", 0, "byteLength", 2**40)), FILE_ONLY),
    ("buffer_letters.gltf", gltf(put("buffers", 0, "byteLength", "many")), FILE_ONLY),
    ("base64.gltf", gltf(put(*URI, "data:application/octet-stream;base64,!!!!")), FILE_ONLY),
    ("missing_file.gltf", gltf(put(*URI, "nowhere.bin")), FILE_ONLY),
    ("traversal.gltf", gltf(put(*URI, "../secret.bin")), FILE_ONLY),
    ("traversal_escaped.gltf", gltf(put(*URI, "%2e%2e/secret.bin")), FILE_ONLY),
    ("traversal_back.gltf", gltf(put(*URI, "..\\secret.bin")), FILE_ONLY),
    ("traversal_inside.gltf", gltf(put(*URI, "a/../../secret.bin")), FILE_ONLY),
    ("absolute.gltf", gltf(put(*URI, "/etc/passwd")), FILE_ONLY),
    ("file_uri.gltf", gltf(put(*URI, "file:///etc/passwd")), FILE_ONLY),
    ("http_uri.gltf", gltf(put(*URI, "http://127.0.0.1:9/x.bin")), FILE_ONLY),
    ("link_outside.gltf", gltf(put(*URI, "link.bin")), FILE_ONLY),
    ("indices.gltf", gltf(put(*URI, INDICES)), FILE_ONLY),
    ("mesh.gltf", gltf(put("nodes", 0, "mesh", 5)), FILE_ONLY),
    ("node_circle.gltf", gltf(put("nodes", 0, "children", [0])), FILE_ONLY),
    ("node_missing.gltf", gltf(put("nodes", 0, "children", [4])), FILE_ONLY),
    ("node_twice.gltf", gltf(lambda d: d.update(nodes=[{"children": [1, 1]}, {}])), FILE_ONLY),
    ("scene_missing.gltf", gltf(put("scene", 6)), None),
    ("required_extension.gltf", gltf(put("extensionsRequired", ["NOBODY_knows_this"])), FILE_ONLY),
    ("matrix_short.gltf", gltf(put("nodes", 0, "matrix", [1, 2, 3])), FILE_ONLY),
    ("numbers_for_objects.gltf", gltf(put("meshes", 5)), FILE_ONLY),
]


def glb(document: str, binary: bytes = b"", **changes: Any) -> bytes:
    """A binary container; `version`, `length`, `json_length` and `json_type` replace what is right."""
    text = document.encode()
    text += b" " * (-len(text) % 4)
    body = struct.pack("<I", changes.get("json_length", len(text))) + changes.get("json_type", b"JSON") + text
    if binary:
        body += struct.pack("<I", changes.get("binary_length", len(binary))) + b"BIN\0" + binary
    return b"glTF" + struct.pack("<II", changes.get("version", 2), changes.get("length", len(body) + 12)) + body


def embedded(change: Callable[[Dict[str, Any]], Any] = lambda document: None) -> str:
    return gltf(lambda document: (document["buffers"][0].pop("uri"), change(document)))


WHOLE = glb(embedded(), BUFFER)

GLB: List[Case] = [
    ("first_half.glb", WHOLE[: len(WHOLE) // 2], FILE_ONLY),
    ("header_only.glb", WHOLE[:12], FILE_ONLY),
    ("header_cut.glb", WHOLE[:7], FILE_ONLY),
    ("without_buffer.glb", glb(embedded()), FILE_ONLY),
    ("buffer_cut.glb", WHOLE[:-10], FILE_ONLY),
    ("length_of_4g.glb", glb(embedded(), BUFFER, length=0xFFFFFFFF), FILE_ONLY),
    ("length_of_0.glb", glb(embedded(), BUFFER, length=0), FILE_ONLY),
    ("chunk_of_4g.glb", glb(embedded(), BUFFER, json_length=0xFFFFFFFF), FILE_ONLY),
    ("chunk_of_0.glb", glb(embedded(), BUFFER, json_length=0), FILE_ONLY),
    ("binary_of_4g.glb", glb(embedded(), BUFFER, binary_length=0xFFFFFFFC), FILE_ONLY),
    ("first_chunk_unknown.glb", glb(embedded(), BUFFER, json_type=b"XXXX"), FILE_ONLY),
    ("version_9.glb", glb(embedded(), BUFFER, version=9), FILE_ONLY),
    ("not_json.glb", glb("\xff" * 20, BUFFER), FILE_ONLY),
]

# --- archives -------------------------------------------------------------------------------------------------


def archive(**files: Content) -> bytes:
    content = io.BytesIO()
    with zipfile.ZipFile(content, "w", zipfile.ZIP_DEFLATED) as packed:
        for name, file in files.items():
            packed.writestr(name, file)
    return content.getvalue()


PACKED = archive(**{"scene.obj": POINTS + "f 1 2 3\n"})

ZIP: List[Case] = [
    ("nothing.zip", archive(), ": the archive holds no scene"),
    ("no_scene.zip", archive(**{"readme.txt": "hello"}), ": the archive holds no scene"),
    ("traversal.zip", archive(**{"../scene.obj": POINTS + "f 1 2 3\n"}), ": "),
    ("bad_scene.zip", archive(**{"scene.obj": POINTS + "f 1 2 4\n"}), r"/scene\.obj"),
    ("archive_in_itself.zip", archive(**{"inner.zip": PACKED}), ": the archive holds no scene"),
    ("cut.zip", PACKED[:-30], ": "),
    ("directory_only.zip", PACKED[PACKED.rindex(b"PK\x01\x02") :], ": "),
    ("content_damaged.zip", PACKED[:45] + b"\xff" * 8 + PACKED[53:], None),
]

CASES: Dict[str, List[Case]] = {"obj": OBJ, "stl": STL, "ply": PLY, "gltf": GLTF + GLB, "zip": ZIP}

# --- valid files, out of which mutations are made ----------------------------------------------------------------

VALID: Dict[str, bytes] = {
    "small.obj": (
        POINTS
        + "v 1 1 0\nvt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\no first\ng a b\nusemtl m\ns 1\nf 1/1/1 2/2/1 3/3/1\n"
        + "f -3//-1 -1//-1 -2//-1\nl 1 2 3\np 4\n"
    ).encode(),
    "text.stl": ("solid x\n" + FACET * 3 + "endsolid x\n").encode(),
    "binary.stl": stl(5, TRIANGLE * 5),
    "text.ply": ply(3, 2, CORNERS + "3 0 1 2\n3 2 1 0\n"),
    "binary.ply": ply(3, 2, CORNERS_LE + struct.pack("<B3i", 3, 0, 1, 2) * 2, BINARY),
    "small.gltf": gltf().encode(),
    "small.glb": WHOLE,
}
