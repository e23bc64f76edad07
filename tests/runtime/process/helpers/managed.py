"""Managed methods that the bridge does not wrap, called through the same wrap library."""

from __future__ import annotations

import ctypes
import re
import time
from typing import Any

import velbor.voxlar  # noqa: F401  starts the runtime

with open("/proc/self/maps", encoding="utf-8") as _maps:
    _path = next(match[0] for match in re.finditer(r"/\S+/libvelbor\.embed\.coreclrwrap\.so", _maps.read()))

wrap = ctypes.CDLL(_path)


def method(type_name: str, name: str, *signature: Any, keeps_lock: bool = False) -> Any:
    """A static method of the core library. Python's global lock is let go during the call unless it is kept."""
    pointer = ctypes.c_void_p()
    status = wrap.coreclr_wrap_create_delegate(
        b"System.Private.CoreLib", type_name.encode(), name.encode(), ctypes.byref(pointer)
    )
    if status != 0:
        raise LookupError(f"{type_name}.{name}: {status & 0xFFFFFFFF:#x}")
    make = ctypes.PYFUNCTYPE if keeps_lock else ctypes.CFUNCTYPE
    return make(*signature)(pointer.value)


_spin_wait = method("System.Threading.Thread", "SpinWait", None, ctypes.c_int)


def spin_forever() -> None:
    """Stays in managed code; longer than any test lasts."""
    while True:
        _spin_wait(2**31 - 1)


def spin(seconds: float) -> None:
    """Stays in one managed call for about so long."""
    probe = 100_000
    started = time.perf_counter()
    _spin_wait(probe)
    took = time.perf_counter() - started
    _spin_wait(max(1, min(int(probe * seconds / took), 2**31 - 1)))


def exit_process(code: int, keeps_lock: bool = False) -> None:
    """Environment.Exit."""
    method("System.Environment", "Exit", None, ctypes.c_int, keeps_lock=keeps_lock)(code)
