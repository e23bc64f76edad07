"""velbor.pycore needs no runtime: the stream over a bytes-like object, and the module's versions."""

from __future__ import annotations

import array
import errno
import io
import os
import sys

import pytest

from velbor import pycore

BytesAsStream = pycore.BytesAsStream


def test_reads_what_is_there() -> None:
    stream = BytesAsStream(b"0123456789")
    assert stream.read(4) == b"0123"
    assert stream.tell() == 4
    assert stream.read() == b"456789"
    assert stream.read(1) == b""
    assert stream.seek(2) == 2
    assert stream.readall() == b"23456789"
    assert stream.seek(0) == 0
    assert stream.read(None) == b"0123456789"
    assert stream.seek(0) == 0
    assert stream.read(-5) == b"0123456789"


def test_readinto_fills_what_fits() -> None:
    stream = BytesAsStream(b"abc")
    target = bytearray(2)
    assert stream.readinto(target) == 2
    assert target == b"ab"
    assert stream.readinto(target) == 1
    assert target == b"cb"
    assert stream.readinto(target) == 0
    assert stream.readinto(bytearray()) == 0
    with pytest.raises((TypeError, BufferError)):
        stream.readinto(b"read-only")


def test_writes_go_into_the_memory() -> None:
    memory = bytearray(b"......")
    stream = BytesAsStream(memory)
    assert stream.writable() is True
    stream.seek(2)
    assert stream.write(b"ab") == 2
    assert memory == b"..ab.."
    assert stream.write(b"cdef") == 2
    assert memory == b"..abcd"
    assert stream.write(b"") == 0
    with pytest.raises(OSError) as caught:
        stream.write(b"x")
    assert caught.value.errno == errno.ENOSPC
    with pytest.raises(TypeError):
        stream.write("text")


def test_read_only_memory_refuses_writes() -> None:
    for memory in (b"abc", memoryview(bytearray(b"abc")).toreadonly()):
        stream = BytesAsStream(memory)
        assert stream.writable() is False
        with pytest.raises(io.UnsupportedOperation, match="^write$"):
            stream.write(b"x")


def test_seeks_from_each_end() -> None:
    stream = BytesAsStream(b"0123456789")
    assert stream.seek(-3, os.SEEK_END) == 7
    assert stream.seek(2, os.SEEK_CUR) == 9
    assert stream.read() == b"9"
    assert stream.seek(20) == 20
    assert stream.read() == b""
    assert stream.readinto(bytearray(3)) == 0
    with pytest.raises(ValueError, match="^negative seek position -1$"):
        stream.seek(-1)
    with pytest.raises(ValueError, match=r"^invalid whence \(7, should be 0, 1 or 2\)$"):
        stream.seek(0, 7)
    with pytest.raises(OverflowError, match="^seek position too large$"):
        stream.seek(sys.maxsize, os.SEEK_CUR)
    assert stream.tell() == 20


def test_any_bytes_like_object_serves() -> None:
    assert BytesAsStream(array.array("H", [1, 2])).read() == array.array("H", [1, 2]).tobytes()
    assert BytesAsStream(memoryview(b"abcdef")[2:4]).read() == b"cd"
    assert BytesAsStream(buffer=b"x").read() == b"x"
    with pytest.raises(TypeError, match="a bytes-like object is required, not 'str'"):
        BytesAsStream("text")
    with pytest.raises(BufferError):
        BytesAsStream(memoryview(b"abcdef")[::2])
    with pytest.raises(TypeError):
        BytesAsStream()


def test_closing_lets_the_memory_go() -> None:
    memory = bytearray(b"abc")
    with BytesAsStream(memory) as stream:
        assert stream.closed is False
        with pytest.raises(BufferError):
            memory.append(0)
    assert stream.closed is True
    memory.append(0)
    stream.close()
    for call in (stream.read, stream.readall, stream.tell, stream.flush, stream.readable, stream.writable,
                 stream.seekable, stream.__enter__, lambda: stream.seek(0), lambda: stream.write(b""),
                 lambda: stream.readinto(bytearray(1))):
        with pytest.raises(ValueError, match=r"^I/O operation on closed file\.$"):
            call()


def test_the_end_of_the_stream_lets_the_memory_go() -> None:
    memory = bytearray(b"abc")
    before = sys.getrefcount(memory)
    stream = BytesAsStream(memory)
    stream.__init__(memory)  # takes the new buffer, lets the old one go
    del stream
    assert sys.getrefcount(memory) == before
    memory.append(0)


def test_a_size_that_closes_the_stream_is_refused() -> None:
    class Closing:
        def __index__(self) -> int:
            stream.close()
            return 1

    stream = BytesAsStream(bytearray(b"abc"))
    with pytest.raises(ValueError):
        stream.read(Closing())


def test_an_object_without_a_buffer_is_closed() -> None:
    stream = BytesAsStream.__new__(BytesAsStream)
    assert stream.closed is True
    with pytest.raises(ValueError):
        stream.read()


def test_serves_the_io_module() -> None:
    reader = io.BufferedReader(BytesAsStream(b"one\ntwo\n"))
    assert list(reader) == [b"one\n", b"two\n"]
    memory = bytearray(4)
    writer = io.BufferedWriter(BytesAsStream(memory))
    writer.write(b"abcd")
    writer.flush()
    assert memory == b"abcd"


@pytest.mark.parametrize("name", ["pycore", "pygc", "pyreflection"])
def test_versions(name: str) -> None:
    module = __import__(f"velbor.{name}", fromlist=[name])
    assert str(module.VERSION) == "23.7.0.0"
    assert (module.VERSION.major, module.VERSION.minor, module.VERSION.patch, module.VERSION.sub) == (23, 7, 0, 0)
    assert module._BACKWARD_COMPATIBILITY_THRESHOLD.view == "22.6.0.0"
    assert repr(module.VERSION) == f"<velbor.{name}._ModuleVersionType: 23.7.0.0>"
    assert module.VERSION > module._BACKWARD_COMPATIBILITY_THRESHOLD
