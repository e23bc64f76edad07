"""Reads the table of closed generic types, catalogue/generics.txt, and refuses rows that cannot stand."""

from __future__ import annotations

import re
from dataclasses import dataclass
from pathlib import Path
from typing import Iterator

from generator.model import Catalogue, CatalogueError, Place

# Forms of elements that are no wrapped type.
PLAIN_FORMS = ("double", "int", "ushort", "uint", "short", "bool", "string", "bytes", "object", "int[]")
WRAPPED_FORMS = ("class", "struct", "interface")

# The kinds of wrapper types, in the order in which the module of typed wrappers attaches them.
WRAPPERS = ("Array", "IList", "ICol", "Iter", "List")
CONVERTERS = ("array", "ilist", "list", "iterable")

# The managed interop class of each kind, without the tag.
MANAGED_CLASSES = {
    "Iter": "SiApiEnumerator",
    "Iterable": "SiApiEnumerable",
    "ICol": "SiApiCntCollection",
    "IList": "SiApiCntList",
    "List": "SiApiList",
    "Array": "SiApiArray",
}

_ROW = re.compile(r"([0-9A-F]{8}) +(\S+) +(\S+) +(\S+) +(\S+)$")


@dataclass(frozen=True)
class Instantiation:
    """One element type: its tag, how it crosses, and what there is over it."""

    tag: str
    element: str
    form: str
    wrappers: tuple[str, ...]
    converters: tuple[str, ...]
    place: Place

    @property
    def has_iterable_host(self) -> bool:
        return "Iter" in self.wrappers or "iterable" in self.converters

    @property
    def hosts(self) -> tuple[str, ...]:
        """The kinds of hosts, each with a managed class of its own."""
        kinds = set(self.wrappers)
        if self.has_iterable_host:
            kinds.add("Iterable")
        if "IList" in kinds:
            kinds.add("ICol")
        if "array" in self.converters:
            kinds.add("Array")
        return tuple(kind for kind in MANAGED_CLASSES if kind in kinds)

    @property
    def only_comes_out(self) -> bool:
        """True when no element is ever passed to the managed side."""
        return self.wrappers == ("Iter",) and not self.converters


def read(folder: Path, catalogue: Catalogue) -> list[Instantiation]:
    """The rows of generics.txt, in order, checked against the catalogue's types and callback tables."""
    path = folder / "generics.txt"
    rows: list[Instantiation] = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), start=1):
        text = line.partition("#")[0].strip()
        if text:
            rows.append(_row(Place(path.name, number), text, catalogue))
    _check_unique(rows)
    tags = {row.tag for row in rows}
    for table in catalogue.generics:
        if table.tag not in tags:
            place = Place(path.name, 0)
            raise CatalogueError(place, f"no row for {table.tag}, over which callbacks.txt has a table")
    return rows


def _row(place: Place, text: str, catalogue: Catalogue) -> Instantiation:
    match = _ROW.match(text)
    if match is None:
        raise CatalogueError(place, f"not a row of an element type: {text!r}")
    tag, element, form, wrappers, converters = match.groups()
    if form in WRAPPED_FORMS:
        wrapped = catalogue.types.get(element)
        if wrapped is None:
            raise CatalogueError(place, f"unknown type {element!r}")
        if wrapped.kind != form:
            raise CatalogueError(place, f"{element} is a {wrapped.kind}, not a {form}")
        if wrapped.generic_tag != tag:
            raise CatalogueError(place, f"{element} stands under {wrapped.generic_tag}, not {tag}")
    elif form not in PLAIN_FORMS:
        raise CatalogueError(place, f"unknown form {form!r}")
    return Instantiation(
        tag, element, form, _words(place, wrappers, WRAPPERS), _words(place, converters, CONVERTERS), place
    )


def _words(place: Place, text: str, known: tuple[str, ...]) -> tuple[str, ...]:
    words = () if text == "-" else tuple(text.split(","))
    for word in words:
        if word not in known:
            raise CatalogueError(place, f"unknown word {word!r}; known are {', '.join(known)}")
    return words


def _check_unique(rows: list[Instantiation]) -> None:
    seen: dict[str, Instantiation] = {}
    for row in rows:
        if row.tag in seen:
            first = seen[row.tag].place.line
            raise CatalogueError(row.place, f"tag {row.tag} stands in line {first} already")
        seen[row.tag] = row


def in_module_order(rows: list[Instantiation]) -> Iterator[tuple[Instantiation, str]]:
    """Every wrapper type in the order in which the module readies and attaches it: by kind, then by tag."""
    for kind in WRAPPERS:
        for row in rows:
            if kind in row.wrappers:
                yield row, kind
