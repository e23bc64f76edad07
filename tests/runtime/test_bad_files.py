"""Malformed files end in an exception that names the file, the place and the reason; a failed save leaves nothing."""

from __future__ import annotations

import io
import json
import os
import random
import re
import signal
import subprocess
import sys
import textwrap
from pathlib import Path
from typing import Any, Dict, Iterable, List, Tuple

import malformed
import open_files
import pytest
from velbor.voxlar import FileFormat, Scene
from velbor.voxlar.entities import Box
from velbor.voxlar.formats import GltfSaveOptions
from velbor.voxlar.utilities import MemoryFileSystem, ZipArchiveFileSystem

MUTATIONS = 300

HERE = Path(__file__).resolve().parent

BUILT = {
    extension: FileFormat.get_format_by_extension("." + extension)
    for extension in ("obj", "stl", "ply", "gltf", "glb", "zip")
}


WRITTEN = ["obj", "stl", "ply", "gltf", "glb"]


def needs(extension: str) -> None:
    if not BUILT[extension].can_import:
        pytest.skip(f"reading .{extension} is not built yet")


def open_in_a_child(paths: Iterable[Path], seconds: float) -> Tuple[List[Dict[str, Any]], int, str]:
    """What became of each file, the child's return code and its standard error."""
    result = subprocess.run(
        [sys.executable, str(HERE / "open_files.py")],
        input="".join(json.dumps(str(path)) + "\n" for path in paths),
        capture_output=True,
        text=True,
        timeout=seconds,
        check=False,
    )
    return [json.loads(line) for line in result.stdout.splitlines()], result.returncode, result.stderr


def opened(paths: List[Path], seconds: float = 120) -> List[Dict[str, Any]]:
    """The same, where each file must have ended in an ordinary way, in time and within memory."""
    found, code, errors = open_in_a_child(paths, seconds)
    if code != 0:
        name = f"signal {signal.Signals(-code).name}" if code < 0 else f"code {code}"
        pytest.fail(f"{paths[len(found)].name} ended the process with {name}:\n{errors}")
    assert [each["path"] for each in found] == [str(path) for path in paths]
    for each in found:
        assert each["seconds"] < open_files.SECONDS, each
        assert each["peak"] < open_files.MEMORY, each
        assert each["kind"] in (None, "RuntimeError"), each
    return found


@pytest.mark.parametrize("kind", list(malformed.CASES))
def test_malformed_files(kind: str, tmp_path: Path) -> None:
    needs(kind)
    folder = tmp_path / "files"
    folder.mkdir()
    # A way out that works would find a buffer that fits.
    (tmp_path / "secret.bin").write_bytes(malformed.BUFFER)
    os.symlink("../secret.bin", folder / "link.bin")
    paths = []
    for name, content, _ in malformed.CASES[kind]:
        path = folder / name
        path.write_bytes(content.encode() if isinstance(content, str) else content)
        paths.append(path)
    wrong = []
    for (name, _, message), found in zip(malformed.CASES[kind], opened(paths)):
        text = found["error"]
        if message is None and text is None:
            continue
        # A file in an archive is named behind the archive, in the same quotes.
        end = message if message and message.startswith("/") else f"'{message or '[:,] '}"
        pattern = rf"Proxy error\(ImportException\): file '{re.escape(found['path'])}{end}.+"
        if text is None or not re.match(pattern, text, re.DOTALL):
            wrong.append(f"{name}: {'opened' if text is None else text.replace(str(folder), '')[:200]}")
    assert not wrong, "\n".join(wrong)
    assert sorted(each.name for each in folder.iterdir()) == sorted([path.name for path in paths] + ["link.bin"])


def mutation(content: bytes, chance: random.Random) -> bytes:
    """The content with one to four changes: bytes replaced, dropped, doubled, cut off, numbers made extreme."""
    changed = bytearray(content)
    for _ in range(chance.randint(1, 4)):
        at = chance.randrange(len(changed) + 1)
        size = chance.choice([1, 1, 2, 4, 8, 40])
        kind = chance.randrange(7)
        if kind == 0:
            changed[at : at + size] = chance.randbytes(len(changed[at : at + size]))
        elif kind == 1:
            del changed[at : at + size]
        elif kind == 2:
            changed[at:at] = changed[at : at + size] * chance.choice([1, 2, 50])
        elif kind == 3:
            del changed[at:]
        elif kind == 4:
            changed[at : at + 4] = chance.choice([b"\xff\xff\xff\xff", b"\xff\xff\xff\x7f", b"\0\0\0\x80", b"\0\0\0\0"])
        elif kind == 5:
            numbers = list(re.finditer(rb"\d+", changed))
            if numbers:
                one = chance.choice(numbers)
                changed[one.start() : one.end()] = chance.choice([b"-1", b"0", b"4294967295", b"1e400", b"9" * 30])
        else:
            changed[at:at] = chance.choice([b"\0", b"\n", b" ", b'"', b"[", b"}", b"\\\n", b"\xef\xbb\xbf", b"#"])
    return bytes(changed)


@pytest.mark.parametrize("name", list(malformed.VALID))
def test_mutations(name: str, tmp_path: Path) -> None:
    needs(name.rpartition(".")[2])
    content = malformed.VALID[name]
    whole = tmp_path / name
    whole.write_bytes(content)
    assert opened([whole])[0]["error"] is None

    chance = random.Random(f"mutations of {name}")
    paths = []
    for number in range(MUTATIONS):
        path = tmp_path / f"{number}-{name}"
        path.write_bytes(mutation(content, chance))
        paths.append(path)
    refused = 0
    for found in opened(paths, 300):
        if found["error"] is not None:
            refused += 1
            assert found["error"].startswith(f"Proxy error(ImportException): file '{found['path']}'"), found
    assert refused > MUTATIONS // 20


def assets() -> List[Any]:
    folder = os.environ.get("VELBOR_ASSETS")
    if folder is None:
        return [pytest.param(None, marks=pytest.mark.skip(reason="VELBOR_ASSETS names no folder with real files"))]
    kinds = {".obj", ".stl", ".ply", ".gltf", ".glb"}
    return sorted(path for path in Path(folder, "bad").iterdir() if path.suffix in kinds)


# Files that hold a whole valid part, or a valid file of another format, open as far as they go.
MAY_OPEN = {"header_only.stl", "index_oob.obj", "wrong_extension.obj", "count_4g.stl"}


@pytest.mark.parametrize("path", assets(), ids=lambda path: getattr(path, "name", None))
def test_real_files_made_malformed(path: Path) -> None:
    needs(path.suffix[1:])
    (found,) = opened([path], 30)
    if found["error"] is None:
        assert path.name in MAY_OPEN
    else:
        assert found["error"].startswith(f"Proxy error(ImportException): file '{path}'")
        assert len(found["error"]) > len(str(path)) + 60


# --- saves that fail ------------------------------------------------------------------------------------------

SAVE = """
    import io, os, resource, sys
    from velbor.voxlar import FileFormat, Node, Scene
    from velbor.voxlar.entities import Sphere
    scene = Scene()
    for i in range(20):
        scene.root_node.create_child_node(str(i), Sphere())
"""


def in_a_child(script: str, folder: Path) -> "subprocess.CompletedProcess[str]":
    return subprocess.run(
        [sys.executable, "-c", textwrap.dedent(SAVE) + textwrap.dedent(script)],
        capture_output=True,
        text=True,
        cwd=folder,
        timeout=60,
        check=False,
    )


@pytest.mark.parametrize("extension", WRITTEN)
def test_a_full_disk_leaves_nothing(extension: str, tmp_path: Path) -> None:
    if not BUILT[extension].can_export:
        pytest.skip(f"writing .{extension} is not built yet")
    (tmp_path / f"old.{extension}").write_bytes(b"old")
    result = in_a_child(
        f"""
        resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))
        for name in ("new.{extension}", "old.{extension}"):
            try:
                scene.save(name)
                print("saved")
            except RuntimeError as error:
                print(error)
        """,
        tmp_path,
    )
    assert result.returncode == 0, result.stderr
    lines = result.stdout.splitlines()
    for name, line in zip(("new", "old"), lines):
        assert line.startswith(f"Proxy error(ExportException): file '{name}.{extension}': it cannot be written: "), line
    assert len(lines) == 2
    assert [path.name for path in tmp_path.iterdir()] == [f"old.{extension}"]
    assert (tmp_path / f"old.{extension}").read_bytes() == b"old"


@pytest.mark.parametrize("extension", WRITTEN)
def test_a_folder_that_is_read_only_stays_as_it_is(extension: str, tmp_path: Path) -> None:
    if not BUILT[extension].can_export:
        pytest.skip(f"writing .{extension} is not built yet")
    folder = tmp_path / "folder"
    folder.mkdir()
    old = folder / f"old.{extension}"
    old.write_bytes(b"old")
    os.chmod(old, 0o444)
    os.chmod(folder, 0o555)
    result = in_a_child(
        f"""
        # Root may write everywhere, so its privileges are given up; the folders above may be closed to others then.
        if os.getuid() == 0:
            os.setresuid(65534, 65534, 65534)
        for name in ("new.{extension}", "old.{extension}"):
            try:
                scene.save("/proc/self/cwd/" + name)
                print("saved")
            except RuntimeError as error:
                print(error)
        """,
        folder,
    )
    os.chmod(folder, 0o755)
    assert result.returncode == 0, result.stderr
    lines = result.stdout.splitlines()
    for name, line in zip(("new", "old"), lines):
        start = f"Proxy error(ExportException): file '/proc/self/cwd/{name}.{extension}': it cannot be written: "
        assert line.startswith(start), line
        assert "denied" in line
    assert len(lines) == 2
    assert [path.name for path in folder.iterdir()] == [f"old.{extension}"]
    assert old.read_bytes() == b"old"


class Full(io.RawIOBase):
    """A stream on a disk that is full after some bytes."""

    def __init__(self, room: int) -> None:
        self.room = room
        self.content = b""

    def writable(self) -> bool:
        return True

    def write(self, data: Any) -> int:
        content = bytes(data)
        if len(content) > self.room - len(self.content):
            raise OSError(28, "No space left on device")
        self.content += content
        return len(content)


def box_scene() -> Scene:
    scene = Scene()
    scene.root_node.create_child_node("box", Box())
    return scene


@pytest.mark.parametrize("extension", WRITTEN)
def test_a_stream_that_is_full(extension: str) -> None:
    if not BUILT[extension].can_export:
        pytest.skip(f"writing .{extension} is not built yet")
    stream = Full(10)
    with pytest.raises(RuntimeError) as caught:
        box_scene().save(stream, BUILT[extension])
    assert "No space left on device" in str(caught.value)
    assert "OSError" in str(caught.value)
    roomy = Full(1 << 20)
    box_scene().save(roomy, BUILT[extension])
    assert roomy.content


def test_a_save_that_is_refused_midway(tmp_path: Path) -> None:
    """Side files that would lie elsewhere, and file systems that cannot be written, are refused."""
    for name in ("../outside.bin", "/tmp/velbor-outside.bin", "a/../../outside.bin"):
        options = GltfSaveOptions(FileFormat.GLTF2)
        options.embed_assets = False
        options.buffer_file = name
        with pytest.raises(RuntimeError, match=r"^Proxy error\(ExportException\): file '.*/scene\.gltf': .+"):
            box_scene().save(str(tmp_path / "scene.gltf"), options)
        assert not list(tmp_path.iterdir())
        assert not os.path.exists("/tmp/velbor-outside.bin")

    with MemoryFileSystem() as memory:
        options = GltfSaveOptions(FileFormat.GLTF2)
        options.embed_assets = False
        options.buffer_file = "../outside.bin"
        options.file_system = memory
        with pytest.raises(RuntimeError, match=r"^Proxy error\("):
            box_scene().save(io.BytesIO(), options)
        assert len(memory.file_names) == 0


def test_what_is_no_archive(tmp_path: Path) -> None:
    path = tmp_path / "no.zip"
    path.write_bytes(b"PK no archive")
    with pytest.raises(RuntimeError, match=r"^Proxy error\("), ZipArchiveFileSystem(str(path)) as files:
        files.read_file("x", None)
