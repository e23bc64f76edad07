"""The `velbor` family: managed libraries as ordinary Python modules.

Importing `velbor` costs next to nothing. Importing `velbor.voxlar` finds a .NET runtime, starts it inside this
process and loads the scene library; when that cannot work, the ImportError says what was looked for, where, and the
one thing to do.
"""

from __future__ import annotations

import sys

from velbor import _start

TYPE_CHECKING = False
if TYPE_CHECKING:
    from typing import Any

__all__ = ["actual"]

_start.install()


def actual(obj: Any) -> Any:
    """The same managed object in the wrapper of its own run-time type.

    Results come in their declared type: `Node.entity` is an `Entity` even when the managed object is a mesh. This
    gives the `Mesh`. The new wrapper is equal (`==`) to `obj` and stands for the same managed object. None gives
    None, and where nothing more derived is known, `obj` itself comes back.

    Raises TypeError when `obj` is no wrapper of a managed object.
    """
    if obj is None:
        return None
    if "velbor.voxlar" not in sys.modules:
        raise TypeError(f"'{type(obj).__name__}' is no wrapper of a managed object")
    from velbor import _actual

    return _actual.actual(obj)
