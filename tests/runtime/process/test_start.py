"""What a user sees when velbor.voxlar cannot start: an ImportError that says what is missing and what to do."""

from __future__ import annotations

import os
import shutil
import struct
from pathlib import Path
from typing import Callable

import pytest

import velbor

ADVICE = "Install the .NET 10 runtime (package dotnet-runtime-10.0), or set DOTNET_ROOT to the folder of one."
ASSEMBLIES = Path(velbor.__file__).parent / "_assemblies"

# Prints each exception of the chain, the outermost first.
IMPORT = """
try:
    import velbor.voxlar
    print("started")
except ImportError as error:
    while error is not None:
        print(type(error).__name__, error)
        error = error.__cause__
"""


def refusal(run: Callable, **variables: str) -> str:
    result = run(IMPORT, **variables)
    assert (result.returncode, result.stderr) == (0, "")
    return result.stdout


def library(machine: int, wide: bool = True) -> bytes:
    return b"\x7fELF" + bytes([2 if wide else 1, 1, 1]) + bytes(9) + struct.pack("<HH", 3, machine) + bytes(44)


def dotnet_root(folder: Path, header: bytes, *others: str, version: str = "10.0.1") -> Path:
    runtime = folder / "shared" / "Microsoft.NETCore.App" / version
    runtime.mkdir(parents=True)
    (runtime / "libcoreclr.so").write_bytes(header)
    for name in others:
        (runtime / name).touch()
    return folder


def test_no_runtime(run: Callable, tmp_path: Path) -> None:
    assert refusal(run, DOTNET_ROOT=str(tmp_path)) == (
        "ImportError velbor.voxlar cannot start: no usable .NET runtime was found. Looked in:\n"
        f"  - {tmp_path}/shared/Microsoft.NETCore.App (DOTNET_ROOT): no such folder\n{ADVICE}\n"
    )


@pytest.mark.parametrize(("machine", "wide", "name"), [(183, True, "ARM64"), (3, False, "x86"), (8, True, "machine 8")])
def test_a_runtime_of_another_architecture(
    run: Callable, tmp_path: Path, machine: int, wide: bool, name: str
) -> None:
    dotnet_root(tmp_path, library(machine, wide), "libclrjit.so")
    assert refusal(run, DOTNET_ROOT=str(tmp_path)) == (
        "ImportError velbor.voxlar cannot start: no usable .NET runtime was found. Looked in:\n"
        f"  - {tmp_path}/shared/Microsoft.NETCore.App/10.0.1 (DOTNET_ROOT): the runtime is for {name}, "
        f"this process is x86-64\n{ADVICE}\n"
    )


def test_a_runtime_without_its_jit_compiler(run: Callable, tmp_path: Path) -> None:
    dotnet_root(tmp_path, library(62))
    assert "'libclrjit.so' is missing beside it, and the runtime aborts without it" in refusal(
        run, DOTNET_ROOT=str(tmp_path)
    )


def test_a_runtime_that_is_too_old(run: Callable, tmp_path: Path) -> None:
    dotnet_root(tmp_path, library(62), "libclrjit.so", version="8.0.4")
    assert "8.0.4 (DOTNET_ROOT): the version is too old" in refusal(run, DOTNET_ROOT=str(tmp_path))


def test_a_missing_wrap_library(run: Callable, tmp_path: Path) -> None:
    assert refusal(run, NETCORE_WRAPPER_NETCORE_DIR_velbor=str(tmp_path)) == (
        "ImportError velbor.voxlar cannot start: the wrap library 'libvelbor.embed.coreclrwrap.so' was not found in "
        f"any folder 'netcore<major>.<minor>' below '{tmp_path}'. Install the package again, or unset "
        "NETCORE_WRAPPER_NETCORE_DIR_velbor.\n"
    )


def copied_assemblies(tmp_path: Path) -> Path:
    root = tmp_path / "assemblies"
    shutil.copytree(ASSEMBLIES, root)
    return root


def interop_of(root: Path) -> Path:
    return next(root.glob("*/WrpInterop.Velbor.Voxlar.dll"))


def test_a_missing_interop_assembly(run: Callable, tmp_path: Path) -> None:
    root = copied_assemblies(tmp_path)
    interop_of(root).unlink()
    assert refusal(run, NETCORE_WRAPPER_ASSEMBLY_DIR_velbor=str(root)) == (
        "ImportError velbor.voxlar cannot start: the managed assembly 'WrpInterop.Velbor.Voxlar.dll' was not found "
        f"in any folder below '{root}'. Install the package again, or unset NETCORE_WRAPPER_ASSEMBLY_DIR_velbor.\n"
    )


def missing(type_name: str, method: str, status: int) -> str:
    return (
        f"While initializing the host for the 'Velbor.WrpGen.Interop.{type_name} (Assembly=WrpInterop.Velbor.Voxlar)'"
        f" type, an error occurred - Method '{method}' not found (error={status})"
    )


def test_a_file_that_is_no_assembly(run: Callable, tmp_path: Path) -> None:
    root = copied_assemblies(tmp_path)
    interop_of(root).write_bytes(b"no assembly")
    not_found = struct.unpack("<i", struct.pack("<I", 0x80070002))[0]
    assert refusal(run, NETCORE_WRAPPER_ASSEMBLY_DIR_velbor=str(root)) == (
        "ImportError One or more errors occurred while loading the module 'velbor.voxlar' (-1007)\n"
        f"TypeError {missing('ExchangeHost', 'GetTypeName', not_found)}\n"
    )


@pytest.mark.parametrize(
    ("type_name", "method"), [("ExchangeHost", "BoxStcTarget"), ("ExchangeHost", "InitServices"),
                              ("ObjectHost", "GetHashOfStc")]
)
def test_a_missing_managed_method(run: Callable, tmp_path: Path, type_name: str, method: str) -> None:
    root = copied_assemblies(tmp_path)
    interop = interop_of(root)
    content = interop.read_bytes()
    name = b"\0" + method.encode() + b"\0"
    assert content.count(name) == 1, "the name as it stands in the assembly's metadata"
    interop.write_bytes(content.replace(name, name[:-2] + b"_\0"))
    no_method = struct.unpack("<i", struct.pack("<I", 0x80131513))[0]
    assert refusal(run, NETCORE_WRAPPER_ASSEMBLY_DIR_velbor=str(root)) == (
        "ImportError One or more errors occurred while loading the module 'velbor.voxlar' (-1007)\n"
        f"TypeError {missing(type_name, method, no_method)}\n"
    )


def test_a_retried_import_after_a_refusal_works(run: Callable, tmp_path: Path) -> None:
    result = run(
        f"""
        import os
        os.environ["DOTNET_ROOT"] = {str(tmp_path)!r}
        try:
            import velbor.voxlar
        except ImportError:
            print("refused")
        os.environ["DOTNET_ROOT"] = {os.environ.get("DOTNET_ROOT", "")!r}
        import velbor.voxlar
        print(velbor.voxlar.VERSION)
        """
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, "refused\n23.8.0.0\n", "")


def test_a_sibling_without_a_runtime_says_what_to_import(run: Callable) -> None:
    result = run(
        """
        from velbor import pygc, pyreflection
        for call in (pygc.collect, pyreflection.Type._type_of):
            try:
                call()
            except RuntimeError as error:
                print(error)
        import velbor.voxlar
        print(pygc.collect(), pyreflection.Type._type_of().name)
        """
    )
    text = "the .NET runtime is not started; import velbor.voxlar first\n"
    assert (result.returncode, result.stdout, result.stderr) == (0, text + text + "None Type\n", "")


def test_tracing_tells_the_steps(run: Callable) -> None:
    result = run("import velbor.voxlar", COREHOST_TRACE="1")
    lines = result.stdout.splitlines()
    assert result.returncode == 0
    assert lines[:2] == ["CLR host tracing enabled", "Initializing .NET Core host..."]
    assert lines[-1] == ".NET Core host is down: 0"


def test_user_switches_of_the_runtime_are_honoured(run: Callable) -> None:
    script = """
        import ctypes, managed
        print(managed.method("System.Runtime.GCSettings", "get_IsServerGC", ctypes.c_bool)())
        """
    assert run(script).stdout == "False\n"
    assert run(script, DOTNET_gcServer="1", DOTNET_GCHeapCount="1").stdout == "True\n"
