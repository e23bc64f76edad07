"""Reads the catalogue's text files into the model and refuses rows that cannot stand."""

from __future__ import annotations

import re
from pathlib import Path

from generator import naming
from generator.model import (
    SCALARS,
    VOID,
    CallbackSlot,
    CallbackTable,
    Catalogue,
    CatalogueError,
    EnumType,
    GenericCallbackTable,
    Indexer,
    Kind,
    Method,
    Module,
    Overload,
    Parameter,
    Place,
    Property,
    SingleCallback,
    StaticField,
    TypeRef,
    WrappedType,
)

# The public modules in the order of building; the first is the root.
MODULE_FILES = (
    "voxlar", "animation", "deformers", "entities", "formats", "profiles", "render", "shading", "utilities",
)  # fmt: skip

_ENUM = re.compile(r"enum (\w+) ([0-9A-F]{8})( byte)?( flags)?$")
_TYPE = re.compile(r"(class|struct|interface|holder) (\w+) ([0-9A-F]{8})(?: in (\w+))?(?: : (\w+))?$")
_MEMBER = re.compile(r"(\w+) = (-?\d+)$")
_DEF = re.compile(r"(static )?def (\w+)\((.*)\)(?: -> (\S+))?(?: as (\w+))?$")
_NEW = re.compile(r"new \((.*)\)$")
_PROP = re.compile(r"prop (\w+): (\S+)( readonly)?(?: as (\w+))?$")
_FIELD = re.compile(r"field (\w+): (\S+) as (\w+)$")
_INDEXER = re.compile(r"indexer (\S+)( readonly)?$")
_SLOT = re.compile(r"(\w+) (.+?)\((.*)\)$")
_GENERIC = re.compile(r"generic (pyiter|pylist|pyseq) ([0-9A-F]{8}) T=(\S+)(?: E=(\S+) long)?$")
_WRAPPED_COLLECTION = re.compile(r"(IList|ICollection|List|Iterable|out)<(.+)>$")

_COLLECTION_KINDS = {
    "IList": Kind.ILIST,
    "ICollection": Kind.ICOLLECTION,
    "List": Kind.LIST,
    "Iterable": Kind.ITERABLE,
    "out": Kind.OUT,
}


def _rows(path: Path) -> list[tuple[Place, int, str]]:
    """The rows of a file with their places and indentation; blank lines and comments are dropped."""
    rows: list[tuple[Place, int, str]] = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        text = line.strip()
        if text and not text.startswith("#"):
            rows.append((Place(path.name, number), len(line) - len(line.lstrip()), text))
    return rows


def _split_parameters(text: str) -> list[str]:
    return [part.strip() for part in text.split(",")] if text.strip() else []


class _TypeNames:
    """Every name that a row may use as a type, known before the members are read."""

    def __init__(self) -> None:
        self.kinds: dict[str, Kind] = {}

    def add(self, place: Place, name: str, kind: Kind) -> None:
        if name in self.kinds or name in SCALARS:
            raise CatalogueError(place, f"type '{name}' stands twice")
        self.kinds[name] = kind

    def resolve(self, place: Place, text: str) -> TypeRef:
        if text.endswith("?"):
            inner = self.resolve(place, text[:-1])
            if inner.kind not in (Kind.DATETIME, Kind.ENUM, Kind.STRUCT):
                raise CatalogueError(place, f"'{text}' cannot be nullable: it is no value type")
            return TypeRef(inner.kind, text, inner.type_name, None, True)
        if text.endswith("[]"):
            return TypeRef(Kind.ARRAY, text, None, self.resolve(place, text[:-2]))
        match = _WRAPPED_COLLECTION.match(text)
        if match:
            return TypeRef(_COLLECTION_KINDS[match[1]], text, None, self.resolve(place, match[2]))
        if text in SCALARS:
            return TypeRef(SCALARS[text], text)
        if text in self.kinds:
            return TypeRef(self.kinds[text], text, text)
        raise CatalogueError(place, f"unknown type '{text}'")


class _ModuleReader:
    """Reads one module file; members are resolved in a second pass, when all type names are known."""

    def __init__(self, path: Path, names: _TypeNames) -> None:
        self.names = names
        self.pending: list[tuple[WrappedType, list[tuple[Place, str]]]] = []
        rows = _rows(path)
        if len(rows) < 2 or not rows[0][2].startswith("module ") or not rows[1][2].startswith("namespace "):
            raise CatalogueError(Place(path.name, 1), "a module file begins with 'module' and 'namespace'")
        self.module = Module(rows[0][2].split()[1], rows[1][2].split()[1])
        enum_rows: list[tuple[EnumType, list[tuple[str, int]]]] = []
        for place, indent, text in rows[2:]:
            if indent == 0:
                self._head(place, text, enum_rows)
            elif enum_rows and (not self.pending or enum_rows[-1][0].place.line > self.pending[-1][0].place.line):
                member = _MEMBER.match(text)
                if not member:
                    raise CatalogueError(place, f"'{text}' is no enum member")
                enum_rows[-1][1].append((member[1], int(member[2])))
            elif self.pending:
                self.pending[-1][1].append((place, text))
            else:
                raise CatalogueError(place, "a member stands before any type")
        for enum, members in enum_rows:
            if not members:
                raise CatalogueError(enum.place, f"enum '{enum.name}' has no members")
            self.module.enums.append(
                EnumType(enum.name, enum.tag, enum.byte, enum.flags, tuple(members), self.module, enum.place)
            )

    def _head(self, place: Place, text: str, enum_rows: list[tuple[EnumType, list[tuple[str, int]]]]) -> None:
        match = _ENUM.match(text)
        if match:
            self.names.add(place, match[1], Kind.ENUM)
            enum = EnumType(match[1], match[2], bool(match[3]), bool(match[4]), (), self.module, place)
            enum_rows.append((enum, []))
            return
        match = _TYPE.match(text)
        if not match:
            raise CatalogueError(place, f"'{text}' begins no type")
        kind, name, tag, outer, base = match.groups()
        self.names.add(place, name, Kind.CLASS if kind == "holder" else Kind(kind))
        wrapped = WrappedType(name, tag, kind, self.module, place, base, outer)
        self.module.types.append(wrapped)
        self.pending.append((wrapped, []))

    def resolve(self) -> None:
        for wrapped, rows in self.pending:
            _MemberReader(wrapped, self.names).read(rows)


class _MemberReader:
    """Reads the members of one type."""

    def __init__(self, wrapped: WrappedType, names: _TypeNames) -> None:
        self.wrapped = wrapped
        self.names = names
        self.constructors: list[Overload] = []
        self.methods: dict[str, Method] = {}
        self.properties: list[Property] = []
        self.statics: list[StaticField] = []

    def read(self, rows: list[tuple[Place, str]]) -> None:
        for place, text in rows:
            self._row(place, text)
        wrapped = self.wrapped
        wrapped.constructors = tuple(self.constructors)
        wrapped.methods = tuple(self.methods.values())
        wrapped.properties = tuple(self.properties)
        wrapped.statics = tuple(self.statics)

    def _row(self, place: Place, text: str) -> None:
        wrapped = self.wrapped
        if text == "disposable":
            wrapped.disposable = True
        elif text.startswith("implements "):
            wrapped.interfaces = tuple(_split_parameters(text[len("implements ") :]))
        elif text.startswith("iterable "):
            wrapped.iterable = self.names.resolve(place, text[len("iterable ") :])
        elif match := _INDEXER.match(text):
            wrapped.indexer = Indexer(self.names.resolve(place, match[1]), bool(match[2]))
        elif match := _NEW.match(text):
            entry = f"ctor_{len(self.constructors):03d}_{wrapped.name}"
            overload = Overload(self._parameters(place, match[1]), VOID, entry, place)
            self._check_distinct(place, self.constructors, overload, "constructor")
            self.constructors.append(overload)
        elif match := _DEF.match(text):
            self._method(place, match)
        elif match := _PROP.match(text):
            name, type_text, read_only, managed = match.groups()
            self._check_name(place, name, managed)
            if any(p.name == name for p in self.properties):
                raise CatalogueError(place, f"property '{name}' stands twice")
            ref = self.names.resolve(place, type_text)
            self.properties.append(
                Property(name, managed or naming.managed_name(name), ref, bool(read_only), place)
            )
        elif match := _FIELD.match(text):
            name, type_text, managed = match.groups()
            if naming.static_name(managed) != name and name != naming.python_name(managed):
                raise CatalogueError(place, f"static '{name}' does not follow from '{managed}'")
            self.statics.append(StaticField(name, managed, self.names.resolve(place, type_text)))
        else:
            raise CatalogueError(place, f"'{text}' is no member")

    def _method(self, place: Place, match: re.Match[str]) -> None:
        static, name, parameters, result, managed = match.groups()
        self._check_name(place, name, managed)
        managed = managed or naming.managed_name(name)
        known = self.methods.get(name)
        earlier = known.overloads if known else ()
        if known and known.static != bool(static):
            raise CatalogueError(place, f"overloads of '{name}' are both static and not")
        overload = Overload(
            self._parameters(place, parameters),
            self.names.resolve(place, result) if result else VOID,
            f"call_{len(earlier):03d}_{managed}",
            place,
        )
        self._check_distinct(place, earlier, overload, f"method '{name}'")
        self.methods[name] = Method(name, managed, bool(static), (*earlier, overload))

    def _parameters(self, place: Place, text: str) -> tuple[Parameter, ...]:
        parameters: list[Parameter] = []
        for part in _split_parameters(text):
            name, _, type_text = part.partition(": ")
            if not type_text:
                raise CatalogueError(place, f"parameter '{part}' has no type")
            if any(p.name == name for p in parameters):
                raise CatalogueError(place, f"parameter '{name}' stands twice")
            parameters.append(Parameter(name, self.names.resolve(place, type_text)))
        return tuple(parameters)

    @staticmethod
    def _check_name(place: Place, name: str, managed: str | None) -> None:
        """The managed name must give the Python name back by the naming rule; an irregular one is written out."""
        if naming.python_name(managed or naming.managed_name(name)) != name:
            raise CatalogueError(place, f"'{name}' does not follow from its managed name by the naming rule")

    @staticmethod
    def _check_distinct(place: Place, earlier: "list[Overload] | tuple[Overload, ...]", new: Overload, what: str) -> None:
        """Two overloads whose parameters have the same types in the same order: no argument tells them apart."""
        shape = [p.type.text for p in new.parameters]
        for other in earlier:
            if [p.type.text for p in other.parameters] == shape:
                raise CatalogueError(place, f"two overloads of {what} take the same arguments")


def _read_callbacks(path: Path) -> tuple[list[SingleCallback], list[CallbackTable], list[GenericCallbackTable]]:
    singles: list[SingleCallback] = []
    tables: list[CallbackTable] = []
    generics: list[GenericCallbackTable] = []

    def slot(place: Place, text: str) -> CallbackSlot:
        match = _SLOT.match(text)
        if not match:
            raise CatalogueError(place, f"'{text}' is no slot")
        arguments: list[tuple[str, str]] = []
        for part in _split_parameters(match[3]):
            type_text, _, name = part.rpartition(" ")
            arguments.append((type_text, name))
        return CallbackSlot(match[1], match[2], tuple(arguments))

    for place, _, text in _rows(path):
        if text.startswith("single "):
            _, setter, rest = text.split(" ", 2)
            singles.append(SingleCallback(setter, slot(place, rest)))
        elif text.startswith("table "):
            words = text.split()
            tables.append(CallbackTable(words[1], words[2:] == ["static"], ()))
        elif text.startswith("slot "):
            if not tables:
                raise CatalogueError(place, "a slot stands before any table")
            last = tables[-1]
            tables[-1] = CallbackTable(last.name, last.static, (*last.slots, slot(place, text[len("slot ") :])))
        elif match := _GENERIC.match(text):
            generics.append(GenericCallbackTable(match[1], match[2], match[3], match[4]))
        else:
            raise CatalogueError(place, f"'{text}' is no row of a callback table")
    return singles, tables, generics


def _link(catalogue: Catalogue) -> None:
    """Resolves bases and interfaces, and refuses unknown ones and circles."""
    types = catalogue.types
    for wrapped in types.values():
        if wrapped.base_name is not None:
            if wrapped.base_name not in types:
                raise CatalogueError(wrapped.place, f"unknown base '{wrapped.base_name}' of '{wrapped.name}'")
            wrapped.base = types[wrapped.base_name]
            if wrapped.is_interface != wrapped.base.is_interface or wrapped.is_struct:
                raise CatalogueError(wrapped.place, f"'{wrapped.name}' cannot derive from '{wrapped.base_name}'")
        for name in wrapped.interfaces:
            if name not in types or not types[name].is_interface:
                raise CatalogueError(wrapped.place, f"unknown interface '{name}' of '{wrapped.name}'")
        if wrapped.outer_name is not None and wrapped.outer_name not in types:
            raise CatalogueError(wrapped.place, f"unknown outer type '{wrapped.outer_name}' of '{wrapped.name}'")
    for wrapped in types.values():
        seen = {wrapped.name}
        for base in catalogue.bases(wrapped):
            if base.name in seen:
                raise CatalogueError(wrapped.place, f"'{wrapped.name}' derives from itself")
            seen.add(base.name)
    tags: dict[str, str] = {}
    everything: list[WrappedType | EnumType] = [*types.values(), *catalogue.enums.values()]
    for item in everything:
        if item.tag in tags:
            raise CatalogueError(item.place, f"tag {item.tag} of '{item.name}' belongs to '{tags[item.tag]}'")
        tags[item.tag] = item.name


def read(folder: Path) -> Catalogue:
    """The whole catalogue, checked. Raises CatalogueError with the file and the line of the first bad row."""
    names = _TypeNames()
    readers = [_ModuleReader(folder / f"{name}.txt", names) for name in MODULE_FILES]
    for reader in readers:
        reader.resolve()
    singles, tables, generics = _read_callbacks(folder / "callbacks.txt")
    catalogue = Catalogue([reader.module for reader in readers], singles, tables, generics)
    _link(catalogue)
    return catalogue
