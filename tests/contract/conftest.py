"""Contract tests: the real module over a scripted managed side, without any .NET."""

from __future__ import annotations

import gc
import os
import sys
import types
from pathlib import Path
from typing import Any, Iterator

import pytest

_HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(_HERE))

import scripted  # noqa: E402


def _build_folder() -> Path:
    """The build tree: the folder above the staged package on the path."""
    for entry in sys.path:
        if (Path(entry) / "velbor").is_dir() and (Path(entry).parent / "contract").is_dir():
            return Path(entry).parent
    pytest.exit("no build with a stand-in on PYTHONPATH: run `make test`", 2)
    raise AssertionError


@pytest.fixture(scope="session")
def managed_session() -> scripted.ManagedSide:
    """The scripted side, installed before the module's import, once a process."""
    build = _build_folder()
    standin = scripted.load_standin(build / "contract/netcore10.0/libvelbor.embed.coreclrwrap.so")
    side = scripted.ManagedSide(standin, build / "generated")
    os.environ["NETCORE_WRAPPER_NETCORE_DIR_velbor"] = str(build / "contract")
    os.environ["NETCORE_WRAPPER_ASSEMBLY_DIR_velbor"] = str(build / "contract")
    # The package itself would look for a real runtime.
    package = types.ModuleType("velbor")
    package.__path__ = [str(build / "stage/velbor")]  # type: ignore[attr-defined]
    sys.modules["velbor"] = package
    __import__("velbor.voxlar")
    return side


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
