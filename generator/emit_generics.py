"""Writes the typed collection wrappers: type objects, converters and callbacks over each element type."""

from __future__ import annotations

from pathlib import Path

from generator import generics
from generator.generics import Instantiation
from generator.model import CallbackSlot, Catalogue, GenericCallbackTable
from generator.writer import write

HEADER = "// Generated from catalogue/generics.txt. Do not edit.\n"

_ELEMENTS = {
    "double": "DoubleElement",
    "int": "IntElement",
    "ushort": "UShortElement",
    "uint": "UIntElement",
    "short": "ShortElement",
    "bool": "BoolElement",
    "string": "StringElement",
    "bytes": "BytesElement",
    "object": "VariantElement",
    # An array of integers is an element, too; what comes out is wrapped as the array of its element.
    "int[]": "HandleRecordElement<wrpPygn_conv_py_to_clr_array_A4A29720,"
    " fn_wrap_handle<wrpPygn_tyds_A4A29720_ArrayWrapper>>",
}

_WRAPPED_ELEMENTS = {
    "class": "ClassElement",
    "struct": "HandleRecordElement",
    "interface": "InterfaceElement",
}

# Interfaces that the typed wrappers list, beside the typed IList of the same element.
_LISTED = {
    "IList": ("Iterable",),
    "Array": ("Iterable", "ICol", "IList"),
    "List": ("Iterable", "ICol", "IList"),
}


def emit(catalogue: Catalogue, folder: Path, out: Path) -> None:
    """Writes the headers generics.h and generics_elements.h, one source a kind and one for the rest."""
    rows = generics.read(folder, catalogue)
    cpp = out / "cpp"
    write(cpp / "generics.h", _header(catalogue, rows))
    write(cpp / "generics_elements.h", _elements(catalogue, rows))
    write(cpp / "generics.cpp", _source(catalogue, rows))
    for kind in generics.WRAPPERS:
        write(cpp / f"generics_{kind.lower()}.cpp", _kind_source(rows, kind))


def type_name(tag: str, kind: str) -> str:
    return f"wrpPygn_tyds_{tag}_{kind}Wrapper"


def _converter(row: Instantiation, word: str) -> str:
    return f"wrpPygn_conv_py_to_clr_{word}_{row.tag}"


def _declaration(slot: CallbackSlot) -> str:
    arguments = ", ".join(f"{kind} {name}" for kind, name in slot.arguments)
    return f"{slot.result} {slot.name}({arguments})"


def _header(catalogue: Catalogue, rows: list[Instantiation]) -> str:
    lines = [
        HEADER,
        "#pragma once\n",
        "#include <cstdint>",
        "#include <string>\n",
        '#include "marshal/records.h"',
        '#include "startup/cpython.h"\n',
        "// The wrapper types of typed collections.\n",
        *(f"extern PyTypeObject {type_name(row.tag, kind)};" for row, kind in generics.in_module_order(rows)),
        "\n// `tp_iter` of whatever enumerates an element type, and its validity.\n",
    ]
    for row in rows:
        if "Iter" in row.wrappers:
            lines.append(f"PyObject* wrpPygn_bltp_{row.tag}_iterable_iter(PyObject* self);")
            lines.append(f"bool wrpPygn_bltp_{row.tag}_iterable_is_not_valid(std::string& message);")
    lines.append('\n// "O&" converters of arguments that are typed collections: 1, or 0 with an error.\n')
    for row in rows:
        for word in row.converters:
            lines.append(f"int {_converter(row, word)}(PyObject* object, VariantArg* out);")
    lines.append("\n// Callbacks over one element type; statuses as in collections/python_collections.h.\n")
    for table in catalogue.generics:
        lines += [f"{_declaration(slot)};" for slot in table.slots]
    return "\n".join(lines) + "\n"


def _element(catalogue: Catalogue, row: Instantiation) -> str:
    """The element form of a row, a template of collections/element.h."""
    if row.form in generics.PLAIN_FORMS:
        return _ELEMENTS[row.form]
    native = catalogue.types[row.element].native
    if row.form == "class" and row.only_comes_out:
        return f"OutgoingClassElement<wrpPy_conv_clr_to_py_{native}>"
    template = _WRAPPED_ELEMENTS[row.form]
    return f"{template}<wrpPy_conv_py_to_clr_{native}, wrpPy_conv_clr_to_py_{native}>"


def _elements(catalogue: Catalogue, rows: list[Instantiation]) -> str:
    lines = [
        HEADER,
        "#pragma once\n",
        '#include "collections/generic_wrappers.h"',
        '#include "generics.h"',
        '#include "types.h"\n',
        "// What the templates of the typed wrappers take: an element's form and its tag.",
    ]
    for row in rows:
        lines += [
            f"\n/// {row.element}",
            f"struct Generic_{row.tag} {{",
            f"    using Element = {_element(catalogue, row)};",
            f'    static constexpr FixedText kTag{{"{row.tag}"}};',
            "};",
        ]
    lines.append("")
    for row, kind in generics.in_module_order(rows):
        lines.append(f"using {kind}_{row.tag} = {_wrapper(row, kind)};")
    return "\n".join(lines) + "\n"


def _wrapper(row: Instantiation, kind: str) -> str:
    arguments = [f"Generic_{row.tag}", type_name(row.tag, kind)]
    if kind != "Iter":
        arguments.append(type_name(row.tag, "Iter"))
    return f"Generic{kind}<{', '.join(arguments)}>"


def _kind_source(rows: list[Instantiation], kind: str) -> str:
    lines = [HEADER, '#include "generics_elements.h"\n']
    for row in rows:
        if kind in row.wrappers:
            lines.append(f"PyTypeObject {type_name(row.tag, kind)} = {kind}_{row.tag}::make_type();")
    return "\n".join(lines) + "\n"


def _source(catalogue: Catalogue, rows: list[Instantiation]) -> str:
    lines = [HEADER, '#include "generics_elements.h"', '#include "collections/generic_types.h"\n']
    for row in rows:
        if "Iter" in row.wrappers:
            lines += _iterable(row)
    for row in rows:
        for word in row.converters:
            lines += _converter_body(row, word)
    forms = {row.tag: row for row in rows}
    for table in catalogue.generics:
        lines += _callbacks(forms[table.tag], table)
    return "\n".join(lines + _type_rows(rows)) + "\n"


def _iterable(row: Instantiation) -> list[str]:
    name = f"wrpPygn_bltp_{row.tag}_iterable"
    iterable = f"GenericIterable<Generic_{row.tag}>"
    enumerator = type_name(row.tag, "Iter")
    return [
        f"PyObject* {name}_iter(PyObject* self) {{ return {iterable}::iter<{enumerator}>(self); }}",
        f"bool {name}_is_not_valid(std::string& message) {{ return {iterable}::is_not_valid(message); }}\n",
    ]


def _converter_body(row: Instantiation, word: str) -> list[str]:
    head = f"int {_converter(row, word)}(PyObject* object, VariantArg* out) {{"
    if word == "iterable":
        kinds = [kind for kind in ("IList", "List", "Array", "ICol") if kind in row.wrappers]
        types = [f"&{type_name(row.tag, kind)}" for kind in kinds]
        return [
            head,
            f"    static PyTypeObject* const types[] = {{{', '.join([*types, 'nullptr'])}}};",
            "    return fn_convert_iterable_argument({types}, object, out);",
            "}\n",
        ]
    kind = {"array": "Array", "ilist": "IList", "list": "List"}[word]
    source = f"{kind}_{row.tag}" if kind in row.wrappers else f"UnwrappedArray<Generic_{row.tag}>"
    convert = "fn_convert_interface_argument" if word == "ilist" else "fn_convert_class_argument"
    return [head, f"    return {convert}({source}::argument, object, out);", "}\n"]


def _callbacks(row: Instantiation, table: GenericCallbackTable) -> list[str]:
    lines: list[str] = []
    prefix = {"pyiter": "", "pylist": "list_", "pyseq": "sequence_"}[table.kind]
    for slot, name in zip(table.slots, table.slot_names):
        arguments = ", ".join(argument for _, argument in slot.arguments)
        lines += [
            f"{_declaration(slot)} {{",
            f"    return TypedCallbacks<Generic_{row.tag}::Element>::{prefix}{name}({arguments});",
            "}\n",
        ]
    return lines


def _type_rows(rows: list[Instantiation]) -> list[str]:
    lines = ["namespace {\n"]
    table: list[str] = []
    for row, kind in generics.in_module_order(rows):
        listed = [f"&wrpPye_tyds_{name}Wrapper" for name in _LISTED.get(kind, ())]
        if kind in ("Array", "List") and "IList" in row.wrappers:
            listed.append(f"&{type_name(row.tag, 'IList')}")
        interfaces = "nullptr"
        if listed:
            interfaces = f"interfaces_of_{row.tag}_{kind}"
            lines.append(f"PyTypeObject* const {interfaces}[] = {{{', '.join(listed)}}};")
        table.append(f"    {{&{type_name(row.tag, kind)}, {len(listed)}, {interfaces}}},")
    return [
        *lines,
        "\n}  // namespace\n",
        "const GenericTypeRow wrpPygn_types[] = {",
        *table,
        "    {nullptr, 0, nullptr},",
        "};",
    ]
