"""What tests over the real runtime share."""

from __future__ import annotations

import gc
from typing import Iterator

import pytest


def settle() -> None:
    """Lets both collectors run. A Python list that was handed to managed code keeps its items until then, and giving
    one back may free what holds the next."""
    from velbor import pygc

    for _ in range(3):
        gc.collect()
        pygc.collect()


@pytest.fixture
def no_handle_is_left() -> Iterator[None]:
    """Counts the living handles before and after a test."""
    import velbor.voxlar  # noqa: F401  starts the runtime
    from velbor import pygc

    settle()
    before = pygc.living_handles()
    yield
    settle()
    assert pygc.living_handles() == before
