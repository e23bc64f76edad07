"""The naming rule between managed names and Python names, and back."""

from __future__ import annotations

import re

# An underscore goes: between a lower-case and an upper-case letter; between a digit and a capitalised word; between
# two capitals of which the second begins a word; between a lower-case letter and digits that a letter follows.
_BOUNDARY = re.compile(
    r"(?<=[a-z])(?=[A-Z])"
    r"|(?<=[0-9])(?=[A-Z][a-z])"
    r"|(?<=[A-Z])(?=[A-Z][a-z])"
    r"|(?<=[a-z])(?=[0-9]+[A-Za-z])"
)


def split_managed(name: str) -> list[str]:
    """The words of a managed name; an underscore that stands in the name is a boundary of its own."""
    words: list[str] = []
    for piece in name.split("_"):
        words.extend(_BOUNDARY.sub("_", piece).split("_"))
    return [word for word in words if word]


def python_name(managed: str) -> str:
    """The Python name of a managed member: `RemoveProperty` gives `remove_property`."""
    return "_".join(split_managed(managed)).lower()


def static_name(managed: str) -> str:
    """The Python name of a managed static: `UnitScale` gives `UNIT_SCALE`."""
    return "_".join(split_managed(managed)).upper()


def managed_name(python: str) -> str:
    """The managed name that a Python name stands for unless its row says otherwise: each word capitalised, joined."""
    return "".join(word[:1].upper() + word[1:] for word in python.split("_"))
