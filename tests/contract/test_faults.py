"""Every entry point of every wrapped type fails once with a managed exception: that exception and nothing else comes
out, no handle and no reference is left, the process lives."""

from __future__ import annotations

from typing import Any, Callable, Iterator, List, Tuple

import pytest
import samples
from generator.model import Kind, Overload, WrappedType
from samples import CATALOGUE


class Boom(Exception):
    """Stands for what the managed side raises."""


def calls(voxlar: Any, wrapped: WrappedType) -> Iterator[Tuple[str, Callable[[], Any]]]:
    """(entry point, a call that reaches it) for each member of a type."""
    python_type = samples.python_type(voxlar, wrapped)
    for overload in wrapped.constructors:
        yield overload.entry, lambda o=overload: python_type(*samples.arguments(voxlar, o))
    this = python_type.__new__(python_type)
    for method in wrapped.methods:
        owner = python_type if method.static else this
        for overload in method.overloads:
            function = getattr(owner, method.name)
            yield overload.entry, lambda f=function, o=overload: f(*samples.arguments(voxlar, o))
    for prop in wrapped.properties:
        yield prop.getter, lambda p=prop: getattr(this, p.name)
        if not prop.read_only:
            yield prop.setter, lambda p=prop: setattr(this, p.name, samples.value(voxlar, p.type))
    for static in wrapped.statics:
        yield static.entry, lambda s=static: getattr(python_type, s.name)
    if wrapped.indexer:
        yield "btp_SqGetItem", lambda: this[0]
        if not wrapped.indexer.read_only:
            yield "btp_SqSetItem", lambda: this.__setitem__(0, 1.5)
    yield "btp_TypeOf", python_type._type_of
    if wrapped.kind == "holder":
        return
    node = samples.blank(voxlar, CATALOGUE.types["Vector3" if wrapped.is_struct else "Node"])
    yield "btp_CastTo", lambda: python_type._cast_to(node)
    yield "btp_CastAs", lambda: python_type._cast_as(node)


# Kinds whose values an argument cannot tell apart.
_ALIKE = {
    Kind.SINGLE: Kind.DOUBLE,
    Kind.ILIST: Kind.ARRAY,
    Kind.LIST: Kind.ARRAY,
    Kind.ITERABLE: Kind.ARRAY,
    Kind.OUT: Kind.ARRAY,
}


def _is_hidden(wrapped: WrappedType, entry: str) -> bool:
    """True for an overload behind one that accepts the same values: no call with them reaches it."""
    groups: List[Tuple[Overload, ...]] = [wrapped.constructors, *(m.overloads for m in wrapped.methods)]
    for group in groups:
        shapes = [[_ALIKE.get(p.type.kind, p.type.kind) for p in o.parameters] for o in group]
        for index, overload in enumerate(group):
            if overload.entry == entry:
                return shapes[index] in shapes[:index]
    return False


@pytest.mark.parametrize("name", sorted(CATALOGUE.types))
def test_a_failing_entry_point(name: str, managed: Any, voxlar: Any) -> None:
    wrapped = CATALOGUE.types[name]
    ran = 0
    for entry, call in calls(voxlar, wrapped):
        # The calls that ready the arguments must not fail, so only this one entry point does.
        managed.reset()
        error = Boom(f"{name}.{entry}")
        managed.fail(wrapped.managed_class, entry, error, result=-1 if entry.startswith("btp_Cast") else 0)
        try:
            result = call()
        except Boom as caught:
            assert caught is error
            ran += 1
        else:
            assert _is_hidden(wrapped, entry), f"{name}.{entry} failed in managed code, and the call gave {result!r}"
    assert ran > 0
