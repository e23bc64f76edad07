"""Python files as managed streams, and managed streams as Python files."""

from __future__ import annotations

import io
import sys
from typing import Any

import pytest

from velbor.voxlar import FileFormat, Scene
from velbor.voxlar.entities import Box
from velbor.voxlar.utilities import MemoryFileSystem


def new_stream() -> Any:
    return MemoryFileSystem().write_file("a", FileFormat.WAVEFRONT_OBJ.create_load_options())


def saved() -> bytes:
    scene = Scene()
    scene.root_node.create_child_node("box", Box())
    file = io.BytesIO()
    scene.save(file, FileFormat.GLTF2)
    return file.getvalue()


def test_a_scene_goes_through_python_memory() -> None:
    data = saved()
    assert data[:1] == b"{"
    scene = Scene()
    scene.open(io.BytesIO(data))
    assert len(scene.root_node.child_nodes) >= 1


def test_a_raw_file_that_gives_little_at_a_time_serves() -> None:
    class Slow(io.RawIOBase):
        def __init__(self, data: bytes) -> None:
            self.inner = io.BytesIO(data)

        def readable(self) -> bool:
            return True

        def seekable(self) -> bool:
            return True

        def readinto(self, room: Any) -> int:
            view = memoryview(room)
            return self.inner.readinto(view[: min(7, len(view))])

        def seek(self, offset: int, whence: int = 0) -> int:
            return self.inner.seek(offset, whence)

        def tell(self) -> int:
            return self.inner.tell()

    scene = Scene()
    scene.open(Slow(saved()))
    assert len(scene.root_node.child_nodes) >= 1


def test_what_a_file_raises_comes_back_with_its_text() -> None:
    class Broken(io.RawIOBase):
        def readable(self) -> bool:
            return True

        def seekable(self) -> bool:
            return False

        def readinto(self, room: Any) -> int:
            raise ValueError("the tape is torn")

    with pytest.raises(RuntimeError, match="(?s)Proxy error.*ValueError: the tape is torn"):
        Scene().open(Broken())


@pytest.mark.parametrize("value", [io.StringIO(), object(), 5])
def test_what_is_no_file_is_refused(value: Any) -> None:
    with pytest.raises(TypeError) as refused:
        Scene().open(value)
    assert "can't build Stream from" in str(refused.value)


def test_a_managed_stream_reads_and_writes() -> None:
    stream = new_stream()
    assert stream.write(b"one\ntwo\nthree") == 13
    assert stream.tell() == 13
    assert stream.seek(0) == 0
    assert stream.readline() == b"one\n"
    assert list(stream) == [b"two\n", b"three"]
    assert stream.seek(-5, 2) == 8
    assert stream.read() == b"three"
    assert stream.read() == b""
    room = bytearray(4)
    stream.seek(4)
    assert stream.readinto(room) == 4
    assert room == b"two\n"
    assert stream.truncate(6) == 6
    stream.seek(0)
    assert stream.readall() == b"one\ntw"
    with pytest.raises(RuntimeError, match=r"Proxy error\("):
        stream.seek(-100, 1)
    stream.close()
    assert stream.closed
    with pytest.raises(ValueError, match="I/O operation on closed stream"):
        stream.read()


def test_a_managed_stream_serves_as_a_managed_stream_again() -> None:
    stream = new_stream()
    stream.write(saved())
    stream.seek(0)
    scene = Scene()
    scene.open(stream)
    assert len(scene.root_node.child_nodes) >= 1


def test_a_file_is_let_go_after_the_call() -> None:
    from velbor import pygc

    file = io.BytesIO(saved())
    before = sys.getrefcount(file)
    Scene().open(file)
    for _ in range(5):
        pygc.collect()
    Scene()
    assert sys.getrefcount(file) == before
