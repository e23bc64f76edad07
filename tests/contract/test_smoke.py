"""The road of one call over the scripted side."""

from __future__ import annotations

from typing import Any

import pytest


def test_a_property_is_one_call(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    managed.calls.clear()
    managed.answer("VbrObject", "get_Name", lambda handle: "n")
    assert node.name == "n"
    assert [name for _, name, _ in managed.calls] == ["get_Name"]


def test_a_text_crosses_without_a_copy(managed: Any, voxlar: Any) -> None:
    seen = []
    managed.answer("VbrObject", "set_Name", lambda handle, text: seen.append(managed.text(text)))
    node = voxlar.Node()
    for text in ("", "ascii", "ÿ", "Ω", "\U0001f600", None):
        node.name = text
    assert seen == ["", "ascii", "ÿ", "Ω", "\U0001f600", None]


def test_every_overload_that_refuses_says_why(managed: Any, voxlar: Any) -> None:
    with pytest.raises(TypeError) as caught:
        voxlar.Scene(1, 2, 3)
    (messages,) = caught.value.args
    assert len(messages) == 4


def test_every_host_binds(managed: Any, voxlar: Any) -> None:
    """A wrong or missing name would make its whole type unusable."""
    modules = [voxlar, *(getattr(voxlar, name) for name in (
        "animation", "deformers", "entities", "formats", "profiles", "render", "shading", "utilities"))]  # fmt: skip
    count = 0
    for module in modules:
        for value in vars(module).values():
            if isinstance(value, type) and hasattr(value, "_type_of"):
                value._type_of()
                count += 1
    assert count == 219 + 52
