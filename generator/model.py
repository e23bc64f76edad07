"""What the catalogue says, as typed records: types, members, overloads and their native entry points."""

from __future__ import annotations

from dataclasses import dataclass, field
from enum import Enum
from functools import cached_property
from typing import Iterator, Mapping


class CatalogueError(Exception):
    """A row of the catalogue that cannot stand, with the file and the line."""

    def __init__(self, place: "Place", message: str) -> None:
        super().__init__(f"{place.file}:{place.line}: {message}")
        self.place = place


@dataclass(frozen=True)
class Place:
    """Where a row stands."""

    file: str
    line: int


class Kind(Enum):
    """The managed kind of a value, which decides its native form and its converters."""

    VOID = "void"
    STR = "str"
    BYTES = "bytes"
    OBJECT = "object"
    SYSTEM_TYPE = "Type"
    DOUBLE = "float"
    SINGLE = "float32"
    INT32 = "int"
    UINT32 = "uint"
    INT16 = "short"
    UINT16 = "ushort"
    BOOL = "bool"
    DATETIME = "datetime"
    VERSION = "version"
    STREAM = "stream"
    SYSTEM_ARRAY = "Array"
    ENUM = "enum"
    CLASS = "class"
    STRUCT = "struct"
    INTERFACE = "interface"
    ARRAY = "T[]"
    ILIST = "IList<T>"
    ICOLLECTION = "ICollection<T>"
    LIST = "List<T>"
    ITERABLE = "Iterable<T>"
    OUT = "out<T>"


SCALARS: Mapping[str, Kind] = {
    kind.value: kind
    for kind in (
        Kind.STR, Kind.BYTES, Kind.OBJECT, Kind.SYSTEM_TYPE, Kind.DOUBLE, Kind.SINGLE, Kind.INT32, Kind.UINT32,
        Kind.INT16, Kind.UINT16, Kind.BOOL, Kind.DATETIME, Kind.VERSION, Kind.STREAM, Kind.SYSTEM_ARRAY,
    )
}  # fmt: skip

COLLECTIONS = (Kind.ARRAY, Kind.ILIST, Kind.ICOLLECTION, Kind.LIST, Kind.ITERABLE)

# Tags of the elements that are no wrapped type. They are fixed names, not computed.
ELEMENT_TAGS: Mapping[str, str] = {
    "float": "1BA766B5",
    "int": "A4A29720",
    "ushort": "57AC8DC4",
    "uint": "110A8374",
    "short": "A2718E40",
    "bool": "3AC634AC",
    "str": "CBE911FC",
    "bytes": "8A028265",
    "object": "F372CE9B",
    "int[]": "DAF680C1",
}

# The nested type stands under a tag of its own in everything generic.
GENERIC_TAGS: Mapping[str, str] = {"Segment": "40FCDDB9"}


@dataclass(frozen=True)
class TypeRef:
    """A type as a row names it, resolved."""

    kind: Kind
    text: str
    type_name: str | None = None  # of an enum, class, struct or interface
    element: "TypeRef | None" = None  # of a collection or an out parameter
    nullable: bool = False


VOID = TypeRef(Kind.VOID, "None")


@dataclass(frozen=True)
class Parameter:
    """One parameter of an overload: its keyword and its type."""

    name: str
    type: TypeRef


@dataclass(frozen=True)
class Overload:
    """One row of a constructor or method: what it takes, what it gives, and the entry point that it calls."""

    parameters: tuple[Parameter, ...]
    result: TypeRef
    entry: str
    place: Place


@dataclass(frozen=True)
class Method:
    """A method with its overloads in dispatch order."""

    name: str
    managed: str
    static: bool
    overloads: tuple[Overload, ...]


@dataclass(frozen=True)
class Property:
    """An instance property."""

    name: str
    managed: str
    type: TypeRef
    read_only: bool
    place: Place

    @property
    def getter(self) -> str:
        return f"get_{self.managed}"

    @property
    def setter(self) -> str:
        return f"set_{self.managed}"


@dataclass(frozen=True)
class StaticField:
    """A static read-only field, readable on the class."""

    name: str
    managed: str
    type: TypeRef

    @property
    def entry(self) -> str:
        return f"getsa_{self.managed}"


@dataclass(frozen=True)
class Indexer:
    """A managed indexer: its element, and whether it can be written."""

    element: TypeRef
    read_only: bool


@dataclass(frozen=True)
class EnumType:
    """A managed enum. A byte enum crosses as `unsigned char`; a flags enum becomes an `enum.IntFlag`."""

    name: str
    tag: str
    byte: bool
    flags: bool
    members: tuple[tuple[str, int], ...]
    module: "Module"
    place: Place

    ENTRIES = (
        "btp_TypeOf", "btp_CastTo", "btp_ReInterpretObj", "btp_AsUniEnum", "btp_CastAs", "btp_IsAssignable",
        "btp_GetType",
    )  # fmt: skip

    @property
    def managed_class(self) -> str:
        return f"{self.module.interop_namespace}.WrpCs_{self.name[:8]}_{self.tag}"

    @property
    def managed_type(self) -> str:
        return f"{self.module.namespace}.{self.name}"

    @property
    def native(self) -> str:
        """The middle part of every native name of this type."""
        return f"{self.tag}_{self.name}"


@dataclass
class WrappedType:
    """A managed class, struct, interface or static holder that Python sees as a wrapper type."""

    name: str
    tag: str
    kind: str  # "class", "struct", "interface" or "holder"
    module: "Module"
    place: Place
    base_name: str | None = None
    outer_name: str | None = None
    interfaces: tuple[str, ...] = ()
    disposable: bool = False
    iterable: TypeRef | None = None
    indexer: Indexer | None = None
    constructors: tuple[Overload, ...] = ()
    methods: tuple[Method, ...] = ()
    properties: tuple[Property, ...] = ()
    statics: tuple[StaticField, ...] = ()
    base: "WrappedType | None" = field(default=None, repr=False)

    # The structs that can be cast to a type given at run time.
    CASTABLE_STRUCTS = ("Vector2", "Vector3", "Vector4", "FVector2", "FVector3", "FVector4")

    @property
    def native(self) -> str:
        return f"{self.tag}_{self.name}"

    @property
    def managed_class(self) -> str:
        return f"{self.module.interop_namespace}.WrpCs_{self.name[:8]}_{self.tag}"

    @property
    def managed_type(self) -> str:
        """The managed full name under which the type is registered; a nested one has a plus sign."""
        inner = f"{self.outer_name}+{self.name}" if self.outer_name else self.name
        return f"{self.module.namespace}.{inner}"

    @property
    def tp_name(self) -> str:
        inner = f"{self.outer_name}.{self.name}" if self.outer_name else self.name
        return f"{self.module.name}.{inner}"

    @property
    def is_struct(self) -> bool:
        return self.kind == "struct"

    @property
    def is_interface(self) -> bool:
        return self.kind == "interface"

    @property
    def has_cast_from(self) -> bool:
        return self.name in self.CASTABLE_STRUCTS

    @property
    def generic_tag(self) -> str:
        return GENERIC_TAGS.get(self.name, self.tag)

    @cached_property
    def builtins(self) -> tuple[str, ...]:
        """The built-in entry points, in binding order."""
        if self.kind == "holder":
            return ("btp_TypeOf",)
        names = ["btp_TypeOf", "btp_CastTo"]
        if self.has_cast_from:
            names.append("btp_CastFrom")
        if not self.is_interface:
            names.append("btp_ReInterpretObj")
        return (*names, "btp_CastAs", "btp_IsAssignable")

    def entries(self) -> Iterator[str]:
        """Every entry point that the type's host binds, in binding order."""
        for constructor in self.constructors:
            yield constructor.entry
        for method in self.methods:
            for overload in method.overloads:
                yield overload.entry
        for prop in self.properties:
            yield prop.getter
            if not prop.read_only:
                yield prop.setter
        for static in self.statics:
            yield static.entry
        if self.indexer:
            yield "btp_SqGetItem"
            if not self.indexer.read_only:
                yield "btp_SqSetItem"
        yield from self.builtins


@dataclass
class Module:
    """One Python module of the public tree, with its types in the order of the table."""

    name: str
    namespace: str
    enums: list[EnumType] = field(default_factory=list)
    types: list[WrappedType] = field(default_factory=list)

    @property
    def short(self) -> str:
        return self.name.rpartition(".")[2]

    @property
    def interop_namespace(self) -> str:
        sub = self.namespace.split(".")[2:]
        return ".".join(["WrpNs_Velbor", "WrpNs_Voxlar", *(f"WrpNs_{word}" for word in sub)])


@dataclass(frozen=True)
class CallbackSlot:
    """One slot of a callback table: the native function, its result and its arguments as C types."""

    name: str
    result: str
    arguments: tuple[tuple[str, str], ...]  # (type, name)


@dataclass(frozen=True)
class CallbackTable:
    """A flat table of slots; `static` tables are entries of the table of tables."""

    name: str
    static: bool
    slots: tuple[CallbackSlot, ...]


@dataclass(frozen=True)
class SingleCallback:
    """A callback that is handed over alone by a setter of the exchange class."""

    setter: str
    slot: CallbackSlot


@dataclass(frozen=True)
class GenericCallbackTable:
    """A table of callbacks over one element type."""

    kind: str  # "pyiter", "pylist" or "pyseq"
    tag: str
    value: str  # C type that get_item and iter_next fill
    element: str | None  # C type in which an element goes to the write side, long tables alone

    @property
    def long(self) -> bool:
        return self.element is not None

    @property
    def slot_names(self) -> tuple[str, ...]:
        if self.kind == "pyiter":
            return ("iter_next",)
        if not self.long:
            return ("get_item",)
        if self.kind == "pylist":
            return ("get_item", "set_item", "add", "insert", "remove", "contains", "index_of")
        return ("get_item", "contains", "index_of")

    @property
    def slots(self) -> tuple[CallbackSlot, ...]:
        owner = ("PyObject*", {"pyiter": "iterator", "pylist": "list", "pyseq": "sequence"}[self.kind])
        index = ("int", "index")
        out = (f"{self.value}*", "value")
        element = (self.element or "", "element")
        keeper = ("PyObject**", "item")
        get_item = (owner, index, out) if self.kind == "pylist" else (owner, index, keeper, out)
        arguments: Mapping[str, tuple[tuple[str, str], ...]] = {
            "iter_next": (owner, keeper, out),
            "get_item": get_item,
            "set_item": (owner, index, element),
            "add": (owner, element),
            "insert": (owner, index, element),
            "remove": (owner, element),
            "contains": (owner, element),
            "index_of": (owner, element),
        }
        return tuple(
            CallbackSlot(f"fn_clbk_{self.kind}_{self.tag}_{name}", "int", arguments[name]) for name in self.slot_names
        )


@dataclass
class Catalogue:
    """Everything that the generator knows."""

    modules: list[Module]
    singles: list[SingleCallback]
    tables: list[CallbackTable]
    generics: list[GenericCallbackTable]

    @cached_property
    def types(self) -> dict[str, WrappedType]:
        return {t.name: t for module in self.modules for t in module.types}

    @cached_property
    def enums(self) -> dict[str, EnumType]:
        return {e.name: e for module in self.modules for e in module.enums}

    def element_tag(self, element: TypeRef) -> str:
        """The tag under which generic instantiations over this element stand."""
        if element.text in ELEMENT_TAGS:
            return ELEMENT_TAGS[element.text]
        assert element.type_name is not None, element
        return self.types[element.type_name].generic_tag

    def bases(self, wrapped: WrappedType) -> Iterator[WrappedType]:
        """The chain of bases, the nearest first."""
        base = wrapped.base
        while base is not None:
            yield base
            base = base.base
