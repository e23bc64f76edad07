"""The callbacks that the managed side gets in the static tables, as functions that a test may call."""

from __future__ import annotations

import ctypes
from typing import Any, Callable

from samples import CATALOGUE


def callback(managed: Any, name: str, result: Any, *arguments: Any) -> Callable[..., Any]:
    """The slot of that name; a call of it raises what it leaves pending."""
    for table, rows in enumerate(t for t in CATALOGUE.tables if t.static):
        names = [slot.name for slot in rows.slots]
        if name in names:
            tables = ctypes.cast(managed.callbacks["SetPyStaticCallbacks"], ctypes.POINTER(ctypes.c_void_p))
            slots = ctypes.cast(tables[table], ctypes.POINTER(ctypes.c_void_p))
            return ctypes.PYFUNCTYPE(result, *arguments)(slots[names.index(name)])
    raise LookupError(name)
