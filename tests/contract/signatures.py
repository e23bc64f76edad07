"""The native signature of every entry point that the module binds, read from the lists that the module is built from."""

from __future__ import annotations

import json
import re
from pathlib import Path
from typing import Dict, List, Tuple

Signature = Tuple[str, List[str]]  # result, arguments
Classes = Dict[str, Dict[str, Signature]]

_ROOT = Path(__file__).resolve().parents[2]
_SRC = _ROOT / "src"

_INTEROP = {
    "DISPOSABLE": "SiApiDisposable",
    "ITER": "SiApiEnumerator",
    "ITERABLE": "SiApiEnumerable",
    "ICOL": "SiApiCntCollection",
    "ILIST": "SiApiCntList",
    "ARRAY": "SiApiArray",
    "ARRLIST": "SiApiArrayList",
    "COLBASE": "SiApiCollectionBase",
}
_GENERIC = {
    "ITER": "SiApiEnumerator",
    "ITERABLE": "SiApiEnumerable",
    "ICOL": "SiApiCntCollection",
    "ILIST": "SiApiCntList",
    "LIST": "SiApiList",
    "ARRAY": "SiApiArray",
}
_INTEROP_FORMS = {"In": "const VariantArg*", "OutSlot": "PyObject**", "ItemUnchecked": "PyObject*"}

# form of an element -> (how it is passed, its out type, how an unchecked read gives it)
_VALUE_FORMS = {
    "double": "double", "int": "int", "ushort": "unsigned short", "uint": "unsigned int", "short": "short",
    "bool": "bool",
}  # fmt: skip


def _element_forms(form: str) -> Dict[str, str]:
    if form in _VALUE_FORMS:
        kind = _VALUE_FORMS[form]
        return {"In": kind, "OutSlot": kind + "*", "ItemUnchecked": kind}
    if form in ("string", "bytes", "object"):
        record = {"string": "const PyStringArg*", "bytes": "const PyBytesArg*", "object": "const VariantArg*"}[form]
        return {"In": record, "OutSlot": "PyObject**", "ItemUnchecked": "PyObject*"}
    if form == "class":
        return {"In": "void*", "OutSlot": "void**", "ItemUnchecked": "void*"}
    if form == "interface":
        return {"In": "const VariantArg*", "OutSlot": "PyObjectOutArg*", "ItemUnchecked": "void|PyObjectOutArg*"}
    return {"In": "const VariantArg*", "OutSlot": "void**", "ItemUnchecked": "void*"}  # structs and int[]


def _macros(text: str) -> Dict[str, str]:
    """name -> body of every `#define NAME(X) ...`, continuation lines joined."""
    joined = text.replace("\\\n", " ")
    return {m[1]: m[2] for m in re.finditer(r"#define (VELBOR_\w+)\(X\)([^\n]*)", joined)}


def _entries(body: str, macros: Dict[str, str]) -> List[Tuple[str, str]]:
    """(managed name, signature text) of a list, with the lists that it includes."""
    found: List[Tuple[str, str]] = []
    pattern = re.compile(r'X\(\w+, "(\w+)", ((?:[^()]|\([^()]*\))+)\)|(VELBOR_\w+)\(X\)')
    for match in pattern.finditer(body):
        if match[3]:
            found += _entries(macros[match[3]], macros)
        else:
            found.append((match[1], match[2].strip()))
    return found


def _signature(text: str, forms: Dict[str, str]) -> Signature:
    if text == "ItemUnchecked":
        result, _, extra = forms["ItemUnchecked"].partition("|")
        return result, ["void*", "int", *([extra] if extra else [])]
    match = re.match(r"(.+?)\((.*)\)$", text)
    assert match, text
    arguments = [forms.get(a.strip(), a.strip()) for a in match[2].split(",") if a.strip()]
    return forms.get(match[1], match[1]), arguments


def _fixed_host(path: Path, macro: str) -> Dict[str, Signature]:
    """A host whose list has separate result and parameters: X(operation, "Name", result, (parameters), ...)."""
    body = path.read_text(encoding="utf-8").replace("\\\n", " ")
    body = body[body.index(f"#define {macro}") :].split("\n", 1)[0]
    entries: Dict[str, Signature] = {}
    for match in re.finditer(r'X\(\w+,\s*"(\w+)",\s*([^,]+),\s*\(([^)]*)\)', body):
        arguments = []
        for parameter in match[3].split(","):
            text = parameter.strip()
            if text:
                kind = re.match(r"(.+?[ *])\s*\w+$", text)
                assert kind, text
                arguments.append(kind[1].strip().replace(" *", "*").replace("std::", ""))
        entries[match[1]] = (match[2].strip().replace("std::", ""), arguments)
    return entries


def read(generated: Path) -> Classes:
    """Every managed class with its entry points."""
    classes: Classes = {}
    for name, rows in json.loads((generated / "entries.json").read_text(encoding="utf-8")).items():
        classes[name] = {row["name"]: (row["result"], row["arguments"]) for row in rows}
    interop = "Velbor.WrpGen.Interop."
    classes[interop + "ExchangeHost"] = _fixed_host(_SRC / "exchange/exchange_host.h", "VELBOR_EXCHANGE_HOST")
    classes[interop + "ObjectHost"] = _fixed_host(_SRC / "exchange/object_host.h", "VELBOR_OBJECT_HOST")
    classes[interop + "SiApiStream"] = _fixed_host(_SRC / "streams/stream_host.h", "VELBOR_STREAM_HOST")
    macros: Dict[str, str] = {}
    for name in ("entry_points.h", "interop_hosts.h", "generic_hosts.h"):
        macros.update(_macros((_SRC / "collections" / name).read_text(encoding="utf-8")))
    for key, name in _INTEROP.items():
        rows = _entries(macros[f"VELBOR_{key}_HOST"], macros)
        classes[interop + name] = {entry: _signature(text, _INTEROP_FORMS) for entry, text in rows}
    classes[interop + "SiApiReadOnlyCollectionBase"] = dict(classes[interop + "SiApiCollectionBase"])
    for line in (_ROOT / "catalogue/generics.txt").read_text(encoding="utf-8").splitlines():
        words = line.partition("#")[0].split()
        if not words:
            continue
        tag, _, form = words[:3]
        for key, name in _GENERIC.items():
            rows = _entries(macros[f"VELBOR_GENERIC_{key}_HOST"], macros)
            entries = {entry: _signature(text, _element_forms(form)) for entry, text in rows}
            if key == "ICOL":
                # Looked up late, so not on the host's list.
                casts = _entries(macros["VELBOR_GENERIC_INTERFACE_CASTS"], macros)
                entries.update({entry: _signature(text, {}) for entry, text in casts})
            classes[f"Velbor.WrpGen.Generic.{name}_{tag}"] = entries
    return classes
