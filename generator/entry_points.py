"""The native signature of every entry point of a wrapped type, in binding order."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Iterator

from generator.cpp_forms import Forms
from generator.model import EnumType, Kind, Overload, TypeRef, WrappedType


@dataclass(frozen=True)
class EntryPoint:
    """One managed static method: its name, its C result type and its C argument types."""

    name: str
    result: str
    arguments: tuple[str, ...]


def _overload_arguments(forms: Forms, overload: Overload) -> list[str]:
    types: list[str] = []
    for parameter in overload.parameters:
        types.extend(forms.argument_types(parameter.type))
    if any(p.type.kind is Kind.OUT for p in overload.parameters):
        types.append("void**")
    return types


def of_type(forms: Forms, wrapped: WrappedType) -> Iterator[EntryPoint]:
    """The entry points of a class, struct, interface or holder."""
    for constructor in wrapped.constructors:
        yield EntryPoint(constructor.entry, "void*", tuple(_overload_arguments(forms, constructor)))
    for method in wrapped.methods:
        this = [] if method.static else ["void*"]
        for overload in method.overloads:
            result = forms.result(overload.result)
            arguments = [*this, *_overload_arguments(forms, overload), *forms.out_types(result)]
            yield EntryPoint(overload.entry, result.native, tuple(arguments))
    for prop in wrapped.properties:
        result = forms.result(prop.type)
        yield EntryPoint(prop.getter, result.native, ("void*", *forms.out_types(result)))
        if not prop.read_only:
            yield EntryPoint(prop.setter, "void", ("void*", *forms.argument_types(prop.type)))
    for static in wrapped.statics:
        yield EntryPoint(static.entry, forms.result(static.type).native, ())
    if wrapped.indexer:
        out = "double*" if wrapped.indexer.element.kind is Kind.DOUBLE else "void**"
        yield EntryPoint("btp_SqGetItem", "int", ("void*", "int", out))
        if not wrapped.indexer.read_only:
            value = forms.argument_types(wrapped.indexer.element)
            yield EntryPoint("btp_SqSetItem", "int", ("void*", "int", *value))
    for name in wrapped.builtins:
        yield EntryPoint(name, "int", builtin_arguments(wrapped, name))


def builtin_arguments(wrapped: WrappedType, name: str) -> tuple[str, ...]:
    """The argument types of a built-in entry point of a wrapper type."""
    handle = "const VariantArg*" if wrapped.is_struct or wrapped.is_interface else "void*"
    return {
        "btp_TypeOf": ("void**",),
        "btp_CastTo": ("const VariantArg*", "void**"),
        "btp_CastFrom": ("void*", "void*", "void**"),
        "btp_ReInterpretObj": ("void*", "void**"),
        "btp_CastAs": (handle, "void**"),
        "btp_IsAssignable": (handle,),
    }[name]


def of_enum(enum: EnumType) -> Iterator[EntryPoint]:
    """The seven entry points of an enum."""
    value = Forms.enum_value(enum)
    arguments: dict[str, tuple[str, ...]] = {
        "btp_TypeOf": ("void**",),
        "btp_CastTo": ("const VariantArg*", f"{value}*"),
        "btp_ReInterpretObj": ("void*", f"{value}*"),
        "btp_AsUniEnum": (value, "void**"),
        "btp_CastAs": ("void*", f"{value}*"),
        "btp_IsAssignable": ("void*",),
        "btp_GetType": (value, "void**"),
    }
    for name in EnumType.ENTRIES:
        yield EntryPoint(name, "int", arguments[name])


def element_argument(forms: Forms, ref: TypeRef) -> str:
    """The C type in which a single value of this type goes to an entry point."""
    return forms.argument_types(ref)[0]
