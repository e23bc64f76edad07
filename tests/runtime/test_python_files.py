"""Python files as managed streams: every kind of file, for every format, told against the path."""

from __future__ import annotations

import gc
import gzip
import io
import os
import socket
import tempfile
import threading
import weakref
import zipfile
from pathlib import Path
from typing import Any, Callable

import pytest
from velbor import pygc
from velbor.voxlar import FileFormat, Scene
from velbor.voxlar.entities import Box, Mesh, Sphere
from velbor.voxlar.utilities import MemoryFileSystem


def scene() -> Scene:
    made = Scene()
    made.root_node.create_child_node("box", Box().to_mesh())
    made.root_node.create_child_node("ball", Sphere().to_mesh())
    return made


def can_save(format_: FileFormat) -> bool:
    try:
        scene().save(io.BytesIO(), format_)
    except RuntimeError as error:
        assert "not supported" in str(error)
        return False
    return True


ALL = {name: getattr(FileFormat, name) for name in dir(FileFormat) if name[0].isupper()}
FORMATS = {name: one for name, one in ALL.items() if isinstance(one, FileFormat) and can_save(one)}


def told(read: Scene) -> list[Any]:
    """What a scene holds, as far as every format keeps it."""
    found: list[Any] = []

    def visit(node: Any) -> None:
        for entity in node.entities:
            mesh = Mesh._cast_as(entity).value
            if mesh is not None:
                points = [(p.x, p.y, p.z) for p in mesh.control_points]
                found.append((node.name, points, [[*polygon] for polygon in mesh.polygons]))
        for child in node.child_nodes:
            visit(child)

    visit(read.root_node)
    return found


@pytest.fixture(params=FORMATS)
def format_(request: Any) -> FileFormat:
    return FORMATS[request.param]


@pytest.fixture
def path(tmp_path: Path, format_: FileFormat) -> Path:
    """The scene as one file that needs no other; what a format puts beside its file, a stream embeds."""
    data = io.BytesIO()
    scene().save(data, format_)
    made = tmp_path / f"whole{format_.extension}"
    made.write_bytes(data.getvalue())
    return made


@pytest.fixture
def by_path(tmp_path: Path, format_: FileFormat) -> Scene:
    """The scene saved and read by path."""
    made = tmp_path / f"by_path{format_.extension}"
    scene().save(str(made), format_)
    read = Scene()
    read.open(str(made))
    assert sum(len(polygons) for _, _, polygons in told(read)) > 100
    return read


class Short(io.RawIOBase):
    """A raw file whose every operation handles a few bytes only."""

    def __init__(self, data: bytes = b"") -> None:
        self.inner = io.BytesIO(data)

    def readable(self) -> bool:
        return True

    writable = seekable = readable

    def readinto(self, room: Any) -> int:
        return self.inner.readinto(memoryview(room)[:13])

    def write(self, data: Any) -> int:
        return self.inner.write(memoryview(data)[:13])

    def seek(self, offset: int, whence: int = 0) -> int:
        return self.inner.seek(offset, whence)

    def tell(self) -> int:
        return self.inner.tell()


def zip_member(data: bytes) -> Any:
    held = io.BytesIO()
    with zipfile.ZipFile(held, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("a", data)
    return zipfile.ZipFile(held).open("a")


def feed(data: bytes, write: Callable[[bytes], Any], close: Callable[[], Any]) -> None:
    def run() -> None:
        try:
            for start in range(0, len(data), 1000):
                write(data[start : start + 1000])
        except OSError:
            pass  # the reader has seen enough
        close()

    threading.Thread(target=run, daemon=True).start()


def pipe(data: bytes, buffering: int) -> Any:
    reading, writing = os.pipe()
    sink = os.fdopen(writing, "wb")
    feed(data, sink.write, sink.close)
    return os.fdopen(reading, "rb", buffering)


def socket_file(data: bytes, buffering: int) -> Any:
    ours, theirs = socket.socketpair()
    feed(data, theirs.sendall, theirs.close)
    with ours:
        return ours.makefile("rb", buffering=buffering) if buffering else ours.makefile("rb", buffering=0)


def on_disk(data: bytes, buffering: int) -> Any:
    file = tempfile.TemporaryFile("w+b", buffering=buffering)
    view = memoryview(data)
    while view:
        view = view[file.write(view) :]
    file.seek(0)
    return file


SOURCES: dict[str, Callable[[bytes], Any]] = {
    "memory": io.BytesIO,
    "raw file": lambda data: on_disk(data, 0),
    "buffered file": lambda data: on_disk(data, 100),
    "buffered reader": lambda data: io.BufferedReader(Short(data), 50),
    "buffered random": lambda data: io.BufferedRandom(Short(data), 50),
    "short reads": Short,
    "zip member": zip_member,
    "gzip": lambda data: gzip.GzipFile(fileobj=io.BytesIO(gzip.compress(data))),
    "raw pipe": lambda data: pipe(data, 0),
    "buffered pipe": lambda data: pipe(data, 300),
    "raw socket": lambda data: socket_file(data, 0),
    "buffered socket": lambda data: socket_file(data, 300),
}


@pytest.mark.parametrize("source", SOURCES)
def test_every_format_is_read_from_every_file(source: str, path: Path, by_path: Scene) -> None:
    by_stream = Scene()
    with SOURCES[source](path.read_bytes()) as file:
        by_stream.open(file)
        assert not file.closed, "the file stays the caller's"
    assert told(by_stream) == told(by_path)


def drained(file: Any, into: list[bytes]) -> threading.Thread:
    thread = threading.Thread(target=lambda: into.append(file.read()))
    thread.start()
    return thread


def written_to_pipe(save: Callable[[Any], None], buffering: int) -> bytes:
    reading, writing = os.pipe()
    got: list[bytes] = []
    with os.fdopen(reading, "rb") as source:
        thread = drained(source, got)
        with os.fdopen(writing, "wb", buffering) as sink:
            save(sink)
        thread.join()
    return got[0]


def written_to_socket(save: Callable[[Any], None], buffering: int) -> bytes:
    ours, theirs = socket.socketpair()
    got: list[bytes] = []
    with theirs.makefile("rb") as source:
        thread = drained(source, got)
        with ours.makefile("wb", buffering=buffering) as sink:
            save(sink)
        ours.close()
        thread.join()
    theirs.close()
    return got[0]


def written_to(file: Any, save: Callable[[Any], None]) -> bytes:
    save(file)
    file.seek(0)
    return file.read()


def written_to_gzip(save: Callable[[Any], None]) -> bytes:
    held = io.BytesIO()
    with gzip.GzipFile(fileobj=held, mode="wb") as file:
        save(file)
    return gzip.decompress(held.getvalue())


def written_to_zip_member(save: Callable[[Any], None]) -> bytes:
    held = io.BytesIO()
    with zipfile.ZipFile(held, "w", zipfile.ZIP_DEFLATED) as archive:
        with archive.open("a", "w") as member:
            save(member)
    return zipfile.ZipFile(held).read("a")


def short_writes(save: Callable[[Any], None]) -> bytes:
    file = Short()
    save(file)
    return file.inner.getvalue()


SINKS: dict[str, Callable[[Callable[[Any], None]], bytes]] = {
    "memory": lambda save: written_to(io.BytesIO(), save),
    "raw file": lambda save: written_to(tempfile.TemporaryFile("w+b", buffering=0), save),
    "buffered file": lambda save: written_to(tempfile.TemporaryFile("w+b", buffering=100), save),
    "buffered random": lambda save: written_to(io.BufferedRandom(Short(), 50), save),
    "short writes": short_writes,
    "zip member": written_to_zip_member,
    "gzip": written_to_gzip,
    "raw pipe": lambda save: written_to_pipe(save, 0),
    "buffered pipe": lambda save: written_to_pipe(save, 300),
    "raw socket": lambda save: written_to_socket(save, 0),
    "buffered socket": lambda save: written_to_socket(save, 300),
}


@pytest.mark.parametrize("sink", SINKS)
def test_every_format_is_written_to_every_file(
    sink: str, format_: FileFormat, path: Path, by_path: Scene
) -> None:
    path.write_bytes(SINKS[sink](lambda file: scene().save(file, format_)))
    by_stream = Scene()
    by_stream.open(str(path))
    assert told(by_stream) == told(by_path)


class Failing(Short):
    """Fails after so many calls of one kind; `None` is the answer of a file that would block."""

    def __init__(self, data: bytes, method: str, after: int, answer: Any) -> None:
        super().__init__(data)
        self.method, self.after, self.answer = method, after, answer

    def due(self, method: str) -> bool:
        self.after -= method == self.method
        return method == self.method and self.after < 0

    def give(self) -> Any:
        if isinstance(self.answer, Exception):
            raise self.answer
        return self.answer

    def readinto(self, room: Any) -> Any:
        return self.give() if self.due("readinto") else super().readinto(room)

    def write(self, data: Any) -> Any:
        return self.give() if self.due("write") else super().write(data)


def test_a_write_that_raises_half_way(format_: FileFormat) -> None:
    file = Failing(b"", "write", 3, OSError(28, "no room is left"))
    with pytest.raises(RuntimeError, match="no room is left"):
        scene().save(file, format_)
    assert 0 < len(file.inner.getvalue()) <= 39, "what went before stays written"


def test_a_read_that_raises_half_way(format_: FileFormat, path: Path) -> None:
    file = Failing(path.read_bytes(), "readinto", 3, OSError("the tape is torn"))
    with pytest.raises(RuntimeError, match="the tape is torn"):
        Scene().open(file)


@pytest.mark.parametrize("answer", ["text", -5, 10**6, 2**40])
def test_a_file_that_answers_nonsense(format_: FileFormat, path: Path, answer: Any) -> None:
    with pytest.raises(RuntimeError):
        scene().save(Failing(b"", "write", 1, answer), format_)
    with pytest.raises(RuntimeError):
        Scene().open(Failing(path.read_bytes(), "readinto", 1, answer))


def test_a_file_that_would_block(format_: FileFormat, path: Path) -> None:
    with pytest.raises(RuntimeError, match="takes no data now"):
        scene().save(Failing(b"", "write", 3, None), format_)
    with pytest.raises(RuntimeError):
        Scene().open(Failing(path.read_bytes(), "readinto", 0, None))  # the same as an empty file


def test_a_file_closed_before_and_in_between(format_: FileFormat, path: Path) -> None:
    file = io.BytesIO(path.read_bytes())
    file.close()
    with pytest.raises(RuntimeError):
        Scene().open(file)
    with pytest.raises(RuntimeError):
        scene().save(file, format_)

    class Closing(Short):
        def readinto(self, room: Any) -> int:
            got = super().readinto(room)
            self.inner.close()
            return got

        def write(self, data: Any) -> int:
            got = super().write(data)
            self.inner.close()
            return got

    with pytest.raises(RuntimeError):
        Scene().open(Closing(path.read_bytes()))
    with pytest.raises(RuntimeError):
        scene().save(Closing(), format_)


def test_a_file_that_only_reads_or_only_writes(format_: FileFormat, path: Path) -> None:
    with open(path, "rb") as file, pytest.raises(RuntimeError):
        scene().save(file, format_)
    with open(path.with_name("w"), "wb") as file, pytest.raises(RuntimeError):
        Scene().open(file)


def test_the_position_of_the_caller_counts(format_: FileFormat, path: Path, by_path: Scene) -> None:
    file = io.BytesIO(b"before" + path.read_bytes())
    file.seek(6)
    by_stream = Scene()
    by_stream.open(file)
    assert told(by_stream) == told(by_path)
    target = io.BytesIO(b"before")
    target.seek(6)
    scene().save(target, format_)
    assert target.getvalue()[:6] == b"before"


def test_a_managed_stream_in_place_of_a_file(format_: FileFormat, by_path: Scene) -> None:
    stream = MemoryFileSystem().write_file("a", FileFormat.GLTF2.create_save_options())
    scene().save(stream, format_)
    stream.seek(0)
    by_stream = Scene()
    by_stream.open(stream)
    assert told(by_stream) == told(by_path)


def test_a_buffered_file_over_a_managed_stream(format_: FileFormat, path: Path, by_path: Scene) -> None:
    """Managed code, Python's buffer, managed code: both bridges in one call."""
    raw = MemoryFileSystem().write_file("a", FileFormat.GLTF2.create_save_options())
    raw.write(path.read_bytes())
    raw.seek(0)
    by_stream = Scene()
    by_stream.open(io.BufferedReader(raw))
    assert told(by_stream) == told(by_path)


def test_files_are_let_go(no_handle_is_left: None, format_: FileFormat, path: Path) -> None:
    kept = []
    for failing in (False, True):
        file = Failing(path.read_bytes(), "readinto", 1 if failing else 10**9, OSError("torn"))
        kept.append(weakref.ref(file))
        try:
            Scene().open(file)
        except RuntimeError:
            pass
        del file
    for _ in range(5):
        gc.collect()
        pygc.collect()
    Scene()
    assert [one() for one in kept] == [None, None]
