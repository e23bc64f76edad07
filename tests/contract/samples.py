"""Arguments that fit: one value for every type that the catalogue names."""

from __future__ import annotations

import datetime
import io
import sys
from pathlib import Path
from typing import Any, List

sys.path.insert(0, str(Path(__file__).resolve().parents[2]))

from generator import parser  # noqa: E402
from generator.model import Catalogue, Kind, Overload, TypeRef, WrappedType  # noqa: E402

CATALOGUE: Catalogue = parser.read(Path(__file__).resolve().parents[2] / "catalogue")

_PLAIN = {
    Kind.STR: "text",
    Kind.BYTES: b"bytes",
    Kind.OBJECT: "anything",
    Kind.DOUBLE: 1.5,
    Kind.SINGLE: 0.5,
    Kind.INT32: 3,
    Kind.UINT32: 4,
    Kind.BOOL: True,
}


def python_type(voxlar: Any, wrapped: WrappedType) -> Any:
    """The wrapper type of a row of the catalogue."""
    owner = voxlar if wrapped.module is CATALOGUE.modules[0] else getattr(voxlar, wrapped.module.short)
    if wrapped.outer_name:
        owner = getattr(owner, wrapped.outer_name)
    return getattr(owner, wrapped.name)


def blank(voxlar: Any, wrapped: WrappedType) -> Any:
    """A wrapper without a managed object: enough to stand as an argument or as the object of a call."""
    made = python_type(voxlar, wrapped)
    return made.__new__(made)


def value(voxlar: Any, ref: TypeRef) -> Any:
    """A value that the parameter accepts."""
    if ref.kind is Kind.ENUM:
        enum = CATALOGUE.enums[ref.type_name or ""]
        owner = voxlar if enum.module is CATALOGUE.modules[0] else getattr(voxlar, enum.module.short)
        return list(getattr(owner, enum.name))[0]
    if ref.kind in (Kind.CLASS, Kind.STRUCT, Kind.INTERFACE):
        return blank(voxlar, CATALOGUE.types[ref.type_name or ""])
    if ref.kind is Kind.STREAM:
        return io.BytesIO(b"content")
    if ref.kind is Kind.SYSTEM_TYPE:
        return voxlar.Node._type_of()
    if ref.kind is Kind.DATETIME:
        return datetime.datetime(2020, 1, 2, 3, 4, 5)
    if ref.kind in _PLAIN:
        return _PLAIN[ref.kind]
    return []  # collections and out lists


def arguments(voxlar: Any, overload: Overload) -> List[Any]:
    """One value a parameter."""
    return [value(voxlar, parameter.type) for parameter in overload.parameters]
