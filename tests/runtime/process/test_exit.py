"""How a process with a runtime in it ends: with its own exit code, nothing written and no hang."""

from __future__ import annotations

import signal
from typing import Callable

import pytest

LIVE_WRAPPERS = """
from velbor import pyreflection
kept = [pyreflection.Type._type_of() for _ in range(100)]
cycle = [kept[0].base_type]
cycle.append(cycle)
import builtins
builtins.kept_by_builtins = kept[1].base_type
"""


def expect(result, code: int, out: str = "") -> None:
    assert (result.returncode, result.stderr, result.stdout) == (code, "", out)


def test_the_end_of_the_script_with_live_wrappers(run: Callable) -> None:
    expect(run("import velbor.voxlar" + LIVE_WRAPPERS), 0)


def test_an_import_alone(run: Callable) -> None:
    expect(run("import velbor.voxlar"), 0)


def test_sys_exit_keeps_its_code(run: Callable) -> None:
    expect(run("import velbor.voxlar, sys" + LIVE_WRAPPERS + "sys.exit(3)"), 3)


def test_os_exit_keeps_its_code(run: Callable) -> None:
    expect(run("import velbor.voxlar, os" + LIVE_WRAPPERS + "os._exit(5)"), 5)


def test_an_uncaught_exception(run: Callable) -> None:
    result = run("import velbor.voxlar" + LIVE_WRAPPERS + "raise LookupError('ended so')")
    assert result.returncode == 1
    assert result.stderr.splitlines()[-1] == "LookupError: ended so"
    assert "Fatal" not in result.stderr


def test_a_daemon_thread_inside_managed_code(run: Callable) -> None:
    result = run(
        """
        import threading, time, managed
        threading.Thread(target=managed.spin_forever, daemon=True).start()
        time.sleep(0.3)
        """
    )
    expect(result, 0)


def test_a_daemon_thread_that_wakes_in_a_callback_while_python_ends(run: Callable) -> None:
    """Python ends such a thread when it asks for the global lock, with managed frames on its stack."""
    result = run(
        """
        import builtins, io, sys, threading, time
        import velbor.voxlar as voxlar

        class Slow(io.RawIOBase):
            def readable(self): return True
            def seekable(self): return True
            def tell(self): return 0
            def seek(self, offset, whence=0): return 1000 if whence == 2 else 0
            def readinto(self, buffer):
                entered.set()
                time.sleep(0.3)
                print("woken too early")
                return 0

        class EndsLate:
            def __init__(self): self.sleep = time.sleep
            def __del__(self): self.sleep(1.0)

        entered = threading.Event()
        threading.Thread(target=lambda: voxlar.FileFormat.detect(Slow(), "x.obj"), daemon=True).start()
        entered.wait()
        builtins.kept_to_the_end = EndsLate()
        sys.exit(4)
        """
    )
    expect(result, 4)


def test_a_thread_that_has_ended_its_managed_calls(run: Callable) -> None:
    result = run(
        """
        import threading, velbor.voxlar
        from velbor import pyreflection
        thread = threading.Thread(target=lambda: print(pyreflection.Type._type_of().name))
        thread.start()
        thread.join()
        """
    )
    expect(result, 0, "Type\n")


@pytest.mark.parametrize("keeps_lock", [False, True])
def test_environment_exit(run: Callable, keeps_lock: bool) -> None:
    expect(run(f"import managed{LIVE_WRAPPERS}managed.exit_process(7, {keeps_lock})"), 7)


def test_environment_exit_on_another_thread(run: Callable) -> None:
    result = run(
        """
        import threading, time, managed
        threading.Thread(target=managed.exit_process, args=(9,)).start()
        time.sleep(60)
        """
    )
    expect(result, 9)


def test_environment_exit_while_the_main_thread_ends(run: Callable) -> None:
    for _ in range(5):
        result = run(
            """
            import sys, threading, managed
            threading.Thread(target=managed.exit_process, args=(9,), daemon=True).start()
            sys.exit(3)
            """
        )
        assert result.returncode in (3, 9)
        assert (result.stdout, result.stderr) == ("", "")


def test_live_wrappers_of_a_scene(run: Callable) -> None:
    result = run(
        """
        from velbor.voxlar import Scene
        from velbor.voxlar.entities import Box
        from velbor.voxlar.utilities import Vector3
        scene = Scene()
        nodes = [scene.root_node.create_child_node(f"box{i}", Box(1.0, 2.0, 3.0)) for i in range(50)]
        nodes[0].transform.translation = Vector3(1.0, 2.0, 3.0)
        children = iter(scene.root_node.child_nodes)
        next(children)
        held = [nodes, children]
        held.append(held)
        """
    )
    expect(result, 0)


def test_a_shutdown_asked_for_twice(run: Callable) -> None:
    result = run(
        """
        import managed
        print(managed.wrap.coreclr_wrap_shutdown(), managed.wrap.coreclr_wrap_shutdown())
        """
    )
    expect(result, 0, "0 1\n")


def test_a_termination_signal_ends_the_process(run: Callable) -> None:
    result = run("import velbor.voxlar, os, signal; os.kill(os.getpid(), signal.SIGTERM)")
    expect(result, -signal.SIGTERM)


def test_faulthandler_enabled_before_the_import(run: Callable) -> None:
    expect(run("import velbor.voxlar" + LIVE_WRAPPERS, "-X", "faulthandler"), 0)


def test_wrappers_that_die_in_exit_handlers(run: Callable) -> None:
    result = run(
        """
        import atexit, velbor.voxlar
        from velbor import pyreflection
        kept = [pyreflection.Type._type_of()]
        @atexit.register
        def late():
            print(kept.pop().name, pyreflection.Type._type_of().full_name)
        """
    )
    expect(result, 0, "Type System.Type\n")
