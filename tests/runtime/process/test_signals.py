"""Python keeps its signal handlers: Ctrl-C during a managed call is an ordinary KeyboardInterrupt after it."""

from __future__ import annotations

from typing import Callable


def test_ctrl_c_during_a_long_managed_call(run: Callable) -> None:
    result = run(
        """
        import os, signal, threading, time, managed
        def interrupt():
            time.sleep(0.2)
            os.kill(os.getpid(), signal.SIGINT)
        threading.Thread(target=interrupt).start()
        try:
            for _ in range(50):
                managed.spin(0.5)
            print("never interrupted")
        except KeyboardInterrupt:
            print("interrupted")
        from velbor import pyreflection
        print(pyreflection.Type._type_of().name)
        """
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, "interrupted\nType\n", "")


def test_handlers_set_before_the_import_stay(run: Callable) -> None:
    result = run(
        """
        import os, signal
        seen = []
        numbers = (signal.SIGINT, signal.SIGQUIT, signal.SIGTERM, signal.SIGABRT)
        for number in numbers:
            signal.signal(number, lambda number, frame: seen.append(number))
        import velbor.voxlar
        for number in numbers:
            os.kill(os.getpid(), number)
        print(seen == list(numbers))
        """
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, "True\n", "")


def test_handlers_set_after_the_import_work(run: Callable) -> None:
    result = run(
        """
        import os, signal, velbor.voxlar
        signal.signal(signal.SIGINT, lambda number, frame: print("handled"))
        os.kill(os.getpid(), signal.SIGINT)
        """
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, "handled\n", "")
