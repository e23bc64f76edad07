"""Every entry point of the collection hosts fails once with a managed exception: that exception and nothing else comes
out, and no handle is left."""

from __future__ import annotations

import sys
from pathlib import Path
from typing import Any, Callable, Dict, Iterator, List, Tuple

import pytest
import samples
from samples import CATALOGUE

INTEROP, GENERIC = "Velbor.WrpGen.Interop.", "Velbor.WrpGen.Generic."
_ROOT = Path(__file__).resolve().parents[2]

# kind -> the managed class of its own host, then those of the hosts that it uses beside it
HOSTS = {
    "Iter": ["SiApiEnumerator"],
    "Iterable": ["SiApiEnumerable"],
    "ICol": ["SiApiCntCollection", "SiApiEnumerable"],
    "IList": ["SiApiCntList", "SiApiCntCollection", "SiApiEnumerable"],
    "Array": ["SiApiArray", "SiApiEnumerable"],
    "List": ["SiApiList", "SiApiEnumerable"],
    "ArrList": ["SiApiArrayList", "SiApiEnumerable"],
    "ColBase": ["SiApiCollectionBase", "SiApiCntList", "SiApiCntCollection", "SiApiEnumerable"],
    "RoColBase": ["SiApiReadOnlyCollectionBase", "SiApiCntCollection", "SiApiEnumerable"],
    "IDisposable": ["SiApiDisposable"],
}
INTEROP_KINDS = [kind for kind in HOSTS if kind != "List"]
SCALARS = {"double": 1.5, "int": 3, "ushort": 3, "uint": 3, "short": 3, "bool": True, "string": "text",
           "bytes": b"bytes", "byte[]": b"bytes", "object": "thing", "int[]": [1]}  # fmt: skip


class Boom(Exception):
    """Stands for what the managed side raises."""


def generic_rows() -> Dict[str, Tuple[str, List[str]]]:
    """tag -> (element, kinds of wrappers)."""
    rows = {}
    for line in (_ROOT / "catalogue/generics.txt").read_text(encoding="utf-8").splitlines():
        words = line.partition("#")[0].split()
        if words:
            rows[words[0]] = (words[1], [] if words[3] == "-" else words[3].split(","))
    return rows


GENERICS = generic_rows()
CASES = [("", kind) for kind in INTEROP_KINDS] + [(tag, kind) for tag, row in GENERICS.items() for kind in row[1]]


def sample(voxlar: Any, tag: str) -> Any:
    """An element that fits."""
    if not tag:
        return "thing"
    element = GENERICS[tag][0]
    return SCALARS[element] if element in SCALARS else samples.blank(voxlar, CATALOGUE.types[element])


def delete(this: Any, key: Any) -> None:
    del this[key]


def operations(python_type: Any, this: Any, item: Any) -> Iterator[Tuple[str, Callable[[], Any]]]:
    """(entry point, an operation that reaches it)."""
    other = python_type.__new__(python_type)  # a managed collection, which is taken over in one crossing
    yield "MoveNext", lambda: next(this)
    yield "GetEnumerator", lambda: iter(this)
    yield "SqLength", lambda: len(this)
    yield "SqContains", lambda: item in this
    yield "CountOf", lambda: this.count(item)
    yield "IndexBy", lambda: this.index(item)
    yield "SqGetItem", lambda: this[0]
    yield "SqGetItemNoCheck", lambda: this[0:2]
    yield "SqSetItem", lambda: this.__setitem__(0, item)
    yield "SqSetItemNoCheck", lambda: this.__setitem__(slice(0, 2), [item, item])
    yield "SqSetItemNoChek", lambda: this.__setitem__(slice(0, 2), [item, item])
    yield "MpSetItems", lambda: this.__setitem__(slice(0, 3), other)
    yield "MpRemoveItems", lambda: delete(this, slice(0, 2))
    yield "Add", lambda: this.append(item)
    yield "Insert", lambda: this.insert(0, item)
    yield "Remove", lambda: this.remove(item)
    yield "RemoveAt", lambda: delete(this, 0)
    yield "Pop", lambda: this.pop()
    yield "Clear", lambda: this.clear()
    yield "Reverse", lambda: this.reverse()
    yield "Sort", lambda: this.sort()
    yield "SqInplaceConcat", lambda: this.__iadd__(other)
    yield "SqInplaceRepeat", lambda: this.__imul__(2)
    yield "EnsureCapacity", lambda: this.extend([item, item])
    yield "btp_TypeOf", lambda: python_type._type_of()
    yield "btp_CastTo", lambda: python_type._cast_to(this)
    yield "btp_CastAs", lambda: python_type._cast_as(this)


@pytest.mark.parametrize(("tag", "kind"), CASES, ids=[f"{kind}_{tag}" for tag, kind in CASES])
def test_a_failing_entry_point(tag: str, kind: str, managed: Any, voxlar: Any) -> None:
    owner = voxlar._wrpgen._generic if tag else voxlar._wrpgen._interop
    python_type = getattr(owner, f"_{kind}Wrapper_{tag}" if tag else f"_{kind}Wrapper")
    this, item = python_type.__new__(python_type), sample(voxlar, tag)
    stem, suffix = (GENERIC, f"_{tag}") if tag else (INTEROP, "")
    hosts = [stem + name + suffix for name in HOSTS[kind]]
    met = []
    for entry, operation in operations(python_type, this, item):
        # A cast stands in each host, and a type asks its own alone.
        asked = [h for h in (hosts[:1] if entry.startswith("btp_") else hosts) if entry in managed.classes.get(h, {})]
        if not asked:
            continue
        managed.reset()
        for host in hosts:
            if "SqLength" in managed.classes.get(host, {}):
                managed.answer(host, "SqLength", lambda handle: 3)
        error = Boom(f"{kind}_{tag}.{entry}")
        for host in asked:
            negative = managed.classes[host][entry][0] == "int" and entry != "btp_TypeOf"
            managed.fail(host, entry, error, result=-1 if negative else 0)
        try:
            result = operation()
        except Boom as caught:
            assert caught is error
            met.append(entry)
        except (TypeError, AttributeError) as refused:
            # An operation that the kind does not offer; an entry point of a host beside it.
            assert entry not in managed.classes[hosts[0]], (entry, refused)
        else:
            raise AssertionError(f"{entry} failed in managed code, and the operation gave {result!r}")
    assert met
    print(f"{kind}_{tag}: {len(met)} entry points failed: {' '.join(met)}")
