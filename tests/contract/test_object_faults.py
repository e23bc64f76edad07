"""What every wrapper offers, over the host of all objects: text, hash, equality, the type, the end of a `with`. Each of
its entry points fails with a managed exception on every type that uses it: that exception and nothing else comes out,
no reference is left, and the wrapper goes on working. Likewise the question whether an object may be assigned."""

from __future__ import annotations

import gc
import sys
from typing import Any, Callable, Dict, Iterator, List, Tuple

import pytest
import samples
from generator.model import Kind
from samples import CATALOGUE
from test_collection_faults import CASES, GENERIC, HOSTS, INTEROP

# Of the host's entry points no wrapper calls these two.
UNUSED = {"IsTypeOf", "GetTypeName"}


class Boom(Exception):
    """Stands for what the managed side raises."""


def wrapper_types(voxlar: Any) -> Iterator[Tuple[str, Any, str]]:
    """(managed class of its host, type, "Obj" or "Stc") of every wrapper type of which there are objects."""
    for wrapped in CATALOGUE.types.values():
        if wrapped.kind != "holder":
            yield wrapped.managed_class, samples.python_type(voxlar, wrapped), "Stc" if wrapped.is_struct else "Obj"
    for tag, kind in CASES:
        owner = voxlar._wrpgen._generic if tag else voxlar._wrpgen._interop
        stem, suffix = (GENERIC, f"_{tag}") if tag else (INTEROP, "")
        yield f"{stem}{HOSTS[kind][0]}{suffix}", getattr(owner, f"_{kind}Wrapper{suffix}"), "Obj"
    yield INTEROP + "SiApiStream", voxlar._wrpgen._interop._StreamWrapper, "Obj"


def has_managed_text(python_type: Any) -> bool:
    """False for the collections, which print in Python's own form."""
    return python_type.__repr__ is not object.__repr__


def shared_operations(this: Any, other: Any, form: str) -> Iterator[Tuple[str, Callable[[], Any]]]:
    """(entry point, an operation that reaches it)."""
    if has_managed_text(type(this)):
        yield f"ToStringOf{form}", lambda: repr(this)
        yield f"ToStringOf{form}", lambda: str(this)
    yield f"GetHashOf{form}", lambda: hash(this)
    yield f"GetHashOf{form}", lambda: {this: 1}
    yield f"IsEqualsOf{form}", lambda: this == other
    yield f"IsEqualsOf{form}", lambda: this != other
    yield f"IsEqualsOf{form}", lambda: this == None  # noqa: E711
    yield f"IsEqualsOf{form}", lambda: this in [other]
    yield f"Get{form}Type", this.get_type


def ended(this: Any) -> None:
    """Ends a `with` of the object."""
    with this:
        pass


def held(*objects: Any) -> List[int]:
    """How often each object is referred to."""
    return [sys.getrefcount(thing) for thing in objects]


def raises_only(managed: Any, entry: str, operation: Callable[[], Any], touched: Tuple[Any, ...]) -> None:
    """The entry point's error comes out of the operation as it is, and nothing that it touched is kept."""
    error = Boom(entry)
    managed.fail("ObjectHost", entry, error)
    before = held(error, *touched)
    for _ in range(3):
        with pytest.raises(Boom) as caught:
            operation()
        assert caught.value is error and error.__cause__ is None and error.__context__ is None
        del caught
        error.__traceback__ = None
    assert held(error, *touched) == before, f"{entry}: a reference was left"
    managed.reset()


def test_a_failing_entry_point_of_every_object(managed: Any, voxlar: Any) -> None:
    failed: Dict[str, int] = {}
    for managed_class, python_type, form in wrapper_types(voxlar):
        this, other = python_type.__new__(python_type), python_type.__new__(python_type)
        for entry, operation in shared_operations(this, other, form):
            raises_only(managed, entry, operation, (this, other, python_type))
            assert operation() is not None, f"{managed_class}.{entry} stayed broken"
            failed[entry] = failed.get(entry, 0) + 1
        if hasattr(python_type, "__exit__"):
            raises_only(managed, "Dispose", lambda t=this: ended(t), (this, python_type))
            failed["Dispose"] = failed.get("Dispose", 0) + 1
            ended(this)
    assert set(failed) | UNUSED == set(managed.classes["Velbor.WrpGen.Interop.ObjectHost"])
    print(f"operations that failed: {failed}")


def test_no_text_without_an_error(managed: Any, voxlar: Any) -> None:
    shown = 0
    for managed_class, python_type, form in wrapper_types(voxlar):
        if has_managed_text(python_type):
            managed.answer("ObjectHost", f"ToStringOf{form}", lambda handle, out: 0)
            this = python_type.__new__(python_type)
            fallback = f"<{python_type.__module__}.{python_type.__name__} object at {id(this):#x}>"
            assert repr(this) == str(this) == fallback, managed_class
            shown += 1
    assert shown > 200


@pytest.mark.parametrize("form", ["Obj", "Stc"])
def test_a_failing_text_in_the_report_of_another_error(form: str, managed: Any, voxlar: Any) -> None:
    this = voxlar.Node() if form == "Obj" else voxlar.utilities.Vector3()
    managed.fail("ObjectHost", f"ToStringOf{form}", Boom("no text"))
    with pytest.raises(KeyError) as caught:
        {}[this]  # the hash works; the text that the report wants does not
    assert caught.value.args[0] is this
    with pytest.raises(Boom):
        str(caught.value)


def test_a_failing_end_behind_a_failing_body(managed: Any, voxlar: Any) -> None:
    error, earlier = Boom("Dispose"), ValueError("body")
    managed.fail("ObjectHost", "Dispose", error)
    state = voxlar.render.RenderState.__new__(voxlar.render.RenderState)
    with pytest.raises(Boom) as caught:
        with state:
            raise earlier
    assert caught.value is error and error.__context__ is earlier


def test_a_failing_end_leaves_the_handle_to_the_wrapper(managed: Any, voxlar: Any) -> None:
    state = voxlar.render.RenderState()
    error = Boom("Dispose")
    managed.fail("ObjectHost", "Dispose", error)
    with pytest.raises(Boom):
        ended(state)
    ((handle,),) = managed.calls_of("Dispose")
    assert managed.calls_of("FreeInstance") == []
    error.__traceback__ = None  # its frames hold the wrapper
    del state
    gc.collect()
    assert managed.calls_of("FreeInstance") == [(handle,)]


# Whether an object may be assigned. `_is_assignable` gives its answer without a look at the error state; Python itself
# turns what a method gives while an error is pending into a SystemError, with that error as its cause.


def enum_types(voxlar: Any) -> Iterator[Tuple[str, Any]]:
    """(managed class, type) of every enum."""
    for row in CATALOGUE.enums.values():
        owner = voxlar if row.module is CATALOGUE.modules[0] else getattr(voxlar, row.module.short)
        yield row.managed_class, getattr(owner, row.name)


@pytest.mark.skipif(
    hasattr(sys, "gettotalrefcount"), reason="a debug interpreter ends the process where another raises SystemError"
)
def test_a_failing_question(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    asked = 0
    wrappers = [(managed_class, python_type) for managed_class, python_type, _ in wrapper_types(voxlar)]
    for managed_class, python_type in [*wrappers, *enum_types(voxlar)]:
        looked_up_late = "SiApiCntCollection_" in managed_class
        for answer in (0, 1):
            error = Boom(managed_class)
            managed.fail(managed_class, "btp_IsAssignable", error, result=answer)
            before = held(error, node, python_type)
            with pytest.raises(Boom if looked_up_late else SystemError) as caught:
                python_type._is_assignable(node)
            assert (caught.value if looked_up_late else caught.value.__cause__) is error, managed_class
            del caught
            error.__traceback__ = None
            assert held(error, node, python_type) == before, managed_class
            managed.answer(managed_class, "btp_IsAssignable", lambda *_, a=answer: a)
            assert python_type._is_assignable(node) is bool(answer), managed_class
            asked += 1
    print(f"{asked} questions failed")


ASKED = (Kind.CLASS, Kind.STRUCT, Kind.INTERFACE, Kind.ARRAY, Kind.LIST, Kind.STREAM)


def takers(voxlar: Any) -> Iterator[Tuple[Kind, str, Callable[[Any], Any]]]:
    """(kind, entry point, call) of every property and every parameter of a method without overloads that takes an
    object which the managed side may be asked about; the call gets that object."""
    for wrapped in CATALOGUE.types.values():
        python_type = samples.python_type(voxlar, wrapped)
        this = None if wrapped.kind == "holder" else python_type.__new__(python_type)
        for prop in wrapped.properties:
            if not prop.read_only and prop.type.kind in ASKED:
                yield prop.type.kind, prop.setter, lambda value, t=this, p=prop: setattr(t, p.name, value)
        for method in wrapped.methods:
            function = getattr(python_type if method.static else this, method.name)
            (overload, *others) = method.overloads
            for position, parameter in enumerate(overload.parameters):
                if not others and parameter.type.kind in ASKED:
                    values = samples.arguments(voxlar, overload)
                    before, after = values[:position], values[position + 1 :]
                    yield parameter.type.kind, overload.entry, lambda v, f=function, b=before, a=after: f(*b, v, *a)


def test_a_failing_question_about_an_argument(managed: Any, voxlar: Any) -> None:
    """That exception comes out, whatever the answer, and what the argument was meant for is not called."""
    stranger = voxlar.Node._type_of()  # a wrapper of another module: only the managed side knows what it is
    asking = [name for name, entries in managed.classes.items() if "btp_IsAssignable" in entries]
    refused: Dict[Kind, int] = {}
    for kind, entry, call in takers(voxlar):
        for answer in (0, 1):
            error = Boom(entry)
            managed.reset()
            for name in asking:
                managed.fail(name, "btp_IsAssignable", error, result=answer)
            before = held(error, stranger)
            with pytest.raises(Boom) as caught:
                call(stranger)
            assert caught.value is error
            del caught
            assert len(managed.calls_of("btp_IsAssignable")) == 1 and managed.calls_of(entry) == [], entry
            error.__traceback__ = None
            assert held(error, stranger) == before, entry
        refused[kind] = refused.get(kind, 0) + 1
    assert set(refused) == set(ASKED)
    print(f"arguments refused: { {kind.name: number for kind, number in refused.items()} }")
