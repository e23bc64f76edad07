"""Writes the native callback tables from their one list, with a check of every signature."""

from __future__ import annotations

from pathlib import Path

from generator.model import CallbackSlot, Catalogue
from generator.writer import write

# The headers that declare the functions which the tables hold.
_HEADERS = (
    "collections/python_collections.h", "exchange/exception_bridge.h", "generics.h", "marshal/bytes.h",
    "marshal/datetime.h", "marshal/decimal.h", "marshal/guid.h", "marshal/numbers.h", "marshal/references.h",
    "marshal/strings.h", "streams/buffer_view.h", "streams/rawio_callbacks.h", "wrappers/results.h",
)  # fmt: skip


def emit(catalogue: Catalogue, _: Path, out: Path) -> None:
    """Writes cpp/wire/callback_tables.h and .cpp."""
    write(out / "cpp" / "wire" / "callback_tables.h", _header())
    write(out / "cpp" / "wire" / "callback_tables.cpp", _source(catalogue))


def _header() -> str:
    return """// Generated from catalogue/callbacks.txt. Do not edit.
#pragma once

/// The functions by which managed code counts references; handed over with SetPyObjApiCallbacks.
extern void* m_py_obj_api_callbacks[];

/// The tables that do not depend on an element type, in their order on the wire.
void*** get_all_py_wrapper_callbacks();

/// The tables over one element type each, in their order on the wire.
void*** get_all_pygn_generic_callbacks();
"""


def _check(slot: CallbackSlot) -> str:
    arguments = ", ".join(kind for kind, _ in slot.arguments)
    return f"static_assert(std::is_same_v<decltype({slot.name}), {slot.result}({arguments})>);"


def _source(catalogue: Catalogue) -> str:
    lines = ["// Generated from catalogue/callbacks.txt. Do not edit.", '#include "wire/callback_tables.h"\n']
    lines += [f'#include "{header}"' for header in _HEADERS]
    lines.append("\n#include <type_traits>\n")
    lines.append("// Slot order is a wire format: managed code indexes these tables by position.\n")
    lines += [_check(single.slot) for single in catalogue.singles]
    lines.append("")
    for table in catalogue.tables:
        lines += [_check(slot) for slot in table.slots]
        storage = "static void*" if table.static else "void*"
        lines.append(f"\n{storage} m_{table.name}_callbacks[] = {{")
        lines += [f"    reinterpret_cast<void*>({slot.name})," for slot in table.slots]
        lines.append("};\n")
    for generic in catalogue.generics:
        lines += [_check(slot) for slot in generic.slots]
        lines.append(f"\nstatic void* m_pygn_{generic.kind}_{generic.tag}_callbacks[] = {{")
        lines += [f"    reinterpret_cast<void*>({slot.name})," for slot in generic.slots]
        lines.append("};\n")
    static = [f"m_{table.name}_callbacks" for table in catalogue.tables if table.static]
    generic_names = [f"m_pygn_{g.kind}_{g.tag}_callbacks" for g in catalogue.generics]
    for function, array, names in (
        ("get_all_py_wrapper_callbacks", "m_all_py_wrapper_callbacks", static),
        ("get_all_pygn_generic_callbacks", "m_all_py_generic_callbacks", generic_names),
    ):
        lines.append(f"void*** {function}() {{")
        lines.append(f"    static void** {array}[] = {{")
        lines += [f"        {name}," for name in names]
        lines += ["    };", f"    return {array};", "}\n"]
    return "\n".join(lines)
