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


def _object(managed: Any, voxlar: Any) -> Any:
    """A System.Object wrapper, as `_reinterpret_obj` needs one."""

    def cast_from(_this: int, _type: int, out: int) -> int:
        managed.store(out, "Q", managed.new_handle())
        return 1

    managed.answer("Vector3", "btp_CastFrom", cast_from)
    _, made = voxlar.utilities.Vector3()._cast_from(voxlar.Node._type_of())
    return made


@pytest.mark.parametrize("name", sorted(CATALOGUE.enums))
def test_a_failing_entry_point_of_an_enum(name: str, managed: Any, voxlar: Any) -> None:
    row = CATALOGUE.enums[name]
    owner = voxlar if row.module is CATALOGUE.modules[0] else getattr(voxlar, row.module.short)
    enum = getattr(owner, name)
    member, node, thing = list(enum)[0], voxlar.Node(), _object(managed, voxlar)
    for entry, call in (
        ("btp_TypeOf", enum._type_of),
        ("btp_CastTo", lambda: enum._cast_to(node)),
        ("btp_CastAs", lambda: enum._cast_as(node)),
        ("btp_ReInterpretObj", lambda: enum._reinterpret_obj(thing)),
        ("btp_AsUniEnum", member._as_uni_enum),
        ("btp_GetType", member.get_type),
    ):
        error = Boom(f"{name}.{entry}")
        managed.fail(row.managed_class, entry, error, result=-1 if entry.startswith("btp_Cast") else 0)
        with pytest.raises(Boom) as caught:
            call()
        assert caught.value is error


@pytest.mark.parametrize("name", sorted(n for n, t in CATALOGUE.types.items() if "btp_ReInterpretObj" in t.builtins))
def test_a_failing_view_of_an_object(name: str, managed: Any, voxlar: Any) -> None:
    wrapped = CATALOGUE.types[name]
    thing = _object(managed, voxlar)
    error = Boom(name)
    managed.fail(wrapped.managed_class, "btp_ReInterpretObj", error)
    with pytest.raises(Boom) as caught:
        samples.python_type(voxlar, wrapped)._reinterpret_obj(thing)
    assert caught.value is error


def test_a_failing_stream(managed: Any, voxlar: Any) -> None:
    """Each entry point of the stream host but the casts, which have their own table."""
    files = voxlar.utilities.MemoryFileSystem()

    def read_file(_this: int, _name: int, _options: int, out: int) -> None:
        managed.store(out, "iIQQ", 0, 0, managed.new_handle(), 7)

    managed.answer("MemoryFileSystem", "call_000_ReadFile", read_file)
    managed.answer("SiApiStream", "CanSeek", lambda handle: 1)
    for entry, call in (
        ("CanRead", lambda s: s.readable()),
        ("CanSeek", lambda s: s.seekable()),
        ("CanWrite", lambda s: s.writable()),
        ("Position", lambda s: s.tell()),
        ("Flush", lambda s: s.flush()),
        ("Read", lambda s: s.read(4)),
        ("Read", lambda s: s.readall()),
        ("Read", lambda s: s.readinto(bytearray(4))),
        ("Seek", lambda s: s.seek(0)),
        ("SetLength", lambda s: s.truncate(0)),
        ("Write", lambda s: s.write(b"x")),
        ("Close", lambda s: s.close()),
    ):
        stream = files.read_file("name", None)
        error = Boom(entry)
        managed.fail("SiApiStream", entry, error)
        with pytest.raises(Boom) as caught:
            call(stream)
        assert caught.value is error
        managed.answer("SiApiStream", entry, lambda *_: 1)
