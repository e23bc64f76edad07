"""Writes the reference pages: one Markdown page a module, with every member and what the scene library says of it."""

from __future__ import annotations

from pathlib import Path

from generator import csharp_docs
from generator.csharp_docs import Docs
from generator.model import VOID, Catalogue, Module, Overload, WrappedType
from generator.writer import write


def emit(catalogue: Catalogue, folder: Path, out: Path) -> None:
    """Writes docs/<module>.md and docs/index.md."""
    docs = csharp_docs.read(folder.parent / "managed" / "Voxlar")
    lines = ["# Reference\n", *(f"- [{m.name}]({m.short}.md)" for m in catalogue.modules)]
    write(out / "docs" / "index.md", "\n".join(lines) + "\n")
    for module in catalogue.modules:
        write(out / "docs" / f"{module.short}.md", _page(catalogue, docs, module))


def _page(catalogue: Catalogue, docs: Docs, module: Module) -> str:
    lines = [f"# {module.name}\n"]
    for wrapped in module.types:
        lines += _type(catalogue, docs, wrapped)
    for enum in module.enums:
        lines += [f"## {enum.name}\n", docs.type_summary(enum.name), ""]
        lines += [f"- `{name}` = {value}" for name, value in enum.members]
        lines.append("")
    return "\n".join(lines).rstrip() + "\n"


def _signature(overload: Overload, name: str) -> str:
    parameters = ", ".join(f"{p.name}: {p.type.text}" for p in overload.parameters)
    result = "" if overload.result is VOID else f" -> {overload.result.text}"
    return f"`{name}({parameters}){result}`"


def _type(catalogue: Catalogue, docs: Docs, wrapped: WrappedType) -> list[str]:
    owners = [wrapped.name, *(base.name for base in catalogue.bases(wrapped))]

    def summary(managed: str, overload: int = 0) -> str:
        found = docs.member(owners, managed, overload)
        return f": {found.summary}" if found and found.summary else ""

    base = f" ({wrapped.base.name})" if wrapped.base else ""
    lines = [f"## {wrapped.name}{base}\n", docs.type_summary(wrapped.name), ""]
    for index, constructor in enumerate(wrapped.constructors):
        lines.append(f"- {_signature(constructor, wrapped.name)}{summary('new', index)}")
    for method in wrapped.methods:
        for index, overload in enumerate(method.overloads):
            static = "static " if method.static else ""
            lines.append(f"- {static}{_signature(overload, method.name)}{summary(method.managed, index)}")
    for prop in wrapped.properties:
        remark = ", read-only" if prop.read_only else ""
        lines.append(f"- `{prop.name}`: {prop.type.text}{remark}{summary(prop.managed)}")
    for static_field in wrapped.statics:
        lines.append(f"- `{static_field.name}`: {static_field.type.text}, static{summary(static_field.managed)}")
    return [*lines, ""]
