"""The managed half that the generator writes: stored texts, and that no entry point is missing or told twice.

After a wanted change, write the stored texts anew: `python tests/generator/test_csharp.py`.
"""

from __future__ import annotations

import re
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT))
sys.path.insert(0, str(ROOT / "tests" / "contract"))

import signatures  # noqa: E402

from generator import emit_csharp, emit_entries, emit_services, generics, parser  # noqa: E402

GOLDEN = Path(__file__).resolve().parent / "golden"
PIECES = {
    "class": ("voxlar", "WrpCs_BonePose_8B4B1CEE"),
    "struct": ("utilities", "WrpCs_Bounding_0DB21DE4"),
    "enum": ("voxlar", "WrpCs_Axis_4F601FE9"),
    "byte_enum": ("voxlar", "WrpCs_Property_0C71FCBC"),
    "interface": ("render", "WrpCs_IVertexB_E1A114B2"),
    "generic": ("generics", "SiApiEnumerator_361B67C0"),
    "untyped_list": ("services", "SiApiArrayList"),
    "reflected": ("services", "EnumApi"),
}

# The classes without an element type; the native side has a list of the entry points of each.
UNTYPED = (
    "SiApiDisposable", "SiApiEnumerator", "SiApiEnumerable", "SiApiCntCollection", "SiApiCntList", "SiApiArray",
    "SiApiArrayList", "SiApiCollectionBase", "SiApiReadOnlyCollectionBase",
)  # fmt: skip


@pytest.fixture(scope="module")
def folder(tmp_path_factory: pytest.TempPathFactory) -> Path:
    return generate(tmp_path_factory.mktemp("generated"))


def generate(folder: Path) -> Path:
    catalogue = parser.read(ROOT / "catalogue")
    for emitter in (emit_csharp, emit_services, emit_entries):
        emitter.emit(catalogue, ROOT / "catalogue", folder)
    return folder / "csharp"


def class_text(folder: Path, module: str, name: str) -> str:
    """One static class of a generated file."""
    text = (folder / f"{module}.cs").read_text(encoding="utf-8")
    start = re.search(rf"^internal static unsafe (partial )?class {name}$", text, re.M).start()
    return text[start : text.index("\n}\n", start) + 3]


def entry_names(text: str) -> list[str]:
    return re.findall(r"\[UnmanagedCallersOnly\]\n    public static \S+ (\w+)\(", text)


def entry_forms(text: str) -> dict[str, tuple[str, list[str]]]:
    """The result and the argument types of every entry point of a class."""
    found = re.findall(r"\[UnmanagedCallersOnly\]\n    public static (\S+) (\w+)\((.*)\)\n", text)
    return {
        name: (result, [argument.rpartition(" ")[0] for argument in arguments.split(", ")])
        for result, name, arguments in found
    }


def in_csharp(native: str) -> str:
    """A C type of a host's list in C#."""
    names = {"bool": "byte", "unsigned short": "ushort", "unsigned int": "uint"}
    base = native.replace("const ", "").rstrip("*")
    return names.get(base, base) + "*" * native.count("*")


@pytest.mark.parametrize("kind", PIECES)
def test_generated_text(kind: str, folder: Path) -> None:
    assert class_text(folder, *PIECES[kind]) == (GOLDEN / f"{kind}.cs.txt").read_text(encoding="utf-8")


def test_each_type_offers_what_its_host_binds(folder: Path) -> None:
    catalogue = parser.read(ROOT / "catalogue")
    for module in catalogue.modules:
        for wrapped in module.types:
            text = class_text(folder, module.short, wrapped.managed_class.rpartition(".")[2])
            assert entry_names(text) == list(wrapped.entries()), wrapped.name
        for enum in module.enums:
            text = class_text(folder, module.short, enum.managed_class.rpartition(".")[2])
            assert entry_names(text) == list(enum.ENTRIES), enum.name


def test_each_instantiation_has_its_classes(folder: Path) -> None:
    catalogue = parser.read(ROOT / "catalogue")
    for row in generics.read(ROOT / "catalogue", catalogue):
        for kind in row.hosts:
            names = entry_names(class_text(folder, "generics", f"{generics.MANAGED_CLASSES[kind]}_{row.tag}"))
            assert {"btp_TypeOf", "btp_CastTo", "btp_CastAs", "btp_IsAssignable"} <= set(names)
            assert len(names) == len(set(names))


def test_collections_are_called_as_they_are_bound(folder: Path) -> None:
    """Each entry point that a host of the native side looks up is there, with the same result and arguments."""
    rows = generics.read(ROOT / "catalogue", parser.read(ROOT / "catalogue"))
    typed = [f"{generics.MANAGED_CLASSES[kind]}_{row.tag}" for row in rows for kind in row.hosts]
    places = {name: ("Velbor.WrpGen.Generic", "generics") for name in typed}
    places.update({name: ("Velbor.WrpGen.Interop", "services") for name in UNTYPED})
    bound = signatures.read(folder.parent)
    for name, (namespace, module) in places.items():
        offered = entry_forms(class_text(folder, module, name))
        entries = bound[f"{namespace}.{name}"]
        assert entries and (name in typed or set(offered) == set(entries)), name
        for entry, (result, arguments) in entries.items():
            assert offered[entry] == (in_csharp(result), [in_csharp(a) for a in arguments]), f"{name}.{entry}"


def test_casts_of_classes_with_a_part_written_by_hand(folder: Path) -> None:
    halves = {
        "SiApiStream": "Hosts",
        "EnumApi": "Reflection",
        "TypeApi": "Reflection",
        "ObjectApi": "Reflection",
    }
    assert [service.name for service in emit_services.SERVICES] == [*UNTYPED, *halves]
    for name, place in halves.items():
        made = entry_names(class_text(folder, "services", name))
        assert sorted(made) == sorted(emit_csharp.CLASS_CASTS)
        by_hand = (ROOT / "managed" / "Interop" / place / f"{name}.cs").read_text(encoding="utf-8")
        assert f"partial class {name}\n" in by_hand and not set(made) & set(entry_names(by_hand))


def test_every_entry_point_lets_no_exception_out(folder: Path) -> None:
    for path in folder.glob("*.cs"):
        text = path.read_text(encoding="utf-8")
        bodies = re.findall(r"\[UnmanagedCallersOnly\]\n    public static [^\n]+\n    \{\n(.*?)\n    \}\n", text, re.S)
        assert len(bodies) == text.count("[UnmanagedCallersOnly]")
        assert all(body.startswith("        try\n") and "catch (Exception e)" in body for body in bodies), path.name


def test_callbacks_stand_in_helpers_of_their_own(folder: Path) -> None:
    text = (folder / "callbacks.cs").read_text(encoding="utf-8")
    assert text.count("delegate* unmanaged<") == text.count("[MethodImpl(MethodImplOptions.NoInlining)]")
    places = re.findall(r"s_py_olist\)\[(\d+)\]", text)
    assert places == [str(place) for place in range(11)]


if __name__ == "__main__":
    import tempfile

    with tempfile.TemporaryDirectory() as temporary:
        generated = generate(Path(temporary))
        for a_kind, a_place in PIECES.items():
            (GOLDEN / f"{a_kind}.cs.txt").write_text(class_text(generated, *a_place), encoding="utf-8")
