"""Readies the process for the first import of `velbor.voxlar`, and makes its submodules importable by name."""

from __future__ import annotations

import importlib.abc
import importlib.machinery
import os
import sys
from pathlib import Path
from types import ModuleType
from typing import Optional, Sequence

SUBMODULES = ("animation", "deformers", "entities", "formats", "profiles", "render", "shading", "utilities")

_MODULE = "velbor.voxlar"
_PACKAGE = Path(__file__).resolve().parent
_NETCORE_DIR = "NETCORE_WRAPPER_NETCORE_DIR_velbor"
_ASSEMBLY_DIR = "NETCORE_WRAPPER_ASSEMBLY_DIR_velbor"


def ready_environment() -> None:
    """Sets the two folder variables where they are not set, and refuses what would end the process.

    Raises ImportError when no usable .NET runtime, no wrap library or no managed assembly is found.
    """
    from velbor import _runtime_finder

    if not os.environ.get(_NETCORE_DIR):
        os.environ[_NETCORE_DIR] = str(_PACKAGE / "_runtime")
    if not os.environ.get(_ASSEMBLY_DIR):
        os.environ[_ASSEMBLY_DIR] = str(_PACKAGE / "_assemblies")
    _runtime_finder.check(Path(os.environ[_NETCORE_DIR]), Path(os.environ[_ASSEMBLY_DIR]))


class _VoxlarLoader(importlib.abc.Loader):
    """Loads the extension module with the environment made ready, and registers its submodules."""

    def __init__(self, inner: importlib.abc.Loader) -> None:
        self._inner = inner

    def create_module(self, spec: importlib.machinery.ModuleSpec) -> Optional[ModuleType]:
        ready_environment()
        return self._inner.create_module(spec)

    def exec_module(self, module: ModuleType) -> None:
        self._inner.exec_module(module)
        for name in SUBMODULES:
            sys.modules[f"{_MODULE}.{name}"] = getattr(module, name)

    def __getattr__(self, name: str) -> object:
        # Tools ask loaders for get_filename, get_code and the like.
        return getattr(self._inner, name)


class _VoxlarFinder(importlib.abc.MetaPathFinder):
    """Finds `velbor.voxlar` where it is, and lets the loader above load it."""

    def find_spec(
        self, fullname: str, path: Optional[Sequence[str]], target: Optional[ModuleType] = None
    ) -> Optional[importlib.machinery.ModuleSpec]:
        if fullname != _MODULE:
            return None
        spec = importlib.machinery.PathFinder.find_spec(fullname, path, target)
        if spec is not None and isinstance(spec.loader, importlib.machinery.ExtensionFileLoader):
            spec.loader = _VoxlarLoader(spec.loader)
        return spec


def install() -> None:
    """Puts the finder before the ordinary ones, once."""
    if not any(isinstance(finder, _VoxlarFinder) for finder in sys.meta_path):
        sys.meta_path.insert(0, _VoxlarFinder())
