"""Memory that crosses: Python's buffers read by managed code, managed memory shown to Python files."""

from __future__ import annotations

import array
import io
import mmap
from typing import Any

import pytest
from velbor.voxlar.entities import TriMesh
from velbor.voxlar.utilities import VertexDeclaration, VertexFieldDataType, VertexFieldSemantic

DECLARATION = VertexDeclaration()
FIELD = DECLARATION.add_field(VertexFieldDataType.F_VECTOR3, VertexFieldSemantic.POSITION, 0, "p")
CONTENT = array.array("f", [float(i) for i in range(9)]).tobytes()


def mesh() -> TriMesh:
    return TriMesh.from_raw_data(DECLARATION, CONTENT, [0, 1, 2], False)


def mapped() -> mmap.mmap:
    memory = mmap.mmap(-1, len(CONTENT))
    memory.write(CONTENT)
    return memory


@pytest.mark.parametrize(
    "given",
    [
        CONTENT, bytearray(CONTENT), memoryview(CONTENT), memoryview(b"x" + CONTENT + b"x")[1:-1], mapped(),
        array.array("f", [float(i) for i in range(9)]), memoryview(CONTENT).cast("f", [3, 3]),
    ],
    ids=lambda given: type(given).__name__,
)  # fmt: skip
def test_any_buffer_serves_as_bytes(given: Any) -> None:
    read = TriMesh("t", DECLARATION)
    read.load_vertices_from_bytes(given)
    assert read.vertices_count == 3 and read.vertices_size_in_bytes == 36
    assert bytes(read.vertices_to_array()) == CONTENT
    point = read.read_f_vector3(1, FIELD)
    assert (point.x, point.y, point.z) == (3.0, 4.0, 5.0)


def test_numpy_serves_as_bytes() -> None:
    numpy = pytest.importorskip("numpy")
    read = TriMesh("t", DECLARATION)
    read.load_vertices_from_bytes(numpy.arange(9, dtype="f4").reshape(3, 3))
    assert bytes(read.vertices_to_array()) == CONTENT
    with pytest.raises(BufferError):
        read.load_vertices_from_bytes(numpy.arange(18, dtype="f4")[::2])


@pytest.mark.parametrize("given", [5, "text", [1, 2], object()])
def test_what_is_no_buffer_is_refused(given: Any) -> None:
    with pytest.raises(TypeError):
        mesh().load_vertices_from_bytes(given)


def test_a_buffer_is_let_go_whether_the_call_fails_or_not() -> None:
    for size in (36, 37):
        given = bytearray(size)
        try:
            mesh().load_vertices_from_bytes(given)
        except RuntimeError:
            assert size == 37
        given.append(1)  # refused as long as someone holds the buffer


def test_what_comes_out_is_a_copy() -> None:
    source = mesh()
    content = source.vertices_to_array()
    if isinstance(content, bytearray):
        content[0] ^= 255
    assert bytes(source.vertices_to_array()) == CONTENT


class Looking(io.RawIOBase):
    """Looks at what it is given."""

    seen: list[Any] = []

    def writable(self) -> bool:
        return True

    def write(self, data: Any) -> int:
        view = memoryview(data)
        self.seen.append((type(data), view.readonly, view.nbytes, view.format, view.ndim, bytes(data)))
        with pytest.raises(TypeError):
            io.BytesIO(b"over").readinto(data)
        with pytest.raises(TypeError):
            type(data)()
        with pytest.raises(TypeError):
            view[0] = 1
        return view.nbytes


def test_a_file_may_read_what_it_is_to_write_and_nothing_else() -> None:
    file = Looking()
    mesh().write_vertices_to(file)
    ((kind, *seen),) = file.seen
    assert kind.__name__ == "_ShlBufferView" and seen == [True, 36, "B", 1, CONTENT]
