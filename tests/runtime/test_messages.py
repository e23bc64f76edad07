"""What a user reads when a call is wrong: each refusal with its exact text."""

from __future__ import annotations

import io
import os
import pathlib
import subprocess
import sys
import textwrap
from pathlib import Path
from typing import Any, Callable

import pytest
import velbor
import velbor.voxlar as voxlar
from velbor.voxlar import FileFormat, Node, Scene
from velbor.voxlar.entities import Box, Geometry, Mesh
from velbor.voxlar.formats import LoadOptions
from velbor.voxlar.utilities import Vector3


@pytest.fixture(autouse=True)
def in_an_own_folder(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> Path:
    monkeypatch.chdir(tmp_path)
    return tmp_path


def refusal(call: Callable[[], Any]) -> tuple[type, tuple[Any, ...]]:
    """The exact class and arguments of what a call raises."""
    with pytest.raises(Exception) as caught:  # noqa: PT011  the class is what is looked at
        call()
    return type(caught.value), caught.value.args


def in_a_child(script: str, seconds: float = 20) -> "subprocess.CompletedProcess[str]":
    return subprocess.run(
        [sys.executable, "-c", textwrap.dedent(script)],
        capture_output=True,
        text=True,
        timeout=seconds,
        check=False,
    )


# --- files that cannot be read ------------------------------------------------------------------------------

READERS = {
    "constructor": Scene,
    "open": lambda name: Scene().open(name),
    "from_file": Scene.from_file,
    "detect": FileFormat.detect,
}


@pytest.fixture(params=READERS, ids=list(READERS))
def read(request: pytest.FixtureRequest) -> Callable[[str], Any]:
    return READERS[request.param]


def test_a_path_that_does_not_exist(read: Callable[[str], Any], tmp_path: Path) -> None:
    here = os.path.realpath(tmp_path)
    assert refusal(lambda: read("missing.glb")) == (
        RuntimeError,
        (
            "Proxy error(ImportException): file 'missing.glb': there is no such file. ---> "
            f"FileNotFoundException: Could not find file '{here}/missing.glb'.",
        ),
    )
    assert refusal(lambda: read("no/such/folder.glb")) == (
        RuntimeError,
        (
            "Proxy error(ImportException): file 'no/such/folder.glb': there is no such file. ---> "
            f"DirectoryNotFoundException: Could not find a part of the path '{here}/no/such/folder.glb'.",
        ),
    )


def test_a_link_to_nothing(read: Callable[[str], Any], tmp_path: Path) -> None:
    os.symlink("nowhere", "dangling.glb")
    assert refusal(lambda: read("dangling.glb")) == (
        RuntimeError,
        (
            "Proxy error(ImportException): file 'dangling.glb': there is no such file. ---> "
            f"FileNotFoundException: Could not find file '{os.path.realpath(tmp_path)}/dangling.glb'.",
        ),
    )


def test_a_folder(read: Callable[[str], Any]) -> None:
    os.mkdir("folder.glb")
    message = "Proxy error(ImportException): file 'folder.glb': it is a folder."
    assert refusal(lambda: read("folder.glb")) == (RuntimeError, (message,))


def test_an_empty_name(read: Callable[[str], Any]) -> None:
    message = "Proxy error(ImportException): The name of the file to read is empty."
    assert refusal(lambda: read("")) == (RuntimeError, (message,))


def test_a_name_with_a_null_character(read: Callable[[str], Any]) -> None:
    kind, (message,) = refusal(lambda: read("a\0b.glb"))
    assert kind is RuntimeError
    assert message.startswith("Proxy error(ImportException): file 'a\0b.glb': it cannot be opened: Null character in path.")


def test_a_name_that_is_too_long(read: Callable[[str], Any]) -> None:
    name = "x" * 5000 + ".glb"
    kind, (message,) = refusal(lambda: read(name))
    assert kind is RuntimeError
    assert message.startswith(f"Proxy error(ImportException): file '{name}': it cannot be opened: ")


@pytest.mark.parametrize("open_", [Scene, lambda name: Scene().open(name), Scene.from_file])
def test_an_unknown_content(open_: Callable[[str], Any]) -> None:
    Path("hello.unknown").write_text("hello")
    Path("hello").write_text("hello")
    Path("empty.glb").touch()
    text = "Proxy error(ImportException): file '{}': {}"
    for name, reason in (
        ("hello.unknown", "neither its content nor the extension '.unknown' tells a known format."),
        ("hello", "its content tells no known format."),
        ("empty.glb", "it is empty."),
    ):
        assert refusal(lambda: open_(name)) == (RuntimeError, (text.format(name, reason),))
    assert FileFormat.detect("hello.unknown") is None


def test_an_unreadable_file() -> None:
    """Root may read everything, so the child gives its privileges up first."""
    Path("secret.glb").write_bytes(b"glTF")
    os.chmod("secret.glb", 0)
    os.chmod(".", 0o755)
    result = in_a_child(
        """
        import os
        from velbor.voxlar import Scene
        if os.getuid() == 0:
            # The folders above may be closed to other users, so the file is reached through the open folder.
            folder = os.open(".", os.O_RDONLY)
            os.fchdir(folder)
            os.setresuid(65534, 65534, 65534)
        try:
            Scene("/proc/self/cwd/secret.glb")
        except RuntimeError as error:
            print(error)
        """
    )
    assert result.stdout == (
        "Proxy error(ImportException): file '/proc/self/cwd/secret.glb': reading it is not allowed. ---> "
        "UnauthorizedAccessException: "
        "Access to the path '/proc/self/cwd/secret.glb' is denied. ---> IOException: Permission denied\n"
    ), result.stderr


def test_a_pipe_is_read_to_its_end() -> None:
    """A managed call keeps Python's other threads waiting, so the writer is a process of its own."""
    scene = Scene()
    scene.root_node.create_child_node("through a pipe", Box())
    scene.save("box.glb")
    os.mkfifo("pipe.glb")
    result = in_a_child(
        """
        import subprocess
        from velbor.voxlar import Scene
        for name in ("box.glb", "/dev/null"):
            feeder = subprocess.Popen(["sh", "-c", 'exec cat "$0" > pipe.glb', name])
            try:
                print(Scene("pipe.glb").root_node.child_nodes[0].name)
            except RuntimeError as error:
                print(error)
            feeder.wait()
        """
    )
    assert result.stdout == (
        "through a pipe\nProxy error(ImportException): file 'pipe.glb': it is empty.\n"
    ), result.stderr


# --- files that cannot be written ---------------------------------------------------------------------------


def test_names_that_cannot_be_written(tmp_path: Path) -> None:
    os.mkdir("folder.glb")
    here = os.path.realpath(tmp_path)
    text = "Proxy error(ExportException): file '{}': {}"
    for name, reason in (
        (
            "missing/box.glb",
            f"it cannot be written: there is no folder '{here}/missing'. ---> "
            f"DirectoryNotFoundException: there is no folder '{here}/missing'",
        ),
        ("folder.glb", "it is a folder."),
        ("box.unknown", "the extension '.unknown' tells no known format."),
        ("box", "it has no extension that tells a format."),
        ("box.pdf", "writing the format PDF is not supported."),
    ):
        kind, (message,) = refusal(lambda: Scene().save(name))
        assert (kind, message) == (RuntimeError, text.format(name, reason))
    kind, (message,) = refusal(lambda: Scene().save(""))
    assert message == "Proxy error(ExportException): The name of the file to write is empty."
    kind, (message,) = refusal(lambda: Scene().save("a\0b.glb"))
    assert message.startswith("Proxy error(ExportException): file 'a\0b.glb': it cannot be written: Null character")
    assert os.listdir() == ["folder.glb"]


def test_no_name() -> None:
    message = "Proxy error(ArgumentNullException): Value cannot be null. (Parameter 'fileName')"
    assert refusal(lambda: Scene().save(None)) == (RuntimeError, (message,))
    # None fits the first overload that takes an object: the one with a stream.
    message = "Proxy error(ArgumentNullException): Value cannot be null. (Parameter 'stream')"
    assert refusal(lambda: Scene().open(None)) == (RuntimeError, (message,))


# --- arguments of the wrong kind ----------------------------------------------------------------------------

STREAM, STRING = "can't build Stream from '{}'", "can't build String from '{}'"


@pytest.mark.parametrize(
    ("value", "name"),
    [(pathlib.PurePosixPath("a.glb"), "PurePosixPath"), (b"a.glb", "bytes"), (1, "int"), (1.0, "float"), ([], "list")],
)
def test_a_file_name_that_is_no_string(value: Any, name: str) -> None:
    """Nothing but a string names a file: a path object or bytes is refused like any other object."""
    stream, string = STREAM.format(name), STRING.format(name)
    assert refusal(lambda: Scene().save(value)) == (TypeError, ([stream, stream, string, string, string],))
    assert refusal(lambda: Scene().open(value)) == (TypeError, ([stream, string, string],))
    assert refusal(lambda: Scene(value)) == (
        TypeError,
        (
            [
                "function takes at most 0 arguments (1 given)",
                f"can't build Entity value from '{name}'",
                f"can't build Scene value from '{name}'",
                string,
            ],
        ),
    )
    assert refusal(lambda: FileFormat.get_format_by_extension(value)) == (TypeError, (string,))


def set_attribute(owner: Callable[[], Any], name: str, value: Any) -> Callable[[], None]:
    return lambda: setattr(owner(), name, value)


def delete_attribute(owner: Callable[[], Any], name: str) -> Callable[[], None]:
    return lambda: delattr(owner(), name)


SINGLE = {
    "None where a struct is needed": (
        set_attribute(lambda: Node().transform, "translation", None),
        "can't build Vector3 value from 'NoneType'",
    ),
    "a tuple where a struct is needed": (
        set_attribute(lambda: Node().transform, "translation", (1.0, 2.0, 3.0)),
        "can't build Vector3 value from 'tuple'",
    ),
    "an int where a float is needed": (set_attribute(Box, "length", 1), "can't build 'Double' from 'int'"),
    "a string where a float is needed": (set_attribute(Box, "length", "1"), "can't build 'Double' from 'str'"),
    "None where a float is needed": (set_attribute(Box, "length", None), "can't build 'Double' from 'NoneType'"),
    "a float where an int is needed": (
        set_attribute(Box, "length_segments", 1.0),
        "can't build 'Int32' from 'float'",
    ),
    "a bool where an int is needed": (set_attribute(Box, "length_segments", True), "can't build 'Int32' from 'bool'"),
    "an int where a bool is needed": (set_attribute(Node, "visible", 1), "can't build bool from 'int'"),
    "an int where a string is needed": (set_attribute(Node, "name", 3), "can't build String from 'int'"),
    "an int where an enum is needed": (
        set_attribute(lambda: Scene().asset_info, "up_vector", 0),
        "can't build Axis value from 'int'",
    ),
    "a string where a time is needed": (
        set_attribute(lambda: Scene().asset_info, "creation_time", "now"),
        "can't build DateTime from 'str'",
    ),
    "an object of another class": (
        set_attribute(Node, "entity", Node("other")),
        "can't build Entity value from 'velbor.voxlar.Node'",
    ),
    "a struct of another kind in a list": (
        lambda: Mesh().control_points.append(Vector3(1.0, 2.0, 3.0)),
        "can't build Vector4 value from 'velbor.voxlar.utilities.Vector3'",
    ),
    "a value without a managed form": (lambda: Node().set_property("p", {}), "unknown variant type"),
    "too few arguments": (
        lambda: Node().find_property(),
        "function missing required argument 'property_name' (pos 1)",
    ),
    "too many arguments": (
        lambda: Node().find_property("a", "b"),
        "function takes at most 1 argument (2 given)",
    ),
    "a constructor that is not there": (voxlar.SceneObject, "type has no available constructor"),
    "options that are abstract": (LoadOptions, "type has no available constructor"),
    "a constructor without its argument": (Geometry, "function missing required argument 'name' (pos 1)"),
    "a deleted attribute": (delete_attribute(Node, "name"), "can't delete attribute"),
    "what is no wrapper": (lambda: velbor.actual(3), "'int' is no wrapper of a managed object"),
}


@pytest.mark.parametrize("case", SINGLE, ids=list(SINGLE))
def test_a_refused_argument(case: str) -> None:
    call, message = SINGLE[case]
    assert refusal(call) == (TypeError, (message,))


OVERLOADED = {
    "no arguments": (
        lambda: Scene().open(),
        [
            "function missing required argument 'stream' (pos 1)",
            "function missing required argument 'file_name' (pos 1)",
            "function missing required argument 'file_name' (pos 1)",
        ],
    ),
    "too many arguments": (
        lambda: Scene().open(1, 2, 3, 4),
        [
            "function takes at most 1 argument (4 given)",
            "function takes at most 2 arguments (4 given)",
            "function takes at most 1 argument (4 given)",
        ],
    ),
    "too many arguments of a constructor": (
        lambda: Scene(1, 2, 3),
        [
            "function takes at most 0 arguments (3 given)",
            "function takes at most 1 argument (3 given)",
            "function takes at most 2 arguments (3 given)",
            "function takes at most 1 argument (3 given)",
        ],
    ),
    "ints for doubles": (
        lambda: Vector3(1, 2, 3),
        [
            "can't build 'Double' from 'int'",
            "function takes at most 1 argument (3 given)",
            "function takes at most 1 argument (3 given)",
            "function takes at most 1 argument (3 given)",
            "function takes at most 0 arguments (3 given)",
        ],
    ),
    "a text stream": (
        lambda: Scene().open(io.StringIO("text")),
        [
            "can't build Stream from '_io.StringIO'",
            "can't build String from '_io.StringIO'",
            "can't build String from '_io.StringIO'",
        ],
    ),
}


@pytest.mark.parametrize("case", OVERLOADED, ids=list(OVERLOADED))
def test_refused_by_every_overload(case: str) -> None:
    call, messages = OVERLOADED[case]
    assert refusal(call) == (TypeError, (messages,))


def test_an_unknown_keyword() -> None:
    """Python's own argument parser reports a missing argument before an unknown keyword."""
    kind, (message,) = refusal(lambda: Node().find_property(nope="a"))
    assert (kind, message) == (TypeError, "function missing required argument 'property_name' (pos 1)")
    kind, (messages,) = refusal(lambda: Scene(nope=1))
    assert kind is TypeError
    assert messages[1:] == [
        "function missing required argument 'entity' (pos 1)",
        "function missing required argument 'parent_scene' (pos 1)",
        "function missing required argument 'file_name' (pos 1)",
    ]
    kind, (messages,) = refusal(lambda: Scene().save("a.glb", nope=1))
    assert kind is TypeError
    assert messages[2] == "function takes at most 1 argument (2 given)"
    assert not os.listdir()


def test_attributes() -> None:
    node = Node()
    assert refusal(lambda: setattr(node, "child_nodes", None)) == (
        AttributeError,
        ("attribute 'child_nodes' of 'velbor.voxlar.Node' objects is not writable",),
    )
    assert refusal(lambda: delattr(node, "scene")) == (
        AttributeError,
        ("attribute 'scene' of 'velbor.voxlar.SceneObject' objects is not writable",),
    )
    for call in (lambda: node.nope, lambda: setattr(node, "nope", 1)):
        kind, (message,) = refusal(call)
        assert (kind, message) == (AttributeError, "'velbor.voxlar.Node' object has no attribute 'nope'")
    kind, (message,) = refusal(lambda: setattr(Node, "name", 1))
    assert kind is TypeError
    assert message in (
        "cannot set 'name' attribute of immutable type 'velbor.voxlar.Node'",
        "can't set attributes of built-in/extension type 'velbor.voxlar.Node'",
    )


# --- what the library itself refuses ------------------------------------------------------------------------


def test_refusals_of_the_library() -> None:
    node = Node("n")
    child = node.create_child_node("child")
    circle = "Proxy error(InvalidOperationException): Node '{}' cannot become a child of itself or of a node below it."
    for call, message in (
        (lambda: node.add_child_node(node), circle.format("n")),
        (lambda: child.child_nodes.append(node), circle.format("n")),
        (
            lambda: node.add_child_node(None),
            "Proxy error(ArgumentNullException): Value cannot be null. (Parameter 'item')",
        ),
        (lambda: Scene(None), "Proxy error(ArgumentNullException): Value cannot be null. (Parameter 'entity')"),
    ):
        assert refusal(call) == (RuntimeError, (message,))
    assert refusal(lambda: Mesh().control_points[3]) == (IndexError, ("list index out of range",))
    assert [node.name for node in node.child_nodes] == ["child"]


def test_streams_of_no_known_format() -> None:
    for content, reason in ((b"hello", "its content tells no known format."), (b"", "it is empty.")):
        assert refusal(lambda: Scene().open(io.BytesIO(content))) == (
            RuntimeError,
            (f"Proxy error(ImportException): the stream: {reason}",),
        )


def test_an_exception_of_a_python_stream_is_told_with_its_traceback() -> None:
    class Broken(io.BytesIO):
        def read(self, size: int = -1) -> bytes:
            raise ValueError("the tape broke")

        def readinto(self, buffer: Any) -> int:
            raise ValueError("the tape broke")

    kind, (message,) = refusal(lambda: Scene().open(Broken(b"glTF")))
    assert kind is RuntimeError
    assert message.startswith("Proxy error(")
    assert "ValueError: the tape broke" in message
    assert "Traceback (most recent call last)" in message
