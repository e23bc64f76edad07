"""Rows that cannot stand are refused with the file, the line and the reason."""

from __future__ import annotations

import shutil
from pathlib import Path

import pytest

from generator import naming, parser
from generator.model import CatalogueError

ROOT = Path(__file__).resolve().parents[2]


@pytest.fixture
def folder(tmp_path: Path) -> Path:
    copy = tmp_path / "catalogue"
    shutil.copytree(ROOT / "catalogue", copy)
    return copy


def add(folder: Path, text: str, name: str = "utilities.txt") -> int:
    """Appends rows; gives the line of the first."""
    path = folder / name
    lines = path.read_text(encoding="utf-8").rstrip("\n").split("\n")
    path.write_text("\n".join([*lines, "", text, ""]), encoding="utf-8")
    return len(lines) + 2


@pytest.mark.parametrize(
    ("rows", "offset", "message"),
    [
        ("class New 00000001 : Nothing\n    new ()", 0, "unknown base 'Nothing' of 'New'"),
        ("class New 00000001\n    prop x: Nothing", 1, "unknown type 'Nothing'"),
        ("class New 00000001\n    def a(b: Nothing)", 1, "unknown type 'Nothing'"),
        ("class New 00000001\n    def a(b)", 1, "parameter 'b' has no type"),
        ("class New 00000001\n    def a(b: int, b: int)", 1, "parameter 'b' stands twice"),
        ("class New 00000001\n    new (a: int)\n    new (b: int)", 2, "two overloads of constructor take the same arguments"),
        (
            "class New 00000001\n    def a(x: str) -> int\n    def a(y: str)",
            2,
            "two overloads of method 'a' take the same arguments",
        ),
        ("class New 00000001\n    def a()\n    static def a(x: int)", 2, "overloads of 'a' are both static and not"),
        ("class New 00000001\n    prop BadName: int", 1, "'BadName' does not follow from its managed name by the naming rule"),
        ("class New 00000001\n    prop ui: int as ShowUI", 1, "'ui' does not follow from its managed name by the naming rule"),
        ("class New 00000001\n    field X: int as Other", 1, "static 'X' does not follow from 'Other'"),
        ("class New 00000001\n    prop x: int\n    prop x: int", 2, "property 'x' stands twice"),
        ("class New 00000001\n    prop x: str?", 1, "'str?' cannot be nullable: it is no value type"),
        ("class New 00000001\n    implements Vector3", 0, "unknown interface 'Vector3' of 'New'"),
        ("class New 00000001 : INamedObject", 0, "'New' cannot derive from 'INamedObject'"),
        ("class New 00000001 in Nothing", 0, "unknown outer type 'Nothing' of 'New'"),
        ("class Vector3 00000001", 0, "type 'Vector3' stands twice"),
        ("class New 361B67C0", 0, "tag 361B67C0 of 'New' belongs to 'Vector3'"),
        ("class New 00000001 : New2\nclass New2 00000002 : New", 0, "'New' derives from itself"),
        ("class New 1", 0, "'class New 1' begins no type"),
        ("class New 00000001\n    something else", 1, "'something else' is no member"),
    ],
)
def test_a_row_that_cannot_stand(folder: Path, rows: str, offset: int, message: str) -> None:
    line = add(folder, rows)
    with pytest.raises(CatalogueError) as caught:
        parser.read(folder)
    assert str(caught.value) == f"utilities.txt:{line + offset}: {message}"


def test_an_enum_needs_members(folder: Path) -> None:
    path = folder / "animation.txt"
    text = path.read_text(encoding="utf-8")
    path.write_text(text.replace("enum StepMode 8D886E7C\n    PREVIOUS_VALUE = 0\n    NEXT_VALUE = 1\n", "enum StepMode 8D886E7C\n"))
    with pytest.raises(CatalogueError, match="enum 'StepMode' has no members"):
        parser.read(folder)


def test_the_counts_of_the_catalogue() -> None:
    catalogue = parser.read(ROOT / "catalogue")
    types = catalogue.types.values()
    assert len(catalogue.types) == 220
    assert len(catalogue.enums) == 52
    assert sum(t.is_interface for t in types) == 21
    assert sum(t.is_struct for t in types) == 14
    assert sum(not t.constructors for t in types) == 70
    assert sum(t.disposable for t in types) == 24
    assert sum(t.iterable is not None for t in types) == 12
    assert sum(t.indexer is not None for t in types) == 3
    assert [len(table.slots) for table in catalogue.tables] == [3, 11, 14, 4, 1, 1, 11, 11, 3, 12]
    assert len(catalogue.generics) == 27


def test_the_binding_order_of_a_class() -> None:
    catalogue = parser.read(ROOT / "catalogue")
    assert list(catalogue.types["VbrObject"].entries()) == [
        "ctor_000_VbrObject", "ctor_001_VbrObject", "call_000_RemoveProperty", "call_001_RemoveProperty",
        "call_000_GetProperty", "call_000_SetProperty", "call_000_FindProperty", "get_Name", "set_Name",
        "get_Properties", "btp_TypeOf", "btp_CastTo", "btp_ReInterpretObj", "btp_CastAs", "btp_IsAssignable",
    ]  # fmt: skip


@pytest.mark.parametrize(
    ("managed", "python"),
    [
        ("RemoveProperty", "remove_property"),
        ("Write16bIndicesTo", "write_16b_indices_to"),
        ("ReadFVector3", "read_f_vector3"),
        ("Length2", "length2"),
        ("SemiAxis1", "semi_axis1"),
        ("GetVertexElementOfUV", "get_vertex_element_of_uv"),
    ],
)
def test_member_names(managed: str, python: str) -> None:
    assert naming.python_name(managed) == python


@pytest.mark.parametrize(
    ("managed", "python"),
    [
        ("UnitScale", "UNIT_SCALE"),
        ("XAxis", "X_AXIS"),
        ("FBX7700Binary", "FBX7700_BINARY"),
        ("FBX7700ASCII", "FBX7700ASCII"),
        ("Discreet3DS", "DISCREET_3DS"),
        ("Microsoft3MF", "MICROSOFT_3MF"),
        ("SiemensJT8", "SIEMENS_JT8"),
        ("HTML5", "HTML5"),
        ("GLTF2_Binary", "GLTF2_BINARY"),
    ],
)
def test_static_names(managed: str, python: str) -> None:
    assert naming.static_name(managed) == python
