"""The two halves together: values, collections, streams and casts over the real runtime."""

from __future__ import annotations

import gc
from typing import Iterator

import pytest

import velbor.voxlar  # noqa: F401  starts the runtime
from velbor import pygc


def settle() -> None:
    """Ends what is unreachable on both sides: a Python list that a managed proxy held may hold wrappers."""
    for _ in range(2):
        gc.collect()
        pygc.collect()


@pytest.fixture(autouse=True)
def no_handle_is_left() -> Iterator[None]:
    """After every test as many managed objects are held as before it."""
    settle()
    before = pygc.living_handles()
    yield
    settle()
    assert pygc.living_handles() == before
