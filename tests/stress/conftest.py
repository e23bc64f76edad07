"""What is counted while a loop runs: managed objects, Python references and memory."""

from __future__ import annotations

import gc
import sys
from pathlib import Path
from typing import Callable

import pytest

import velbor.voxlar  # noqa: F401  starts the runtime
from velbor import pygc

Repeat = Callable[..., None]

LEAST_LEAK = 48  # bytes that one leaking operation would at least leave


def settle() -> None:
    """Ends what is unreachable on both sides."""
    for _ in range(3):
        gc.collect()
        pygc.collect()


def resident() -> int:
    """Kilobytes of memory that the process has resident."""
    return int(Path("/proc/self/statm").read_text(encoding="ascii").split()[1]) * 4


@pytest.fixture
def repeat() -> Repeat:
    """Runs an operation many times; nothing may have grown afterwards, but for bytes known to be left."""

    def run(
        operation: Callable[[], object], times: int = 2000, watched: object = None, left: int = 0
    ) -> None:
        for _ in range(times // 4):
            operation()
        settle()
        handles, references = pygc.living_handles(), sys.getrefcount(watched)
        growths = []
        for _ in range(8):
            before = resident()
            for _ in range(times):
                operation()
            settle()
            growths.append(resident() - before)
            # The runtime's own heaps and its compiler grow by fits and starts; a leak grows in every round.
            if growths[-1] * 1024 < times * (LEAST_LEAK + left):
                break
        else:
            pytest.fail(f"each round took more memory, in kB: {growths}")
        assert pygc.living_handles() == handles
        if watched is not None:
            assert sys.getrefcount(watched) == references

    return run
