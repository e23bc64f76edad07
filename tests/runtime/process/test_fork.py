"""A forked child has the memory of a runtime and none of its threads: it gets errors, and its parent goes on."""

from __future__ import annotations

from typing import Callable

REFUSAL = "managed code is not available in a forked process"

# Forks; the child runs `body` and ends in the ordinary way, the parent waits, works on, and collects.
FORK = """
import gc, os, sys, velbor.voxlar
from velbor import pygc, pyreflection
kept = pyreflection.Type._type_of()
dropped = [kept.base_type for _ in range(100)]
cycle = [kept.base_type]
cycle.append(cycle)
sys.stdout.flush()
child = os.fork()
if child == 0:
{body}
    sys.exit(0)
_, status = os.waitpid(child, 0)
print("child", status)
gc.collect()
pygc.collect()
print(kept.name, pyreflection.Type._type_of().full_name)
"""
PARENT = "child 0\nType System.Type\n"


def forked(run: Callable, body: str) -> str:
    indented = "".join(f"    {line}\n" for line in body.splitlines())
    result = run(FORK.replace("{body}\n", indented))
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout.endswith(PARENT)
    return result.stdout[: -len(PARENT)]


def test_a_child_that_ends_at_once(run: Callable) -> None:
    assert forked(run, "pass") == ""


def test_a_child_that_calls_gets_an_error_each_time(run: Callable) -> None:
    calls = {
        "kept.name": "a text",
        "kept.base_type": "a handle",
        "kept.is_class": "a truth",
        "str(kept)": "a text of any object",
        "hash(kept)": "a hash",
        "kept == dropped[0]": "a comparison",
        "kept.get_type()": "a type",
        "kept.get_interfaces()": "a list",
        "pyreflection.Type._type_of()": "a static call",
        "pyreflection.Object._cast_to(kept)": "a cast",
        "kept.is_assignable_from(kept)": "a question",
        "velbor.voxlar.Scene()": "a constructor whose host was never bound",
        "pygc.collect()": "a collection",
    }
    body = "\n".join(
        f"try:\n    {call}\n    print('no error:', {call!r})\nexcept RuntimeError as error:\n    print(error)"
        for call in calls
    )
    assert forked(run, body) == f"{REFUSAL}\n" * len(calls)


def test_a_child_that_frees_wrappers_and_collects(run: Callable) -> None:
    assert forked(run, "dropped.clear()\ndel cycle, kept\ngc.collect()\nprint('freed')") == "freed\n"


def test_a_child_of_a_child(run: Callable) -> None:
    body = "inner = os.fork()\nif inner == 0:\n    sys.exit(0)\nprint(os.waitpid(inner, 0)[1])"
    assert forked(run, body) == "0\n"


def test_a_child_that_ends_without_its_exit_handlers(run: Callable) -> None:
    assert forked(run, "os._exit(0)") == ""


def test_a_child_that_first_needs_what_its_parent_never_used(run: Callable) -> None:
    result = run(
        """
        import os, sys, velbor.voxlar
        child = os.fork()
        if child == 0:
            from velbor import pygc
            try:
                pygc.collect()
            except RuntimeError as error:
                print(error)
            sys.exit(0)
        print(os.waitpid(child, 0)[1])
        """
    )
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout == f"{REFUSAL}\n0\n"


def test_many_children_while_the_parent_works(run: Callable) -> None:
    result = run(
        """
        import os, velbor.voxlar
        from velbor import pygc, pyreflection
        for _ in range(20):
            child = os.fork()
            if child == 0:
                os._exit(0)
            for _ in range(200):
                pyreflection.Type._type_of().base_type.full_name
            pygc.collect()
            assert os.waitpid(child, 0)[1] == 0
        print("done")
        """
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, "done\n", "")


def test_a_fork_before_the_import_leaves_the_child_free(run: Callable) -> None:
    result = run(
        """
        import os, sys
        child = os.fork()
        import velbor.voxlar
        from velbor import pyreflection
        if child == 0:
            sys.exit(0 if pyreflection.Type._type_of().name == "Type" else 1)
        print(os.waitpid(child, 0)[1], pyreflection.Type._type_of().name)
        """
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, "0 Type\n", "")


def test_siblings_imported_before_the_fork_serve_a_child_with_a_runtime_of_its_own(run: Callable) -> None:
    result = run(
        """
        import os, sys
        from velbor import pygc, pyreflection
        child = os.fork()
        if child == 0:
            try:
                pygc.collect()
            except RuntimeError as error:
                print(error)
            import velbor.voxlar
            pygc.collect()
            print(pyreflection.Type._type_of().name)
            sys.exit(0)
        print(os.waitpid(child, 0)[1])
        """
    )
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout == "the .NET runtime is not started; import velbor.voxlar first\nType\n0\n"


def test_multiprocessing_with_spawn(run: Callable, tmp_path) -> None:
    script = tmp_path / "spawned.py"
    script.write_text(
        "import multiprocessing\n"
        "def name(_):\n"
        "    import velbor.voxlar\n"
        "    from velbor import pyreflection\n"
        "    return pyreflection.Type._type_of().name\n"
        "if __name__ == '__main__':\n"
        "    import velbor.voxlar\n"
        "    with multiprocessing.get_context('spawn').Pool(2) as pool:\n"
        "        print(pool.map(name, range(4)))\n",
        encoding="utf-8",
    )
    result = run(f"import runpy; runpy.run_path({str(script)!r}, run_name='__main__')")
    assert (result.returncode, result.stdout, result.stderr) == (0, "['Type', 'Type', 'Type', 'Type']\n", "")


def test_a_child_with_wrappers_of_a_scene(run: Callable) -> None:
    result = run(
        """
        import gc, os, sys
        from velbor.voxlar import Scene
        from velbor.voxlar.entities import Box
        from velbor.voxlar.utilities import Vector3
        scene = Scene()
        node = scene.root_node.create_child_node("box", Box(1.0, 2.0, 3.0))
        children = iter(scene.root_node.child_nodes)
        vector, other = Vector3(1.0, 2.0, 3.0), Vector3(1.0, 2.0, 3.0)
        child = os.fork()
        if child == 0:
            calls = (lambda: node.name, lambda: setattr(node, "name", "x"), lambda: node.entity, lambda: next(children),
                     lambda: len(scene.root_node.child_nodes), lambda: vector.x, lambda: setattr(vector, "x", 1.0),
                     lambda: Vector3(1.0, 2.0, 3.0), lambda: vector == other, lambda: Scene(),
                     lambda: Box._cast_as(node.entity), lambda: str(node))
            for number, call in enumerate(calls):
                try:
                    call()
                    print("no error:", number)
                except RuntimeError as error:
                    assert str(error) == "managed code is not available in a forked process", error
            del node, children, vector, other, scene
            gc.collect()
            sys.exit(0)
        print("child", os.waitpid(child, 0)[1])
        node.name = "still here"
        print(node.name, vector.x, next(children).name)
        """
    )
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout == "child 0\nstill here 1.0 still here\n"
