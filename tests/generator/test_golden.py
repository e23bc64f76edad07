"""What the generator makes for one class, one struct, one enum and one interface, held against a stored text.

After a wanted change, write the stored texts anew: `python tests/generator/test_golden.py`.
"""

from __future__ import annotations

import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT))

from generator import emit_cpp, emit_stubs, parser  # noqa: E402

GOLDEN = Path(__file__).resolve().parent / "golden"
PIECES = {"class": ("voxlar", "BonePose"), "struct": ("utilities", "BoundingBox2D"), "enum": ("voxlar", "Axis"),
          "interface": ("render", "IVertexBuffer")}  # fmt: skip


def piece(folder: Path, module: str, name: str) -> str:
    """The part of a generated file that belongs to one type."""
    text = (folder / "cpp" / f"{module}.cpp").read_text(encoding="utf-8")
    start = text.index(f"// {name} ---")
    end = text.find("\n// ", start + 10)
    return text[start:end] + "\n"


def generate(folder: Path) -> None:
    catalogue = parser.read(ROOT / "catalogue")
    emit_cpp.emit(catalogue, ROOT / "catalogue", folder)
    emit_stubs.emit(catalogue, ROOT / "catalogue", folder)


@pytest.mark.parametrize("kind", PIECES)
def test_generated_text(kind: str, tmp_path: Path) -> None:
    generate(tmp_path)
    assert piece(tmp_path, *PIECES[kind]) == (GOLDEN / f"{kind}.cpp.txt").read_text(encoding="utf-8")


def test_nothing_is_written_twice(tmp_path: Path) -> None:
    """A second run leaves every file as it is, so that nothing is built again."""
    generate(tmp_path)
    times = {path: path.stat().st_mtime_ns for path in tmp_path.rglob("*") if path.is_file()}
    generate(tmp_path)
    assert times == {path: path.stat().st_mtime_ns for path in times}


if __name__ == "__main__":
    import tempfile

    with tempfile.TemporaryDirectory() as temporary:
        generate(Path(temporary))
        for a_kind, (a_module, a_name) in PIECES.items():
            (GOLDEN / f"{a_kind}.cpp.txt").write_text(piece(Path(temporary), a_module, a_name), encoding="utf-8")
