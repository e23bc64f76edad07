"""A call takes a quick way, past CPython's parse. Here each is held against the told way through that parse: the same
entry point with the same arguments, the same exception, the same text.

A keyword that answers no comparison forces the told way: the quick way compares it and gives up, the parse finds it.
"""

from __future__ import annotations

import sys
from typing import Any, Callable, Dict, Iterator, List, Optional, Tuple

import samples
from generator.model import Overload, WrappedType
from samples import CATALOGUE

HANDLES = 0x10000  # of the scripted side begin here


class Shy(str):
    """A keyword that is equal to nothing in the first comparisons with it: the quick way's."""

    refused = 0  # by all of them
    refusals = 0  # still due, of a text of one letter

    __hash__ = str.__hash__

    def __eq__(self, other: object) -> bool:
        # The quick way asks with an interned text; the parse makes a new one, but for texts of one letter.
        if len(self) > 1 and sys.intern(str(self)) is other or len(self) == 1 and self.refusals > 0:
            self.refusals -= 1
            Shy.refused += 1
            raise LookupError("shy")
        return str.__eq__(self, other)  # type: ignore[arg-type]


def wrong_values(voxlar: Any) -> List[Any]:
    """Values of which each parameter refuses most."""

    class Whole(int):
        pass

    return [None, True, 5, 2**70, -1, 1.5, "text", b"bytes", [], (), {}, [1], [None], object(), Whole(3),
            voxlar.Axis.Y_AXIS, voxlar.Node.__new__(voxlar.Node), voxlar.utilities.Vector3.__new__(voxlar.utilities.Vector3),
            voxlar.entities.Mesh.__new__(voxlar.entities.Mesh), memoryview(b"bytes"), voxlar.Node._type_of()]  # fmt: skip


def calls(group: Tuple[Overload, ...], voxlar: Any, wrong: List[Any], index: int) -> Iterator[List[Any]]:
    """Arguments for each overload: those that fit, then each one wrong in turn, then all wrong."""
    for overload in group:
        if not overload.parameters:
            continue
        good = samples.arguments(voxlar, overload)
        yield good
        for position in range(len(good)):
            for offset in range(len(wrong) if len(good) < 4 else 3):
                changed = list(good)
                changed[position] = wrong[(index + offset) % len(wrong)]
                yield changed
        for offset in range(4):
            yield [wrong[(index + offset + 5 * i) % len(wrong)] for i in range(len(good))]


class Recorder:
    """Keeps what each entry point got, read while the records of the call still stand."""

    def __init__(self, managed: Any, monkeypatch: Any) -> None:
        self.made: List[Any] = []
        run = managed._run

        def recorded(name: str, method: str, result: str, kinds: List[str], values: Tuple[Any, ...]) -> Any:
            if not method.startswith("Free"):
                self.made.append((name, method, [seen(managed, kind, value) for kind, value in zip(kinds, values)]))
            return run(name, method, result, kinds, values)

        monkeypatch.setattr(managed, "_run", recorded)

    def outcome(self, call: Callable[[], Any]) -> Tuple[Any, List[Any]]:
        """What a call did: its exception or the type of its result, and the entry points with what they got."""
        self.made = []
        try:
            return type(call()), self.made
        except Exception as error:  # noqa: BLE001
            return (type(error), error.args), self.made


def seen(managed: Any, kind: str, value: Any) -> Any:
    """An argument without its address."""
    if kind.endswith("VariantArg*"):
        tag, payload = managed.variant(value)
        return tag, payload if tag else 0
    if kind.endswith("PyStringArg*"):
        return managed.text(value)
    if kind.endswith("PyBytesArg*"):
        return managed.data(value)
    return None if kind.endswith("*") and value >= HANDLES else value


def shy_keywords(group: Tuple[Overload, ...], overload: Overload, arguments: List[Any]) -> Optional[Dict[str, Any]]:
    """The arguments by keywords that the quick way does not see; None where one-letter names leave it unclear how
    often that asks."""
    keywords: Dict[str, Any] = {}
    rivals = [o for o in group if len(o.parameters) == len(overload.parameters) and o is not overload]
    for parameter, value in zip(overload.parameters, arguments):
        key = Shy(parameter.name)
        keywords[key] = value
    first = overload.parameters[0].name
    if len(first) == 1:
        if any(p.name == first for o in group if o is not overload for p in o.parameters) or rivals:
            return None
        # Asked once when an overload is chosen by a look, once by its attempt.
        list(keywords)[0].refusals = 1 if len(group) == 1 else 2
    return keywords


def test_both_ways_are_one(managed: Any, voxlar: Any, monkeypatch: Any) -> None:
    wrong = wrong_values(voxlar)
    recorder = Recorder(managed, monkeypatch)
    compared = unclear = refused = 0
    for number, wrapped in enumerate(CATALOGUE.types.values()):
        for name, group, call in callables(voxlar, wrapped):
            for arguments in calls(group, voxlar, wrong, number):
                managed.calls.clear()
                told: List[Tuple[int, Tuple[Any, List[Any]]]] = []
                for index, row in enumerate(group):
                    if len(row.parameters) != len(arguments):
                        continue
                    keywords = shy_keywords(group, row, arguments)
                    if keywords is None:
                        break
                    before = Shy.refused
                    told.append((index, recorder.outcome(lambda: call(**keywords))))
                    assert Shy.refused > before, f"{wrapped.name}.{name}: the quick way was taken"
                    plain = {str(key): value for key, value in keywords.items()}
                    quick = recorder.outcome(lambda: call(**plain))
                    assert quick == told[-1][1], f"{wrapped.name}.{name}{tuple(arguments)} by keyword"
                else:
                    by_position = recorder.outcome(lambda: call(*arguments))
                    called = [one for _, one in told if any(m in {o.entry for o in group} for _, m, _ in one[1])]
                    if len(group) == 1:
                        assert by_position == told[0][1], f"{wrapped.name}.{name}{tuple(arguments)}"
                    elif called:
                        # The first that accepts; what refused ones asked on their way may differ.
                        assert by_position[0] == called[0][0], f"{wrapped.name}.{name}{tuple(arguments)}"
                        assert by_position[1][-1] == called[0][1][-1], f"{wrapped.name}.{name}{tuple(arguments)}"
                    else:
                        # Each overload's message as it gives it to its own keywords.
                        messages = by_position[0][1][0]
                        assert by_position[0][0] is TypeError and len(messages) >= len(group)
                        for index, one in told:
                            assert messages[index] == one[0][1][0][index], f"{wrapped.name}.{name}{tuple(arguments)}"
                    compared += 1
                    refused += isinstance(by_position[0], tuple)
                    continue
                unclear += 1
    print(f"{compared} calls compared, {refused} of them refused; {unclear} left out")
    assert compared > 5000 and refused > 2000 and unclear < compared // 10


def callables(voxlar: Any, wrapped: WrappedType) -> Iterator[Tuple[str, Tuple[Overload, ...], Callable[..., Any]]]:
    """(name, overloads, what is called) for the constructors and each method."""
    python_type = samples.python_type(voxlar, wrapped)
    if wrapped.constructors:
        yield "__init__", wrapped.constructors, python_type
    this = python_type.__new__(python_type)
    for method in wrapped.methods:
        yield method.name, method.overloads, getattr(python_type if method.static else this, method.name)
