"""Run as a process of its own, since a host binds once a process: takes entry points away from the managed side, then
uses every type and holds what it says against what is missing.

usage: missing_entries.py each|referred|start
    each       one entry point of every host of a type is missing: the first, in the next process the second, and so on
               until every one was missing once
    referred   one is missing in each type that others refer to and that refers to none itself
    start      each entry point of the two hosts that are bound at start-up is missing in turn: no import
"""

from __future__ import annotations

import enum
import os
import sys
from dataclasses import dataclass
from typing import Any, Callable, Dict, List, Optional, Tuple

import samples
import scripted
from generator.model import WrappedType
from samples import CATALOGUE

ASSEMBLY = "WrpInterop.Velbor.Voxlar"
CHAINED = "one or more refereced type is not initialized"
INTEROP, GENERIC = "Velbor.WrpGen.Interop.", "Velbor.WrpGen.Generic."
MANAGED_NAMES = {
    "IDisposable": "SiApiDisposable", "Iter": "SiApiEnumerator", "Iterable": "SiApiEnumerable",
    "ICol": "SiApiCntCollection", "IList": "SiApiCntList", "Array": "SiApiArray", "List": "SiApiList",
    "ArrList": "SiApiArrayList", "ColBase": "SiApiCollectionBase", "RoColBase": "SiApiReadOnlyCollectionBase",
    "Stream": "SiApiStream",
}  # fmt: skip
# What the collection types refer to, in the order in which they ask.
INTEROP_REFERENCES = {
    "ICol": ["Iterable"], "IList": ["ICol", "Iterable"], "Array": ["Iterable"], "ArrList": ["Iterable"],
    "ColBase": ["IList", "ICol", "Iterable"], "RoColBase": ["ICol", "Iterable"], "Stream": ["IDisposable"],
}  # fmt: skip
GENERIC_REFERENCES = {"ICol": ["Iterable"], "IList": ["ICol", "Iterable"], "Array": ["Iterable"], "List": ["Iterable"]}
LATE_CASTS = ("btp_TypeOf", "btp_CastTo", "btp_CastAs", "btp_IsAssignable")


@dataclass
class Checked:
    """A type with a host: the managed classes of its host and of what it refers to, and how it is used."""

    name: str
    managed_class: str
    references: List[str]  # managed classes
    uses: Callable[[Any], List[Callable[[], Any]]]


def uses_of(python_type: Any) -> List[Callable[[], Any]]:
    """What runs without an instance: each begins with the check."""
    found = [python_type._type_of, lambda: python_type._cast_to(None), lambda: python_type._cast_as(None)]
    if isinstance(python_type, enum.EnumMeta):
        return [*found, list(python_type)[0].get_type, list(python_type)[0]._as_uni_enum]
    return [*found, lambda: python_type.__new__(python_type)]


def wrapped_type(wrapped: WrappedType) -> Checked:
    references = []
    if wrapped.base is not None and not wrapped.is_interface:
        references.append(wrapped.base.managed_class)
    references += [CATALOGUE.types[name].managed_class for name in wrapped.interfaces]
    if wrapped.base is not None and wrapped.is_interface:
        references.append(wrapped.base.managed_class)
    if wrapped.iterable:
        references.append(f"{GENERIC}SiApiEnumerable_{CATALOGUE.element_tag(wrapped.iterable)}")
    if wrapped.disposable:
        references.append(INTEROP + "SiApiDisposable")

    def uses(voxlar: Any) -> List[Callable[[], Any]]:
        python_type = samples.python_type(voxlar, wrapped)
        if wrapped.kind == "holder":
            return [python_type._type_of]
        statics = [lambda s=s: getattr(python_type, s.name) for s in wrapped.statics]
        for method in wrapped.methods:
            if method.static:
                statics.append(getattr(python_type, method.name))
        return uses_of(python_type) + statics

    return Checked(wrapped.tp_name, wrapped.managed_class, references, uses)


def checked_types(side: scripted.ManagedSide) -> List[Checked]:
    """Every wrapped type, enum and collection type."""
    found = [wrapped_type(wrapped) for wrapped in CATALOGUE.types.values()]
    for row in CATALOGUE.enums.values():
        def enum_uses(voxlar: Any, row: Any = row) -> List[Callable[[], Any]]:
            owner = voxlar if row.module is CATALOGUE.modules[0] else getattr(voxlar, row.module.short)
            return uses_of(getattr(owner, row.name))

        found.append(Checked(row.name, row.managed_class, [], enum_uses))
    for kind, name in MANAGED_NAMES.items():
        if kind != "List":
            references = [INTEROP + MANAGED_NAMES[r] for r in INTEROP_REFERENCES.get(kind, [])]
            found.append(Checked(kind, INTEROP + name, references,
                                 lambda v, k=kind: uses_of(getattr(v._wrpgen._interop, f"_{k}Wrapper"))))  # fmt: skip
    for kind, name in MANAGED_NAMES.items():
        for managed_class in side.classes:
            stem, _, tag = managed_class[len(GENERIC) :].rpartition("_")
            if not managed_class.startswith(GENERIC) or stem != name:
                continue
            references = [f"{GENERIC}{MANAGED_NAMES[r]}_{tag}" for r in GENERIC_REFERENCES.get(kind, [])]
            if kind == "Iter":
                references = [INTEROP + "SiApiDisposable"]

            def uses(v: Any, k: str = kind, t: str = tag) -> List[Callable[[], Any]]:
                python_type = getattr(v._wrpgen._generic, f"_{k}Wrapper_{t}", None)
                return [] if python_type is None else uses_of(python_type)

            found.append(Checked(f"{kind}_{tag}", managed_class, references, uses))
    return found


def bound_entries(side: scripted.ManagedSide, managed_class: str) -> List[str]:
    """What the host binds, in order; the casts of the typed ICollection are looked up later, one by one."""
    late = LATE_CASTS if managed_class.startswith(GENERIC + "SiApiCntCollection_") else ()
    return [name for name in side.classes[managed_class] if name not in late]


def take_away(side: scripted.ManagedSide, index: Optional[int]) -> Dict[str, str]:
    """managed class -> its missing entry point: that of the index, or without one the last of each type that others
    refer to."""
    types = checked_types(side)
    if index is None:
        referred = {reference for row in types for reference in row.references}
        classes = [r.managed_class for r in types if r.managed_class in referred and not r.references]
    else:
        classes = [r.managed_class for r in types]
    missing = {}
    for managed_class in classes:
        entries = bound_entries(side, managed_class)
        if index is None or index < len(entries):
            missing[managed_class] = entries[-1 if index is None else index]
    side.missing = set(missing.items())
    return missing


def expected(row: Checked, missing: Dict[str, str], rows: Dict[str, Checked]) -> Optional[Tuple[str, bool]]:
    """The text that a use of the type raises and whether it comes from a type that this one refers to; None for a
    type that works."""

    if row.managed_class in missing:
        return missing_text(row.managed_class, missing[row.managed_class]), False
    for reference in row.references:
        found = expected(rows[reference], missing, rows)
        if found is not None:
            return found[0], True
    return None


def failure(use: Callable[[], Any]) -> Optional[Tuple[str, bool]]:
    """What a use raised, in the form of `expected`."""
    try:
        use()
    except TypeError as error:
        if str(error) != CHAINED:
            assert error.__cause__ is None and error.__context__ is None, error
            return str(error), False
        assert type(error.__cause__) is TypeError, error
        return str(error.__cause__), True
    return None


@dataclass
class Outcome:
    """How many of each were seen."""

    missing: int = 0
    own: int = 0  # types refused by their own host
    dependent: int = 0  # types refused by one that they refer to
    working: int = 0
    uses: int = 0


def use_all(index: Optional[int]) -> Outcome:
    """Imports the module over a side that lacks entry points, and uses all types."""
    missing: Dict[str, str] = {}
    side = scripted.install(lambda side: missing.update(take_away(side, index)))
    voxlar = sys.modules["velbor.voxlar"]
    rows = {row.managed_class: row for row in checked_types(side)}
    outcome = Outcome(len(missing))
    for row in rows.values():
        wanted = expected(row, missing, rows)
        uses = row.uses(voxlar)
        if wanted is None:
            outcome.working += 1
            # A static method may still refuse a call without arguments, so the first use stands for all.
            assert not uses or failure(uses[0]) is None, row.name
            continue
        for use in uses:
            assert failure(use) == wanted, f"{row.name}: {failure(use)} instead of {wanted}"
        outcome.uses += len(uses)
        looked_up = list(side.bound)
        for use in uses:
            assert failure(use) == wanted, row.name
        assert side.bound == looked_up, f"{row.name}: looked up again"
        if uses and not wanted[1]:
            entries = bound_entries(side, row.managed_class)
            tried = [method for name, method in side.bound if name == row.managed_class]
            assert tried == entries[: entries.index(missing[row.managed_class]) + 1], row.name
            outcome.own += 1
        elif uses:
            outcome.dependent += 1
    if index is None:
        # Members of an enum, the module's version and what has nothing to do with the broken types go on.
        assert voxlar.Axis.Y_AXIS == 1 and str(voxlar.VERSION)
        assert type(voxlar.utilities.Vector3(1.0, 2.0, 3.0).x) is float
        assert outcome.dependent > 100 and outcome.working > 100, outcome
    return outcome


def missing_text(managed_class: str, method: str) -> str:
    """The told text."""
    return (f"While initializing the host for the '{managed_class} (Assembly={ASSEMBLY})' type, an error occurred - "
            f"Method '{method}' not found (error={scripted.MISSING})")  # fmt: skip


def refused_import(managed_class: str, method: str) -> bool:
    """Whether the import fails, with the missing method told somewhere down the chain of causes."""
    try:
        scripted.install(lambda side: side.missing.add((managed_class, method)))
    except ImportError as error:
        cause: Optional[BaseException] = error
        while cause is not None and str(cause) != missing_text(managed_class, method):
            cause = cause.__cause__
        return type(cause) is TypeError
    return False


def in_a_process(run: Callable[[], int]) -> int:
    """The status that `run` gave in a child of its own, since a host binds once a process."""
    child = os.fork()
    if child == 0:
        status = 1
        try:
            status = run()
        finally:
            sys.stdout.flush()
            os._exit(status)
    _, status = os.waitpid(child, 0)
    assert os.WIFEXITED(status), f"killed: {status}"
    return os.WEXITSTATUS(status)


DONE, NOTHING_LEFT = 0, 2


def miss(index: int) -> int:
    outcome = use_all(index)
    print(f"entry point {index}: {outcome}")
    return DONE if outcome.missing else NOTHING_LEFT


def start_up_entries() -> List[Tuple[str, str]]:
    classes = scripted.signatures.read(scripted.build_folder() / "generated")
    return [(INTEROP + host, method) for host in ("ExchangeHost", "ObjectHost") for method in classes[INTEROP + host]]


def main(mode: str) -> None:
    if mode == "referred":
        print(use_all(None))
    elif mode == "start":
        entries = start_up_entries()
        for entry in entries:
            assert in_a_process(lambda e=entry: DONE if refused_import(*e) else 1) == DONE, entry
        print(f"{len(entries)} entry points missing at start-up")
    else:
        index = 0
        while True:
            status = in_a_process(lambda: miss(index))
            assert status in (DONE, NOTHING_LEFT), f"entry point {index}: exit {status}"
            if status == NOTHING_LEFT:
                break
            index += 1


if __name__ == "__main__":
    main(sys.argv[1])
