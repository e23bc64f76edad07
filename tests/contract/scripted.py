"""The managed side as a script: answers every entry point, records each call, counts handles, fails on demand.

A test asks for the fixture `managed` and says what a method does:

    managed.answer("Scene", "call_000_Clear", lambda handle: None)
    managed.fail("Scene", "get_RootNode", RuntimeError("Proxy error(X): y"))

Handles are numbers. Each handle that an entry point gives out is living until "FreeInstance" gets it back.
"""

from __future__ import annotations

import ctypes
import importlib.machinery
import importlib.util
import os
import struct
import sys
from pathlib import Path
from types import ModuleType
from typing import Any, Callable, Dict, List, Optional, Set, Tuple

import signatures
from samples import CATALOGUE

MISSING = -2146233069  # COR_E_MISSINGMETHOD as a signed status
_FIRST_HANDLE = 0x10000


def load_standin(library: Path) -> ModuleType:
    """The stand-in's shared object as a Python module."""
    loader = importlib.machinery.ExtensionFileLoader("standin", str(library))
    spec = importlib.util.spec_from_loader("standin", loader)
    assert spec is not None
    module = importlib.util.module_from_spec(spec)
    loader.exec_module(module)
    return module


def build_folder() -> Path:
    """The build tree: the folder above the staged package on the path."""
    for entry in sys.path:
        if (Path(entry) / "velbor").is_dir() and (Path(entry).parent / "contract").is_dir():
            return Path(entry).parent
    raise LookupError("no build with a stand-in on PYTHONPATH: run `make test`")


def install(prepare: Callable[[ManagedSide], None] = lambda side: None) -> ManagedSide:
    """Puts the scripted side in place of the managed one and imports the module, once a process. `prepare` gets the
    side before the import."""
    build = build_folder()
    standin = load_standin(build / "contract/netcore10.0/libvelbor.embed.coreclrwrap.so")
    side = ManagedSide(standin, build / "generated")
    prepare(side)
    os.environ["NETCORE_WRAPPER_NETCORE_DIR_velbor"] = str(build / "contract")
    os.environ["NETCORE_WRAPPER_ASSEMBLY_DIR_velbor"] = str(build / "contract")
    # The package itself would look for a real runtime.
    package = ModuleType("velbor")
    package.__path__ = [str(build / "stage/velbor")]  # type: ignore[attr-defined]
    sys.modules["velbor"] = package
    __import__("velbor.voxlar")
    return side


class ManagedSide:
    """What the stand-in asks."""

    def __init__(self, standin: ModuleType, generated: Path) -> None:
        self.standin = standin
        self.classes = signatures.read(generated)
        self.calls: List[Tuple[str, str, Tuple[Any, ...]]] = []
        self.bound: List[Tuple[str, str]] = []
        self.living: Set[int] = set()
        self.faults: List[str] = []
        self.missing: Set[Tuple[str, str]] = set()
        self.callbacks: Dict[str, int] = {}
        self._answers: Dict[Tuple[str, str], Callable[..., Any]] = {}
        self._next_handle = _FIRST_HANDLE
        self._short = {name.rpartition(".")[2]: name for name in self.classes}
        standin.set_resolver(self._resolve)

    # For tests ---------------------------------------------------------------------------------------------

    def class_name(self, name: str) -> str:
        """The managed class of a short name: `Scene`, `ObjectHost`, `SiApiCntList_F44BC945`."""
        if name in self.classes:
            return name
        if name in self._short:
            return self._short[name]
        item = CATALOGUE.types.get(name) or CATALOGUE.enums[name]
        return item.managed_class

    def answer(self, name: str, method: str, function: Callable[..., Any]) -> None:
        """Lets `function` answer the entry point; it gets the native arguments."""
        key = (self.class_name(name), method)
        assert method in self.classes[key[0]], f"{key[0]} has no {method}"
        self._answers[key] = function

    def fail(self, name: str, method: str, error: Exception, result: Any = 0) -> None:
        """Lets the entry point leave `error` pending and return `result`."""

        def failing(*_: Any) -> Any:
            error.result = result  # type: ignore[attr-defined]
            raise error

        self.answer(name, method, failing)

    def new_handle(self) -> int:
        self._next_handle += 0x10
        self.living.add(self._next_handle)
        return self._next_handle

    def calls_of(self, method: str) -> List[Tuple[Any, ...]]:
        return [arguments for _, name, arguments in self.calls if name == method]

    def reset(self) -> None:
        """Forgets the script and the record of calls; what lives goes on living."""
        self._answers.clear()
        self.calls.clear()
        self.faults.clear()

    # Records -----------------------------------------------------------------------------------------------

    def text(self, address: int) -> Optional[str]:
        """The text of a PyStringArg; None for a null string."""
        length, size, chars = struct.unpack("<iiQ", self.standin.peek(address, 16))
        if length < 0:
            return None
        raw = self.standin.peek(chars, length * size)
        return raw.decode({1: "latin-1", 2: "utf-16-le", 4: "utf-32-le"}[size], "surrogatepass")

    def data(self, address: int) -> Optional[bytes]:
        """The bytes of a PyBytesArg; None for a null array."""
        _, length, chars = struct.unpack("<iiQ", self.standin.peek(address, 16))
        return None if length < 0 else self.standin.peek(chars, length)

    def variant(self, address: int) -> Tuple[int, int]:
        """(kind, payload) of a VariantArg."""
        kind, _, payload = struct.unpack("<iIQ", self.standin.peek(address, 16))
        return kind, payload

    def store(self, address: int, layout: str, *values: Any) -> None:
        """Writes an out value, packed in native byte order."""
        self.standin.poke(address, struct.pack("<" + layout, *values))

    def store_object(self, address: int, value: Any) -> None:
        """Writes a Python object into an out pointer that takes it over."""
        self.store(address, "Q", self.standin.give(value))

    # The stand-in's side -----------------------------------------------------------------------------------

    def _resolve(self, assembly: str, name: str, method: str) -> Any:
        self.bound.append((name, method))
        entry = self.classes.get(name, {}).get(method)
        if entry is None or (name, method) in self.missing or assembly != "WrpInterop.Velbor.Voxlar":
            return MISSING
        result, arguments = entry

        def run(*values: Any) -> Any:
            return self._run(name, method, result, arguments, values)

        return result, arguments, run

    def _run(self, name: str, method: str, result: str, arguments: List[str], values: Tuple[Any, ...]) -> Any:
        self.calls.append((name, method, values))
        answer = self._answers.get((name, method))
        if answer is not None:
            return answer(*values)
        if name.endswith(".ExchangeHost"):
            return self._exchange(method, values)
        if method in ("btp_TypeOf", "btp_GetType", "btp_AsUniEnum", "GetObjType", "GetStcType"):
            self.store(values[-1], "Q", self.new_handle())
            return 1
        if method == "GetEnumerator":
            self.store(values[1], "QQ", self.new_handle(), 1)
            return 0
        if method == "MoveNext":
            return 1
        if result == "void*":
            return self.new_handle()
        if result == "PyObject*":
            return None if method == "SqGetItemNoCheck" else ""
        return 0

    def _exchange(self, method: str, values: Tuple[Any, ...]) -> Any:
        if method.startswith("Set"):
            self.callbacks[method] = values[0]
        elif method == "FreeInstance":
            if values[0] in self.living:
                self.living.remove(values[0])
            else:
                self.faults.append(f"freed twice or never made: {values[0]:#x}")
        elif method == "GetTypeName":
            return self.type_name("System.Object")
        elif method == "BoxStcTarget":
            return self.new_handle()
        return 0

    def type_name(self, name: str) -> int:
        """The holder that "GetTypeName" answers with, made by the callback that the module handed over."""
        units = (name + "\0").encode("utf-16-le")
        buffer = ctypes.create_string_buffer(units, len(units))
        builder = self.callbacks["SetU16StrBuilderCallback"]
        holder, error = self.standin.call(builder, "void**", ["void*", "int"], [ctypes.addressof(buffer), len(name)])
        assert error is None
        return holder
