"""Finds a .NET runtime that can be started in this process, or says why there is none."""

from __future__ import annotations

import os
import sys

# Paid by each start, so it does without `re`, `pathlib`, `shutil` and `typing`.
TYPE_CHECKING = False
if TYPE_CHECKING:
    from typing import Iterator, List, Optional, Set, Tuple

# The managed assemblies are built for this major version; a later one serves them too.
MINIMUM_MAJOR = 10

_WRAP_LIBRARY = "libvelbor.embed.coreclrwrap.so"
_ASSEMBLIES = ("WrpInterop.Velbor.Voxlar.dll", "Velbor.Voxlar.dll")
_FRAMEWORK = os.path.join("shared", "Microsoft.NETCore.App")
_USUAL_ROOTS = ("/usr/share/dotnet", "/usr/lib/dotnet", "/usr/lib64/dotnet", "/usr/local/share/dotnet", "/opt/dotnet")
_INSTALL_LOCATIONS = ("/etc/dotnet/install_location_x64", "/etc/dotnet/install_location")
_ELF_X86_64 = 62
_ELF_NAMES = {3: "x86", 40: "ARM", 62: "x86-64", 183: "ARM64", 243: "RISC-V"}

# Tells the wrap library where the runtime is when it does not lie in the runtime folder itself.
_CORECLR_PATH = "VELBOR_CORECLR_PATH"

_ADVICE = (
    f"Install the .NET {MINIMUM_MAJOR} runtime (package dotnet-runtime-{MINIMUM_MAJOR}.0), "
    "or set DOTNET_ROOT to the folder of one."
)


def check(netcore_dir: str, assembly_dir: str) -> None:
    """Refuses a start that would end the process. Raises ImportError with what is missing and what to do."""
    folder = _wrap_folder(netcore_dir)
    if folder is None:
        raise ImportError(
            f"velbor.voxlar cannot start: the wrap library '{_WRAP_LIBRARY}' was not found in any folder "
            f"'netcore<major>.<minor>' below '{netcore_dir}'. Install the package again, or unset "
            "NETCORE_WRAPPER_NETCORE_DIR_velbor."
        )
    beside = os.path.join(folder, "libcoreclr.so")
    if os.path.lexists(beside):
        refusal = _refusal(beside)
        if refusal:
            raise ImportError(f"velbor.voxlar cannot start: '{beside}': {refusal}. {_ADVICE}")
    else:
        os.environ[_CORECLR_PATH] = find_runtime()
    _check_assemblies(assembly_dir)


def find_runtime() -> str:
    """The path of the `libcoreclr.so` to start. Raises ImportError that lists each place looked in."""
    looked: List[str] = []
    for source, root in _roots():
        best: Optional[Tuple[Tuple[int, int, int, int], str]] = None
        framework = os.path.join(root, _FRAMEWORK)
        for version, folder in _versions(framework):
            library = os.path.join(folder, "libcoreclr.so")
            refusal = "the version is too old" if version[0] < MINIMUM_MAJOR else _refusal(library)
            if refusal:
                looked.append(f"{folder} ({source}): {refusal}")
            elif best is None or version > best[0]:
                best = (version, library)
        if best is not None:
            return best[1]
        if not os.path.isdir(framework):
            looked.append(f"{framework} ({source}): no such folder")
    places = "".join(f"\n  - {place}" for place in looked)
    raise ImportError(f"velbor.voxlar cannot start: no usable .NET runtime was found. Looked in:{places}\n{_ADVICE}")


def _roots() -> Iterator[Tuple[str, str]]:
    """Where a .NET installation may be, with what says so, each folder once."""
    for variable in ("DOTNET_ROOT_X64", "DOTNET_ROOT"):
        value = os.environ.get(variable)
        if value:
            # Whoever sets the variable wants this runtime: a later place is no silent substitute.
            yield variable, value
            return
    seen: Set[str] = set()
    for source, root in _places():
        key = os.path.realpath(root)
        if key not in seen:
            seen.add(key)
            yield source, root


def _places() -> Iterator[Tuple[str, str]]:
    for name in _INSTALL_LOCATIONS:
        try:
            with open(name, encoding="utf-8") as file:
                text = file.read().strip()
        except OSError:
            continue
        if text:
            yield name, text
    for folder in os.environ.get("PATH", "").split(os.pathsep):
        command = os.path.join(folder, "dotnet")
        if folder and os.path.isfile(command) and os.access(command, os.X_OK):
            yield "dotnet on PATH", os.path.dirname(os.path.realpath(command))
            break
    for usual in (*_USUAL_ROOTS, os.path.expanduser("~/.dotnet")):
        yield "usual folder", usual


def _versions(framework: str) -> Iterator[Tuple[Tuple[int, int, int, int], str]]:
    try:
        names = sorted(os.listdir(framework))
    except OSError:
        return
    for name in names:
        number, dash, _ = name.partition("-")
        parts = number.split(".")
        if len(parts) == 3 and all(part.isdigit() for part in parts):
            major, minor, patch = (int(part) for part in parts)
            # A preview comes below the release of the same number.
            yield (major, minor, patch, 0 if dash else 1), os.path.join(framework, name)


def _refusal(libcoreclr: str) -> Optional[str]:
    """Why this runtime cannot be started in this process; None when it can."""
    name = os.path.basename(libcoreclr)
    try:
        with open(libcoreclr, "rb") as file:
            header = file.read(20)
    except OSError as error:
        return f"'{name}' cannot be read ({error.strerror})"
    if len(header) < 20 or header[:4] != b"\x7fELF":
        return f"'{name}' is no library"
    machine = int.from_bytes(header[18:20], sys.byteorder)
    if header[4] != 2 or machine != _ELF_X86_64:
        return f"the runtime is for {_ELF_NAMES.get(machine, f'machine {machine}')}, this process is x86-64"
    if not os.path.isfile(os.path.join(os.path.dirname(os.path.realpath(libcoreclr)), "libclrjit.so")):
        return "'libclrjit.so' is missing beside it, and the runtime aborts without it"
    return None


def _wrap_folder(root: str) -> Optional[str]:
    """The runtime folder that the module will choose: the highest version that holds the wrap library."""
    found: List[Tuple[Tuple[int, int], str]] = []
    try:
        entries = list(os.scandir(root))
    except OSError:
        return None
    for entry in entries:
        major, dot, minor = entry.name[len("netcore") :].partition(".")
        named = entry.name.startswith("netcore") and dot and _is_number(major) and _is_number(minor)
        if named and entry.is_dir(follow_symlinks=False) and os.path.isfile(os.path.join(entry.path, _WRAP_LIBRARY)):
            found.append(((int(major), int(minor)), entry.path))
    return max(found)[1] if found else None


def _is_number(text: str) -> bool:
    return text.isascii() and text.isdigit()


def _check_assemblies(root: str) -> None:
    try:
        folders = [entry.path for entry in os.scandir(root) if entry.is_dir(follow_symlinks=False)]
    except OSError:
        folders = []
    for name in _ASSEMBLIES:
        if not any(os.path.isfile(os.path.join(folder, name)) for folder in folders):
            raise ImportError(
                f"velbor.voxlar cannot start: the managed assembly '{name}' was not found in any folder below "
                f"'{root}'. Install the package again, or unset NETCORE_WRAPPER_ASSEMBLY_DIR_velbor."
            )
