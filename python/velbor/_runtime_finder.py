"""Finds a .NET runtime that can be started in this process, or says why there is none."""

from __future__ import annotations

import os
import re
import shutil
import struct
from pathlib import Path
from typing import Iterator, List, Optional, Set, Tuple

# The managed assemblies are built for this major version; a later one serves them too.
MINIMUM_MAJOR = 10

_WRAP_LIBRARY = "libvelbor.embed.coreclrwrap.so"
_ASSEMBLIES = ("WrpInterop.Velbor.Voxlar.dll", "Velbor.Voxlar.dll")
_FRAMEWORK = Path("shared") / "Microsoft.NETCore.App"
_USUAL_ROOTS = ("/usr/share/dotnet", "/usr/lib/dotnet", "/usr/lib64/dotnet", "/usr/local/share/dotnet", "/opt/dotnet")
_INSTALL_LOCATIONS = ("/etc/dotnet/install_location_x64", "/etc/dotnet/install_location")
_ELF_X86_64 = 62
_ELF_NAMES = {3: "x86", 40: "ARM", 183: "ARM64", 62: "x86-64", 243: "RISC-V"}

# Tells the wrap library where the runtime is when it does not lie in the runtime folder itself.
_CORECLR_PATH = "VELBOR_CORECLR_PATH"

_ADVICE = (
    f"Install the .NET {MINIMUM_MAJOR} runtime (package dotnet-runtime-{MINIMUM_MAJOR}.0), "
    "or set DOTNET_ROOT to the folder of one."
)


def check(netcore_dir: Path, assembly_dir: Path) -> None:
    """Refuses a start that would end the process. Raises ImportError with what is missing and what to do."""
    folder = _wrap_folder(netcore_dir)
    if folder is None:
        raise ImportError(
            f"velbor.voxlar cannot start: the wrap library '{_WRAP_LIBRARY}' was not found in any folder "
            f"'netcore<major>.<minor>' below '{netcore_dir}'. Install the package again, or unset "
            "NETCORE_WRAPPER_NETCORE_DIR_velbor."
        )
    beside = folder / "libcoreclr.so"
    if beside.exists():
        refusal = _refusal(beside)
        if refusal:
            raise ImportError(f"velbor.voxlar cannot start: '{beside}': {refusal}. {_ADVICE}")
    else:
        os.environ[_CORECLR_PATH] = str(find_runtime())
    _check_assemblies(assembly_dir)


def find_runtime() -> Path:
    """The path of the `libcoreclr.so` to start. Raises ImportError that lists each place looked in."""
    looked: List[str] = []
    for source, root in _roots():
        best: Optional[Tuple[Tuple[int, ...], Path]] = None
        framework = root / _FRAMEWORK
        for version, folder in _versions(framework):
            refusal = "the version is too old" if version[0] < MINIMUM_MAJOR else _refusal(folder / "libcoreclr.so")
            if refusal:
                looked.append(f"{folder} ({source}): {refusal}")
            elif best is None or version > best[0]:
                best = (version, folder / "libcoreclr.so")
        if best is not None:
            return best[1]
        if not framework.is_dir():
            looked.append(f"{framework} ({source}): no such folder")
    places = "".join(f"\n  - {place}" for place in looked)
    raise ImportError(f"velbor.voxlar cannot start: no usable .NET runtime was found. Looked in:{places}\n{_ADVICE}")


def _roots() -> Iterator[Tuple[str, Path]]:
    """Where a .NET installation may be, with what says so, each folder once."""
    for variable in ("DOTNET_ROOT_X64", "DOTNET_ROOT"):
        value = os.environ.get(variable)
        if value:
            # Whoever sets the variable wants this runtime: a later place is no silent substitute.
            yield variable, Path(value)
            return
    seen: Set[str] = set()
    for source, root in _places():
        key = os.path.realpath(root)
        if key not in seen:
            seen.add(key)
            yield source, root


def _places() -> Iterator[Tuple[str, Path]]:
    for name in _INSTALL_LOCATIONS:
        try:
            text = Path(name).read_text(encoding="utf-8").strip()
        except OSError:
            continue
        if text:
            yield name, Path(text)
    command = shutil.which("dotnet")
    if command:
        yield "dotnet on PATH", Path(os.path.realpath(command)).parent
    for usual in (*_USUAL_ROOTS, os.path.expanduser("~/.dotnet")):
        yield "usual folder", Path(usual)


def _versions(framework: Path) -> Iterator[Tuple[Tuple[int, ...], Path]]:
    try:
        entries = sorted(framework.iterdir())
    except OSError:
        return
    for entry in entries:
        match = re.match(r"(\d+)\.(\d+)\.(\d+)", entry.name)
        if match:
            # A preview comes below the release of the same number.
            release = 0 if "-" in entry.name else 1
            yield (int(match[1]), int(match[2]), int(match[3]), release), entry


def _refusal(libcoreclr: Path) -> Optional[str]:
    """Why this runtime cannot be started in this process; None when it can."""
    try:
        with open(libcoreclr, "rb") as file:
            header = file.read(20)
    except OSError as error:
        return f"'{libcoreclr.name}' cannot be read ({error.strerror})"
    if len(header) < 20 or header[:4] != b"\x7fELF":
        return f"'{libcoreclr.name}' is no library"
    (machine,) = struct.unpack_from("<H", header, 18)
    if header[4] != 2 or machine != _ELF_X86_64:
        return f"the runtime is for {_ELF_NAMES.get(machine, f'machine {machine}')}, this process is x86-64"
    if not (Path(os.path.realpath(libcoreclr)).parent / "libclrjit.so").is_file():
        return "'libclrjit.so' is missing beside it, and the runtime aborts without it"
    return None


def _wrap_folder(root: Path) -> Optional[Path]:
    """The runtime folder that the module will choose: the highest version that holds the wrap library."""
    found: List[Tuple[Tuple[int, int], Path]] = []
    try:
        entries = list(os.scandir(root))
    except OSError:
        return None
    for entry in entries:
        match = re.fullmatch(r"netcore([0-9]+)\.([0-9]+)", entry.name)
        if match and entry.is_dir(follow_symlinks=False) and (Path(entry.path) / _WRAP_LIBRARY).is_file():
            found.append(((int(match[1]), int(match[2])), Path(entry.path)))
    return max(found)[1] if found else None


def _check_assemblies(root: Path) -> None:
    try:
        folders = [Path(entry.path) for entry in os.scandir(root) if entry.is_dir(follow_symlinks=False)]
    except OSError:
        folders = []
    for name in _ASSEMBLIES:
        if not any((folder / name).is_file() for folder in folders):
            raise ImportError(
                f"velbor.voxlar cannot start: the managed assembly '{name}' was not found in any folder below "
                f"'{root}'. Install the package again, or unset NETCORE_WRAPPER_ASSEMBLY_DIR_velbor."
            )
