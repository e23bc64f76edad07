"""Contract tests: the real module over a scripted managed side, without any .NET."""

from __future__ import annotations

import gc
import sys
from pathlib import Path
from typing import Any, Iterator

import pytest

_HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(_HERE))

import scripted  # noqa: E402


@pytest.fixture(scope="session")
def managed_session() -> scripted.ManagedSide:
    """The scripted side, installed before the module's import, once a process."""
    try:
        return scripted.install()
    except LookupError as error:
        pytest.exit(str(error), 2)
        raise


@pytest.fixture
def managed(managed_session: scripted.ManagedSide) -> Iterator[scripted.ManagedSide]:
    """The scripted side for one test: handles that the test leaves living, or frees twice, fail it."""
    managed_session.reset()
    before = set(managed_session.living)
    yield managed_session
    faults = list(managed_session.faults)
    # An exception of the script holds the frames that it passed, and so the wrappers in them.
    managed_session.reset()
    gc.collect()
    leaked = managed_session.living - before
    assert not leaked, f"handles left living: {sorted(leaked)}"
    assert not faults, faults


@pytest.fixture
def voxlar(managed: scripted.ManagedSide) -> Any:
    """The module under test."""
    return sys.modules["velbor.voxlar"]
