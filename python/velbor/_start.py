"""Readies the process for the first import of `velbor.voxlar`, and makes its submodules importable by name."""

from __future__ import annotations

import os
import sys
from importlib.machinery import ExtensionFileLoader, PathFinder

# Every import here is paid by each start, so only what the interpreter has loaded anyway is used; `typing` and
# `importlib.abc` alone would cost more than the search for the runtime.
TYPE_CHECKING = False
if TYPE_CHECKING:
    from importlib.machinery import ModuleSpec
    from types import ModuleType
    from typing import Any, Optional, Sequence

SUBMODULES = ("animation", "deformers", "entities", "formats", "profiles", "render", "shading", "utilities")

_MODULE = "velbor.voxlar"
_PACKAGE = os.path.dirname(os.path.realpath(__file__))
_NETCORE_DIR = "NETCORE_WRAPPER_NETCORE_DIR_velbor"
_ASSEMBLY_DIR = "NETCORE_WRAPPER_ASSEMBLY_DIR_velbor"


def ready_environment() -> None:
    """Sets the two folder variables where they are not set, and refuses what would end the process.

    Raises ImportError when no usable .NET runtime, no wrap library or no managed assembly is found.
    """
    from velbor import _runtime_finder

    if not os.environ.get(_NETCORE_DIR):
        os.environ[_NETCORE_DIR] = os.path.join(_PACKAGE, "_runtime")
    if not os.environ.get(_ASSEMBLY_DIR):
        os.environ[_ASSEMBLY_DIR] = os.path.join(_PACKAGE, "_assemblies")
    _runtime_finder.check(os.environ[_NETCORE_DIR], os.environ[_ASSEMBLY_DIR])


class _VoxlarLoader:
    """Loads the extension module with the environment made ready, and registers its submodules."""

    def __init__(self, inner: Any) -> None:
        self._inner = inner

    def create_module(self, spec: ModuleSpec) -> Optional[ModuleType]:
        ready_environment()
        module: Optional[ModuleType] = self._inner.create_module(spec)
        return module

    def exec_module(self, module: ModuleType) -> None:
        self._inner.exec_module(module)
        for name in SUBMODULES:
            sys.modules[f"{_MODULE}.{name}"] = getattr(module, name)

    def __getattr__(self, name: str) -> object:
        # Tools ask loaders for get_filename, get_code and the like.
        return getattr(self._inner, name)


class _VoxlarFinder:
    """Finds `velbor.voxlar` where it is, and lets the loader above load it."""

    def find_spec(
        self, fullname: str, path: Optional[Sequence[str]], target: Optional[ModuleType] = None
    ) -> Optional[ModuleSpec]:
        if fullname != _MODULE:
            return None
        spec = PathFinder.find_spec(fullname, path, target)
        if spec is not None and isinstance(spec.loader, ExtensionFileLoader):
            spec.loader = _VoxlarLoader(spec.loader)  # type: ignore[assignment]
        return spec


def install() -> None:
    """Puts the finder before the ordinary ones, once."""
    if not any(isinstance(finder, _VoxlarFinder) for finder in sys.meta_path):
        sys.meta_path.insert(0, _VoxlarFinder())
