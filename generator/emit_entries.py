"""Writes what a stand-in for the managed side must know: every entry point of every wrapped type, in binding order."""

from __future__ import annotations

import json
from pathlib import Path

from generator import entry_points
from generator.cpp_forms import Forms
from generator.model import Catalogue
from generator.writer import write


def emit(catalogue: Catalogue, _: Path, out: Path) -> None:
    """Writes entries.json: managed class -> list of {name, result, arguments}."""
    forms = Forms(catalogue)
    classes: dict[str, list[dict[str, object]]] = {}
    for module in catalogue.modules:
        for enum in module.enums:
            classes[enum.managed_class] = [_row(entry) for entry in entry_points.of_enum(enum)]
        for wrapped in module.types:
            classes[wrapped.managed_class] = [_row(entry) for entry in entry_points.of_type(forms, wrapped)]
    write(out / "entries.json", json.dumps(classes, indent=1) + "\n")


def _row(entry: entry_points.EntryPoint) -> dict[str, object]:
    return {"name": entry.name, "result": entry.result, "arguments": list(entry.arguments)}
