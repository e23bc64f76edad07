"""Writes the entry points of collections without an element type, and the casts of classes else written by hand."""

from __future__ import annotations

from dataclasses import dataclass, field
from pathlib import Path
from typing import Callable, Iterator, Mapping

from generator.emit_csharp import (
    CLASS_CASTS,
    COLLECTION_ENTRIES,
    HANDLE,
    HEAD,
    INTERFACE_CASTS,
    RECORD,
    Collection,
    Row,
    Types,
    casts,
    collection_rows,
    entry,
    static_class,
)
from generator.model import Catalogue, Kind, TypeRef
from generator.writer import write

_INTEROP = "Velbor.WrpGen.Interop"
_REFLECTION = "Velbor.WrpGen.Reflection"


def _interface(managed: str) -> dict[str, Row]:
    rows = casts(managed, RECORD)
    return {name: rows[name] for name in INTERFACE_CASTS}


def _class(managed: str) -> dict[str, Row]:
    """Whether an object is one of the class is asked with a handle or with the address of a record."""
    either = ("int", (HANDLE,), f"return Casts.IsInstanceOfEither<{managed}>(value);", "0")
    rows: dict[str, Row] = {**casts(managed, RECORD), "btp_IsAssignable": either}
    return {name: rows[name] for name in CLASS_CASTS}


def _reflected(managed: str) -> dict[str, Row]:
    """Any object may be a struct, which crosses in a record."""
    rows = casts(managed, RECORD if managed == "object" else HANDLE)
    return {name: rows[name] for name in CLASS_CASTS}


_ENUMERABLE = "return Handles.New(new PyEnumerableProxy<object>(source, Elements.Object));"
_COLLECTION = "return Handles.New(new PyCollectionProxy<object>(source, Elements.Object));"
_LIST = "return Handles.New(new PyListProxy<object>(source, Elements.Object));"
_SEQUENCE = "return Handles.New(new PySequenceProxy<object>(source, Elements.Object));"
_ABSTRACT = "throw Untyped.IsAbstract(typeof({managed}));"


@dataclass(frozen=True)
class Service:
    """A class of entry points over one managed type; `made` has what a Python list or the like is made into."""

    name: str
    managed: str
    casts: Callable[[str], dict[str, Row]]
    entries: tuple[str, ...] = ()
    made: Mapping[str, str] = field(default_factory=dict)
    namespace: str = _INTEROP


SERVICES = (
    Service("SiApiDisposable", "IDisposable", _interface),
    Service("SiApiEnumerator", "IEnumerator", _interface, COLLECTION_ENTRIES["Iter"]),
    Service(
        "SiApiEnumerable", "IEnumerable", _interface, COLLECTION_ENTRIES["Iterable"], {"Iterable": _ENUMERABLE}
    ),
    Service(
        "SiApiCntCollection",
        "ICollection",
        _interface,
        ("SqLength", "SqContains", "CountOf"),
        {"List": _LIST, "Iterable": _COLLECTION},
    ),
    # Collection bases are served here, too.
    Service(
        "SiApiCntList",
        "IList",
        _interface,
        (
            "SqGetItem", "SqGetItemNoCheck", "SqSetItem", "SqSetItemNoCheck", "Add", "Insert", "Remove", "RemoveAt",
            "Pop", "Clear", "SqInplaceConcat", "SqInplaceRepeat", "MpSetItems", "MpRemoveItems", "Reverse", "Sort",
            "IndexBy", "SqContains", "CountOf",
        ),
        {"List": _LIST, "Sequence": _SEQUENCE},
    ),
    Service(
        "SiApiArray",
        "Array",
        _class,
        COLLECTION_ENTRIES["Array"],
        {
            "List": "return Handles.New(Elements.Object.ListToArray(source));",
            "Sequence": "return Handles.New(Elements.Object.SequenceToArray(source));",
        },
    ),
    Service(
        "SiApiArrayList",
        "ArrayList",
        _class,
        COLLECTION_ENTRIES["List"],
        {
            "List": "return Handles.New(new ArrayList(Elements.Object.ListToArray(source)));",
            "Sequence": "return Handles.New(new ArrayList(Elements.Object.SequenceToArray(source)));",
        },
    ),
    Service("SiApiCollectionBase", "CollectionBase", _class, (), {"List": _ABSTRACT, "Sequence": _ABSTRACT}),
    Service(
        "SiApiReadOnlyCollectionBase", "ReadOnlyCollectionBase", _class, (), {"List": _ABSTRACT, "Sequence": _ABSTRACT}
    ),
    # What else these offer is written by hand.
    Service("SiApiStream", "Stream", _class),
    Service("EnumApi", "Enum", _reflected, namespace=_REFLECTION),
    Service("TypeApi", "Type", _reflected, namespace=_REFLECTION),
    Service("ObjectApi", "object", _reflected, namespace=_REFLECTION),
)  # fmt: skip

_LISTS = ("IList", "Array", "ArrayList")


def _rows(managed: str, types: Types) -> dict[str, Row]:
    """The rows of the typed collections over objects, with other bodies where a missing element type asks for more."""
    itself = f"Handles.{'View' if managed.startswith('I') else 'Get'}<{managed}>(self)"
    view = "UntypedList.Over(Handles.Get(self))" if managed in _LISTS else itself
    on = Collection(
        managed,
        TypeRef(Kind.OBJECT, "object"),
        length=f"{itself}.{'Length' if managed == 'Array' else 'Count'}",
        view=view,
        own=view,
        counted=view,
        remove="RemoveRun" if managed == "ArrayList" else "RemoveItems",
    )
    sought = "Untyped.Sought(list, In.Value(value))"
    bodies = {
        "SqContains": "return Untyped.CountOf(Handles.Get(self), In.Value(value), 1);",
        "CountOf": "return Untyped.CountOf(Handles.Get(self), In.Value(value), int.MaxValue);",
        "IndexBy": f"IList<object> list = {view};\n"
        f"return Lists.IndexBy(list, hasStart, start, hasStop, stop, {sought});",
        "Clear": "Handles.View<IList>(self).Clear();",
        "MoveNext": "return Untyped.Next(Handles.Get(self), result);",
    }
    shared = collection_rows(on, types)
    rows = {
        name: (result, arguments, bodies.get(name, body), failure)
        for name, (result, arguments, body, failure) in shared.items()
    }
    return {**rows, "SqSetItemNoCheck": rows["SqSetItemNoChek"]}


def _entries(service: Service, types: Types) -> Iterator[str]:
    rows = _rows(service.managed, types)
    for name in service.entries:
        yield entry(name, *rows[name])
    for sort, body in service.made.items():
        body = body.format(managed=service.managed)
        yield entry(f"CreateInstanceFromPy{sort}", "void*", ("PyObject* source",), body)
    for name, row in service.casts(service.managed).items():
        yield entry(name, *row)


def emit(catalogue: Catalogue, _: Path, out: Path) -> None:
    """Writes services.cs. Every class is partial, for what may be written of it by hand."""
    types = Types(catalogue)
    head = f"{HEAD}using System.Collections;\nusing System.IO;\n"
    classes = [
        static_class(service.namespace, service.name, list(_entries(service, types)), partial=True)
        for service in SERVICES
    ]
    write(out / "csharp" / "services.cs", head + "".join(classes))
