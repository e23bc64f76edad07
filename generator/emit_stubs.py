"""Writes the type stubs of the public modules, with every overload and what the scene library says of it."""

from __future__ import annotations

import textwrap
from pathlib import Path

from generator import csharp_docs
from generator.csharp_docs import Docs
from generator.model import Catalogue, EnumType, Kind, Method, Module, Overload, Property, TypeRef, WrappedType
from generator.writer import write

_HEAD = '"""{doc}"""\n\n# Generated from the catalogue. Do not edit.\n'

_MODULE_DOCS = {
    "voxlar": "Scenes, nodes, entities, file formats: the core of the scene library.",
    "animation": "Animation clips, channels and key frames.",
    "deformers": "Skin and morph deformers.",
    "entities": "Geometry, cameras, lights, curves, primitives, vertex elements and polygon tools.",
    "formats": "Load and save options of each file format.",
    "profiles": "Outlines for extrusions.",
    "render": "The renderer's abstraction: buffers, textures, pipelines, shaders.",
    "shading": "Materials and textures.",
    "utilities": "Vectors, matrices, quaternions, file systems and helpers.",
}

_PLAIN = {
    Kind.VOID: "None",
    Kind.STR: "str",
    Kind.OBJECT: "Any",
    Kind.SYSTEM_TYPE: "Type",
    Kind.DOUBLE: "float",
    Kind.SINGLE: "float",
    Kind.INT32: "int",
    Kind.UINT32: "int",
    Kind.INT16: "int",
    Kind.UINT16: "int",
    Kind.BOOL: "bool",
    Kind.DATETIME: "datetime",
    Kind.VERSION: "Optional[Tuple[int, ...]]",
    Kind.SYSTEM_ARRAY: "Sequence[Any]",
}


def emit(catalogue: Catalogue, folder: Path, out: Path) -> None:
    """Writes stubs/velbor/voxlar/*.pyi."""
    docs = csharp_docs.read(folder.parent / "managed" / "Voxlar")
    base = out / "stubs" / "velbor" / "voxlar"
    for module in catalogue.modules:
        name = "__init__" if module is catalogue.modules[0] else module.short
        write(base / f"{name}.pyi", _ModuleStub(catalogue, docs, module).text())


class _ModuleStub:
    """Writes one module's stub."""

    def __init__(self, catalogue: Catalogue, docs: Docs, module: Module) -> None:
        self.catalogue = catalogue
        self.docs = docs
        self.module = module
        self.foreign: dict[str, set[str]] = {}

    def text(self) -> str:
        body: list[str] = []
        for enum in self.module.enums:
            body += self._enum(enum)
        for wrapped in self._bases_first():
            if wrapped.outer_name is None:
                body += self._type(wrapped)
        return "\n".join([_HEAD.format(doc=_MODULE_DOCS[self.module.short]), *self._imports(), *body]) + "\n"

    def _bases_first(self) -> list[WrappedType]:
        ordered: list[WrappedType] = []

        def place(wrapped: WrappedType) -> None:
            if wrapped.base is not None and wrapped.base.module is self.module:
                place(wrapped.base)
            if wrapped not in ordered:
                ordered.append(wrapped)

        for wrapped in self.module.types:
            place(wrapped)
        return ordered

    def _imports(self) -> list[str]:
        lines = [
            "import builtins",
            "from datetime import datetime",
            "from enum import IntEnum, IntFlag",
            "from io import BufferedIOBase, RawIOBase",
            "from typing import Any, ClassVar, Iterable, Iterator, List, Optional, Sequence, Tuple, Union, overload",
            "",
            "from velbor.pygc import CastResult",
            "from velbor.pyreflection import Object, Type",
            "from velbor.voxlar._wrpgen._interop import (",
            "    ManagedArray,",
            "    ManagedCollection,",
            "    ManagedList,",
            "    _StreamWrapper,",
            ")",
        ]
        if self.module is self.catalogue.modules[0]:
            lines.append("from velbor.voxlar import (")
            lines += [f"    {sub.short} as {sub.short}," for sub in self.catalogue.modules[1:]]
            lines.append(")")
        for name in sorted(self.foreign):
            names = "".join(f"    {item},\n" for item in sorted(self.foreign[name]))
            lines.append(f"from {name} import (\n{names})")
        lines += ["", "_Bytes = Union[bytes, bytearray, memoryview]"]
        lines += ["_Stream = Union[RawIOBase, BufferedIOBase, _StreamWrapper]", ""]
        if self.module is self.catalogue.modules[0]:
            lines += [
                "class _ModuleVersionType:",
                '    """A version of four numbers; compares and hashes by them."""',
                "",
                "    major: int",
                "    minor: int",
                "    patch: int",
                "    sub: int",
                "    view: str",
                "",
                "VERSION: _ModuleVersionType",
                "_BACKWARD_COMPATIBILITY_THRESHOLD: _ModuleVersionType",
                "",
                "def get_pyinstaller_hook_dirs() -> List[str]:",
                '    """The folders in which PyInstaller looks for hooks of this package."""',
                "",
            ]
        return lines

    # Names -------------------------------------------------------------------------------------------------

    def _name(self, type_name: str) -> str:
        item = self.catalogue.types.get(type_name) or self.catalogue.enums[type_name]
        if isinstance(item, WrappedType) and item.outer_name is not None:
            return f"{self._name(item.outer_name)}.{type_name}"
        if item.module is not self.module:
            self.foreign.setdefault(item.module.name, set()).add(type_name)
        return type_name

    def _given(self, ref: TypeRef) -> str:
        """The type of an argument."""
        if ref.nullable:
            return f"Optional[{self._given(TypeRef(ref.kind, ref.text.rstrip('?'), ref.type_name))}]"
        kind = ref.kind
        if kind is Kind.STR:
            return "Optional[str]"
        if kind is Kind.BYTES:
            return "Optional[_Bytes]"
        if kind is Kind.STREAM:
            return "Optional[_Stream]"
        if kind in (Kind.ENUM, Kind.STRUCT):
            assert ref.type_name
            return self._name(ref.type_name)
        if kind is Kind.CLASS:
            assert ref.type_name
            return f"Optional[{self._name(ref.type_name)}]"
        if kind is Kind.INTERFACE:
            return self._given_interface(ref)
        if kind is Kind.OUT:
            assert ref.element
            return f"List[{self._got(ref.element)}]"
        if kind is Kind.ITERABLE:
            assert ref.element
            return f"Optional[Iterable[{self._given(ref.element)}]]"
        if ref.element is not None:
            return f"Optional[Sequence[{self._given(ref.element)}]]"
        return _PLAIN[kind]

    def _given_interface(self, ref: TypeRef) -> str:
        assert ref.type_name
        interface = self.catalogue.types[ref.type_name]
        fits = [interface.name]
        for wrapped in self.catalogue.types.values():
            derived = interface in list(self.catalogue.bases(wrapped))
            if derived or interface.name in wrapped.interfaces:
                fits.append(wrapped.name)
        names = ", ".join(self._name(name) for name in fits)
        return f"Optional[Union[{names}]]" if len(fits) > 1 else f"Optional[{names}]"

    def _got(self, ref: TypeRef) -> str:
        """The type of a result."""
        if ref.nullable:
            return f"Optional[{self._got(TypeRef(ref.kind, ref.text.rstrip('?'), ref.type_name))}]"
        if ref.kind is Kind.BYTES:
            return "bytearray"
        if ref.kind is Kind.STREAM:
            return "_StreamWrapper"
        if ref.type_name:
            return self._name(ref.type_name)
        if ref.element is not None:
            element = self._got(ref.element)
            wrapper = {Kind.ARRAY: "ManagedArray", Kind.ICOLLECTION: "ManagedCollection"}.get(ref.kind, "ManagedList")
            return f"{wrapper}[{element}]"
        return _PLAIN[ref.kind]

    def _result(self, ref: TypeRef, nullable: bool) -> str:
        text = self._got(ref)
        null_kinds = (Kind.CLASS, Kind.INTERFACE, Kind.STR, Kind.BYTES, Kind.ARRAY, Kind.LIST, Kind.ILIST)
        return f"Optional[{text}]" if nullable and ref.kind in null_kinds else text

    # Types -------------------------------------------------------------------------------------------------

    def _enum(self, enum: EnumType) -> list[str]:
        base = "IntFlag" if enum.flags else "IntEnum"
        lines = [f"class {enum.name}({base}):", *_doc(self.docs.type_summary(enum.name), 4)]
        lines += [f"    {name} = {value}" for name, value in enum.members]
        lines += ["", *self._casts(enum.name), ""]
        lines += ["    def _as_uni_enum(self) -> Any:", '        """The member as a managed enum value."""', ""]
        return lines

    def _casts(self, name: str) -> list[str]:
        return [
            "    @staticmethod",
            "    def _type_of() -> Type:",
            '        """The managed type."""',
            "    @staticmethod",
            f'    def _cast_to(obj: Any) -> "CastResult[{name}]":',
            '        """An explicit managed cast of `obj` to this type: (succeeded, value)."""',
            "    @staticmethod",
            f'    def _cast_as(obj: Any) -> "CastResult[{name}]":',
            '        """`obj` viewed as this type, without a conversion: (succeeded, value)."""',
            '    def _cast_from(self, type: Any) -> "CastResult[Any]":',
            '        """This value cast to a managed type that is given at run time: (succeeded, value)."""',
            "    @staticmethod",
            "    def _is_assignable(obj: Any) -> bool:",
            '        """True when `obj` is a wrapper that fits where this type is declared."""',
            "    @staticmethod",
            f"    def _reinterpret_obj(obj: Object) -> {name}:",
            '        """A System.Object viewed as this type."""',
            "    def get_type(self) -> Type:",
            '        """The managed run-time type."""',
        ]

    def _type(self, wrapped: WrappedType) -> list[str]:
        base = f"({self._name(wrapped.base.name)})" if wrapped.base is not None and not wrapped.is_interface else ""
        qualified = f"{wrapped.outer_name}.{wrapped.name}" if wrapped.outer_name else wrapped.name
        lines = [f"class {wrapped.name}{base}:", *_doc(self.docs.type_summary(wrapped.name), 4)]
        for inner in self.module.types:
            if inner.outer_name == wrapped.name:
                lines += textwrap.indent("\n".join(self._type(inner)), "    ").split("\n")
        for static in wrapped.statics:
            lines.append(f"    {static.name}: ClassVar[{self._got(static.type)}]")
            lines += _doc(self._summary(wrapped, static.managed), 4)
        lines += self._constructors(wrapped)
        for method in self._all_methods(wrapped):
            lines += self._method(wrapped, method)
        for prop in self._all_properties(wrapped):
            lines += self._property(wrapped, prop)
        if wrapped.iterable:
            lines.append(f"    def __iter__(self) -> Iterator[{self._got(wrapped.iterable)}]: ...")
        if wrapped.indexer:
            element = self._got(wrapped.indexer.element)
            lines.append(f"    def __getitem__(self, index: int) -> {element}: ...")
            if not wrapped.indexer.read_only:
                lines.append(f"    def __setitem__(self, index: int, value: {element}) -> None: ...")
        if wrapped.disposable:
            lines.append(f"    def __enter__(self) -> {qualified}: ...")
            lines.append("    def __exit__(self, *args: object) -> None: ...")
        lines += self._casts(qualified)
        return [*lines, ""]

    def _all_methods(self, wrapped: WrappedType) -> list[Method]:
        methods = list(wrapped.methods)
        if wrapped.is_interface:
            for base in self.catalogue.bases(wrapped):
                for inherited in base.methods:
                    own = next((m for m in methods if m.name == inherited.name), None)
                    if own is None:
                        methods.append(inherited)
                    else:
                        merged = Method(own.name, own.managed, own.static, (*own.overloads, *inherited.overloads))
                        methods[methods.index(own)] = merged
        return methods

    def _all_properties(self, wrapped: WrappedType) -> list[Property]:
        properties = list(wrapped.properties)
        if wrapped.is_interface:
            for base in self.catalogue.bases(wrapped):
                properties += base.properties
        return properties

    def _lookup(self, wrapped: WrappedType) -> list[str]:
        return [wrapped.name, *(base.name for base in self.catalogue.bases(wrapped))]

    def _summary(self, wrapped: WrappedType, managed: str, overload: int = 0) -> str:
        doc = self.docs.member(self._lookup(wrapped), managed, overload)
        return doc.summary if doc else ""

    def _nullable(self, wrapped: WrappedType, managed: str, overload: int = 0) -> bool:
        doc = self.docs.member(self._lookup(wrapped), managed, overload)
        return doc.nullable if doc else True

    def _parameters(self, overload: Overload) -> str:
        return "".join(f", {p.name}: {self._given(p.type)}" for p in overload.parameters)

    def _distinct(self, overloads: tuple[Overload, ...]) -> list[tuple[int, Overload, str]]:
        """(number, overload, remark) without those that a checker cannot tell from an earlier one (a single and a
        double are both `float`). To a checker an `int` is a `float` too, so an overload for `int` behind one for
        `float` gets a remark; at run time the two are told apart."""
        kept: list[tuple[int, Overload, str]] = []
        shapes: list[list[str]] = []
        for index, overload in enumerate(overloads):
            shape = [self._given(p.type) for p in overload.parameters]
            if shape in shapes:
                continue
            hidden = any(
                len(earlier) == len(shape)
                and all(new == old or (new, old) == ("int", "float") or _covers(old, new) for new, old in zip(shape, earlier))
                for earlier in shapes
            )
            shapes.append(shape)
            kept.append((index, overload, "  # type: ignore[misc]" if hidden else ""))
        return kept

    def _constructors(self, wrapped: WrappedType) -> list[str]:
        lines: list[str] = []
        distinct = self._distinct(wrapped.constructors)
        for index, overload, remark in distinct:
            if len(distinct) > 1:
                lines.append("    @overload")
            lines.append(f"    def __init__(self{self._parameters(overload)}) -> None:{remark}")
            lines += _doc(self._summary(wrapped, "new", index), 8) or ["        ..."]
        return lines

    def _method(self, wrapped: WrappedType, method: Method) -> list[str]:
        lines: list[str] = []
        distinct = self._distinct(method.overloads)
        for index, overload, remark in distinct:
            if len(distinct) > 1:
                lines.append("    @overload")
            parameters = self._parameters(overload)
            if method.static:
                lines.append("    @staticmethod")
                parameters = parameters[2:]
            else:
                parameters = f"self{parameters}"
            result = self._result(overload.result, self._nullable(wrapped, method.managed, index))
            lines.append(f"    def {method.name}({parameters}) -> {result}:{remark}")
            lines += _doc(self._summary(wrapped, method.managed, index), 8) or ["        ..."]
        return lines

    def _property(self, wrapped: WrappedType, prop: Property) -> list[str]:
        result = self._result(prop.type, self._nullable(wrapped, prop.managed))
        # In a class with a member of that name the bare name is no longer the decorator.
        shadowed = any(p.name == "property" for p in wrapped.properties)
        decorator = "builtins.property" if shadowed else "property"
        lines = [f"    @{decorator}", f"    def {prop.name}(self) -> {result}:"]
        lines += _doc(self._summary(wrapped, prop.managed), 8) or ["        ..."]
        if not prop.read_only:
            lines.append(f"    @{prop.name}.setter")
            lines.append(f"    def {prop.name}(self, value: {self._given(prop.type)}) -> None: ...")
        return lines


def _covers(old: str, new: str) -> bool:
    """True when every argument of the type `new` is one of `old`, for lists of numbers."""
    return (new, old) == ("Optional[Sequence[int]]", "Optional[Sequence[float]]")


def _doc(text: str, indent: int) -> list[str]:
    """A docstring, wrapped; nothing for an empty text."""
    if not text:
        return []
    text = text.replace("\\", "\\\\").replace('"""', "'''")
    wrapped = textwrap.wrap(text, 110 - indent - 6)
    pad = " " * indent
    if len(wrapped) == 1:
        return [f'{pad}"""{wrapped[0]}"""']
    return [f'{pad}"""{wrapped[0]}', *(pad + line for line in wrapped[1:]), f'{pad}"""']
