"""What still has to wait for the JIT. Precompiled code makes a first call a hundred times cheaper."""

from __future__ import annotations

from pathlib import Path

from conftest import Run

IMPORT = "import velbor.voxlar"
USE = """
    import io
    from velbor.voxlar import *
    from velbor.voxlar.entities import *
    from velbor.voxlar.utilities import *
    scene = Scene()
    box = Box()
    node = scene.root_node.create_child_node("box", box)
    node.transform.translation = Vector3(1.0, 2.0, 3.0)
    assert str(node.transform.translation) == "(1, 2, 3)"
    node.set_property("p", [1, "two", 3.0])
    assert node.get_property("p")[1] == "two"
    assert [child.name for child in scene.root_node.child_nodes] == ["box"]
    assert Box._cast_to(node.entity).value == box
    PolygonModifier.triangulate([Vector4(0.0, 0.0, 0.0), Vector4(1.0, 0.0, 0.0), Vector4(0.0, 1.0, 0.0)])
    try:
        scene.open("not there")
    except RuntimeError:
        pass
"""


def compiled(run: Run, script: str, folder: Path) -> list[str]:
    """The methods that the JIT compiled."""
    summary = folder / "jit.txt"
    result = run(script, DOTNET_JitStdOutFile=str(summary), DOTNET_JitDisasmSummary="1")
    assert result.returncode == 0, result.stderr
    lines = summary.read_text(encoding="utf-8").splitlines() if summary.exists() else []
    return [line.partition("JIT compiled ")[2] for line in lines]


def test_the_interop_layer_is_precompiled(run: Run, tmp_path: Path) -> None:
    names = compiled(run, IMPORT + USE.replace("\n    ", "\n"), tmp_path)
    methods = [name for name in names if "Tier1" not in name]
    assert methods, "the runtime has written no summary"
    ours = [name for name in methods if name.startswith(("WrpNs_", "Velbor.WrpGen."))]
    # The one generic method over a struct that calls a virtual member of its own class.
    assert [name for name in ours if not name.startswith("Velbor.WrpGen.Interop.TableElement`1[")] == []
    assert len(ours) <= 2
