"""The table of closed generic types: its rows, what is refused, and what is written for one of them."""

from __future__ import annotations

import shutil
from collections import Counter
from pathlib import Path

import pytest

from generator import emit_generics, generics, parser
from generator.model import Catalogue, CatalogueError

CATALOGUE = Path(__file__).resolve().parents[2] / "catalogue"


@pytest.fixture(scope="module")
def catalogue() -> Catalogue:
    return parser.read(CATALOGUE)


@pytest.fixture
def changed(tmp_path: Path, catalogue: Catalogue):
    """Reads generics.txt after a change of one of its rows."""

    def read(old: str, new: str) -> list[generics.Instantiation]:
        text = (CATALOGUE / "generics.txt").read_text(encoding="utf-8")
        assert old in text
        (tmp_path / "generics.txt").write_text(text.replace(old, new), encoding="utf-8")
        return generics.read(tmp_path, catalogue)

    return read


def test_wrappers_of_each_kind(catalogue: Catalogue) -> None:
    rows = generics.read(CATALOGUE, catalogue)
    assert len(rows) == 43
    made = list(generics.in_module_order(rows))
    assert Counter(kind for _, kind in made) == {"Array": 10, "IList": 25, "ICol": 2, "Iter": 39, "List": 6}
    assert [kind for _, kind in made] == sorted((kind for _, kind in made), key=generics.WRAPPERS.index)
    assert sum(len(row.converters) for row in rows) == 14
    assert sum(row.has_iterable_host for row in rows) == 40
    assert sum("ICol" in row.hosts for row in rows) == 27


def test_hosts_follow_from_wrappers_and_converters(catalogue: Catalogue) -> None:
    rows = {row.element: row for row in generics.read(CATALOGUE, catalogue)}
    assert rows["Node"].hosts == ("Iter", "Iterable", "ICol", "IList", "List")
    assert rows["Vector2"].hosts == ("Iterable",)
    assert rows["bool"].hosts == ("Array",)
    assert rows["Segment"].tag == "40FCDDB9"
    assert rows["TextureSlot"].only_comes_out and not rows["Node"].only_comes_out


@pytest.mark.parametrize(
    ("old", "new", "message"),
    [
        ("Node               class", "Knot               class", "unknown type 'Knot'"),
        ("Node               class", "Node               struct", "Node is a class, not a struct"),
        ("F44BC945 Node", "F44BC946 Node", "Node stands under F44BC945, not F44BC946"),
        (
            "double    Array,IList,Iter",
            "double    Array,ISet",
            "unknown word 'ISet'; known are Array, IList, ICol, Iter, List",
        ),
        ("A4A29720 int     ", "1BA766B5 int     ", "tag 1BA766B5 stands in line 14 already"),
        (
            "short     -                      array",
            "short     -",
            "not a row of an element type: 'A2718E40 short              short     -'",
        ),
        ("uint               uint", "uint               word", "unknown form 'word'"),
    ],
)
def test_rows_that_cannot_stand(changed, old: str, new: str, message: str) -> None:
    with pytest.raises(CatalogueError) as caught:
        changed(old, new)
    place, _, text = str(caught.value).partition(": ")
    assert text == message
    assert place.startswith("generics.txt:") and int(place.partition(":")[2]) >= 14


def test_a_table_of_callbacks_needs_a_row(changed) -> None:
    row = "9F9569E6 Vector2            struct    -                      iterable\n"
    with pytest.raises(CatalogueError, match="no row for 9F9569E6, over which callbacks.txt has a table"):
        changed(row, "")


def test_what_is_written_for_one_element(tmp_path: Path, catalogue: Catalogue) -> None:
    emit_generics.emit(catalogue, CATALOGUE, tmp_path)
    names = ["generics.h", "generics_elements.h", "generics.cpp", "generics_list.cpp"]
    texts = [(tmp_path / "cpp" / name).read_text(encoding="utf-8").splitlines() for name in names]
    written = "\n".join(line for text in texts for line in text if "CBE911FC" in line) + "\n"
    golden = Path(__file__).with_name("golden") / "generic_string.txt"
    assert written == golden.read_text(encoding="utf-8")


def test_writing_again_touches_nothing(tmp_path: Path, catalogue: Catalogue) -> None:
    emit_generics.emit(catalogue, CATALOGUE, tmp_path)
    before = {path: path.stat().st_mtime_ns for path in (tmp_path / "cpp").iterdir()}
    emit_generics.emit(catalogue, CATALOGUE, tmp_path)
    assert {path: path.stat().st_mtime_ns for path in (tmp_path / "cpp").iterdir()} == before
    shutil.rmtree(tmp_path / "cpp")
