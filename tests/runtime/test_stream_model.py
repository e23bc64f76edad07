"""Managed streams as Python files: held against `io.BytesIO`, and inside what Python builds over files."""

from __future__ import annotations

import array
import gzip
import io
import random
import shutil
import zipfile
from typing import Any, Callable

import pytest
from velbor.voxlar import FileFormat
from velbor.voxlar.utilities import MemoryFileSystem

OPERATIONS = 100_000
OPTIONS = FileFormat.GLTF2.create_save_options()


def new_stream(data: bytes = b"") -> Any:
    stream = MemoryFileSystem().write_file("a", OPTIONS)
    stream.write(data)
    stream.seek(0)
    return stream


def outcome(function: Callable[..., Any]) -> tuple[str, Any]:
    try:
        return "value", function()
    except Exception as error:
        return "error", type(error)


def readinto(file: Any, room: Any) -> tuple[int, bytes]:
    return file.readinto(room), bytes(room)


def extend_or_cut(file: Any, size: int | None) -> int:
    """A managed stream grows to the size, a `BytesIO` has to be written to."""
    if isinstance(file, io.BytesIO) and size is not None and size > len(file.getbuffer()):
        place = file.tell()
        file.seek(0, 2)
        file.write(bytes(size - file.tell()))
        file.seek(place)
        return size
    if isinstance(file, io.BytesIO) and size is None and file.tell() > len(file.getbuffer()):
        return extend_or_cut(file, file.tell())
    return file.truncate() if size is None else file.truncate(size)


def operation(chance: random.Random, size: int) -> Callable[[Any], Any]:
    """One random thing to do to a file; the same for two files when the state of chance is the same."""
    text = bytes(chance.choice(b"ab\n") for _ in range(chance.choice([0, 1, 3, 20, 300])))
    limit = chance.choice([None, -1, 0, 1, 2, 5, 40, 2000, 5000])
    room = chance.choice([0, 1, 7, 100, 3000])
    whence = chance.randint(0, 2)
    return chance.choice([
        lambda f: f.read() if limit == 2000 else f.read(limit),
        lambda f: f.read(room),
        lambda f: readinto(f, bytearray(room)),
        lambda f: readinto(f, memoryview(bytearray(room + 4))[2:-2]),
        lambda f: readinto(f, array.array("h", bytes(2 * room))),
        lambda f: f.readline() if limit == 2000 else f.readline(limit),
        lambda f: f.readlines() if limit == 2000 else f.readlines(limit),
        lambda f: next(f, None),
        lambda f: list(f),
        lambda f: f.seek(room),
        lambda f: f.seek(-min(room, f.tell()), 1),
        lambda f: f.seek(room % (size + 1) - size, 2),
        lambda f: f.seek(chance.randint(0, size + 5), 0),
        lambda f: f.seek(0),
        lambda f: extend_or_cut(f, chance.choice([None, room, size // 2])),
        lambda f: f.write(text),
        lambda f: f.write(bytearray(text)),
        lambda f: f.write(array.array("i", range(len(text)))),
        lambda f: f.writelines([text, b"", memoryview(text)]),
        lambda f: (f.tell(), f.closed, f.readable(), f.writable(), f.seekable(), f.isatty(), f.flush()),
        lambda f: f.seek(-1 - room),
        lambda f: f.seek(0, 3 + whence),
        lambda f: f.seek(1.5),
        lambda f: f.read("1"),
        lambda f: f.read(1, 2),
        lambda f: f.readline(1.5),
        lambda f: f.write("text"),
        lambda f: f.write(None),
        lambda f: f.writelines([text, 5]),
        lambda f: f.writelines(5),
        lambda f: f.readinto(b"read-only"),
        lambda f: f.readinto(None),
        lambda f: f.truncate("x"),
    ])  # fmt: skip


def test_it_is_a_bytesio() -> None:
    chance = random.Random(5)
    stream, model = new_stream(), io.BytesIO()
    for done in range(OPERATIONS):
        size, results, state = len(model.getbuffer()), [], chance.getstate()
        for file in (stream, model):
            chance.setstate(state)
            todo = operation(chance, size)
            results.append(outcome(lambda: todo(file)))
        assert results[0] == results[1], done
        assert stream.tell() == model.tell(), done
        if size > 20_000:
            for file in (stream, model):
                file.seek(0)
                file.truncate()
    stream.seek(0)
    assert stream.readall() == model.getvalue()


def test_it_is_closed_like_a_bytesio() -> None:
    stream, model = new_stream(b"one\ntwo\n"), io.BytesIO(b"one\ntwo\n")
    for file in (stream, model):
        file.close()
        file.close()
    for name in "read readline readlines tell flush isatty readable seekable writable".split():
        assert outcome(getattr(stream, name)) == outcome(getattr(model, name)) == ("error", ValueError), name
    assert stream.closed
    with pytest.raises(ValueError, match="fileno method is not supported"):
        stream.fileno()
    with pytest.raises(ValueError, match="negative seek value -1"):
        stream.seek(-1)
    with pytest.raises(TypeError, match="argument should be integer or None, not 'str'"):
        stream.truncate("1")


def test_a_with_statement_disposes_of_it() -> None:
    with new_stream(b"abc") as stream:
        assert stream.read(2) == b"ab" and not stream.closed
    assert stream.closed
    stream.close()


# --- under Python's own layers -------------------------------------------------------------------------

LINES = b"".join(b"line %d \xc3\xa9\r\n" % i for i in range(5000))


def test_under_a_buffered_reader() -> None:
    with io.BufferedReader(new_stream(LINES), 100) as reader:
        assert reader.peek(4)[:4] == b"line"
        assert reader.read(10) == LINES[:10] and reader.read1(5) == LINES[10:15]
        assert reader.readline() == LINES[15:].split(b"\n")[0] + b"\n"
        assert reader.seek(-7, 2) == len(LINES) - 7 and reader.read() == LINES[-7:]
        reader.seek(0)
        assert list(reader) == LINES.splitlines(keepends=True)
        raw = reader.raw
    assert raw.closed


def test_under_a_buffered_writer_and_both_at_once() -> None:
    raw = new_stream()
    writer = io.BufferedWriter(raw, 100)
    for start in range(0, len(LINES), 7):
        writer.write(LINES[start : start + 7])
    writer.flush()
    raw.seek(0)
    assert raw.read() == LINES
    both, model = io.BufferedRandom(raw, 64), bytearray(LINES)
    chance = random.Random(7)
    for _ in range(2000):
        place, size = chance.randrange(len(LINES) - 100), chance.randrange(100)
        both.seek(place)
        if chance.random() < 0.5:
            both.write(b"x" * size)
            model[place : place + size] = b"x" * size
        else:
            assert both.read(size) == model[place : place + size]
    both.flush()
    raw.seek(0)
    assert raw.read() == model


@pytest.mark.parametrize("buffer", [lambda raw: raw, io.BufferedReader], ids=["bare", "buffered"])
def test_text_is_read(buffer: Callable[[Any], Any]) -> None:
    text = io.TextIOWrapper(buffer(new_stream(LINES)), encoding="utf-8")
    assert text.readline() == "line 0 é\n"
    place = text.tell()
    assert text.readline() == "line 1 é\n"
    text.seek(place)
    assert text.readline() == "line 1 é\n"
    assert len(text.readlines()) == 4998
    text.seek(0)
    assert text.read() == LINES.decode().replace("\r\n", "\n")


def test_text_is_written() -> None:
    raw = new_stream()
    text = io.TextIOWrapper(raw, encoding="utf-16-le", newline="\r\n")
    for number in range(5000):
        print("line", number, "é", file=text)
    text.flush()
    raw.seek(0)
    assert raw.read().decode("utf-16-le") == LINES.decode()
    assert text.detach() is raw


@pytest.mark.parametrize("compression", [zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED])
def test_an_archive_lives_in_it(compression: int) -> None:
    raw = new_stream()
    with zipfile.ZipFile(raw, "w", compression) as archive:
        archive.writestr("a.txt", LINES)
        with archive.open("b.txt", "w") as member:
            member.write(LINES[:100])
    with zipfile.ZipFile(raw, "a", compression) as archive:
        archive.writestr("c.txt", b"")
    with zipfile.ZipFile(raw) as archive:
        assert archive.testzip() is None
        assert archive.namelist() == ["a.txt", "b.txt", "c.txt"]
        assert archive.read("a.txt") == LINES and archive.read("b.txt") == LINES[:100]


def test_gzip_over_it() -> None:
    raw = new_stream()
    with gzip.GzipFile(fileobj=raw, mode="wb", filename="x") as file:
        file.write(LINES)
    raw.seek(0)
    with gzip.GzipFile(fileobj=raw, mode="rb") as file:
        assert file.readline() == LINES[: LINES.index(b"\n") + 1]
        assert file.read() == LINES[LINES.index(b"\n") + 1 :]


def test_copies_of_files_objects() -> None:
    source, target, back = io.BytesIO(LINES * 20), new_stream(), io.BytesIO()
    shutil.copyfileobj(source, target)
    target.seek(0)
    shutil.copyfileobj(target, back, 1000)
    assert back.getvalue() == LINES * 20


def test_a_stream_that_only_reads() -> None:
    files = MemoryFileSystem()
    with files.write_file("a", OPTIONS) as stream:
        stream.write(b"one\ntwo")
    reading = files.read_file("a", OPTIONS)
    assert reading.readable() and reading.read() == b"one\ntwo"
    if not reading.writable():
        with pytest.raises(RuntimeError, match="NotSupportedException"):
            reading.write(b"x")
