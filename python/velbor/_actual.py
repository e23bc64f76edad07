"""Which wrapper type stands for a managed run-time type."""

from __future__ import annotations

import velbor.voxlar as _voxlar
from velbor import _start

TYPE_CHECKING = False
if TYPE_CHECKING:
    from typing import Any, Dict, Iterator, Tuple

# Managed full name of a run-time type -> the nearest wrapper type. Filled as types are met.
_known: Dict[str, type] = {}

# Managed full name -> wrapper type, for every type of the public modules.
_registered: Dict[str, type] = {}


def _types_of(module: Any, namespace: str) -> Iterator[Tuple[str, type]]:
    for name, value in vars(module).items():
        if isinstance(value, type) and "_velbor_clr_host" in value.__dict__:
            yield f"{namespace}.{name}", value
            for inner_name, inner in vars(value).items():
                if isinstance(inner, type) and "_velbor_clr_host" in inner.__dict__:
                    yield f"{namespace}.{name}+{inner_name}", inner


def _register() -> None:
    _registered.update(_types_of(_voxlar, "Velbor.Voxlar"))
    for name in _start.SUBMODULES:
        _registered.update(_types_of(getattr(_voxlar, name), f"Velbor.Voxlar.{name.capitalize()}"))


def _nearest(managed_type: Any, declared: type) -> type:
    """The wrapper type of the nearest base that has one; `declared` when there is none."""
    while managed_type is not None:
        found = _registered.get(managed_type.full_name)
        if found is not None:
            return found
        managed_type = managed_type.base_type
    return declared


def actual(obj: Any) -> Any:
    """See `velbor.actual`."""
    declared = type(obj)
    if "_velbor_clr_host" not in declared.__dict__:
        raise TypeError(f"'{declared.__name__}' is no wrapper of a managed object")
    if not _registered:
        _register()
    managed_type = obj.get_type()
    full_name = managed_type.full_name
    target = _known.get(full_name)
    if target is None:
        target = _known[full_name] = _nearest(managed_type, declared)
    if target is declared:
        return obj
    succeeded, value = target._cast_as(obj)  # type: ignore[attr-defined]
    return value if succeeded else obj
