"""Both managed assemblies are precompiled: what still meets the compiler at run time is short and known.

`pytest -s` prints the methods.
"""

from __future__ import annotations

import os
import re
import subprocess
import sys
import textwrap
from pathlib import Path
from typing import List

import pytest
from velbor.voxlar import FileFormat

# The framework leaves some of its own code to run time: vectors of the machine's width, comparers, initialisers of
# generic classes. What an import and a run need of that is counted, since a user waits for it all the same.
AFTER_IMPORT = 3
AFTER_DEMO = {"gltf": 85, "glb": 85, "obj": 50, "stl": 40, "ply": 30}

DEMO = """
    import sys
    from velbor.voxlar import FileFormat, Scene
    from velbor.voxlar.entities import Box, Mesh
    from velbor.voxlar.utilities import Vector3
    source, target = sys.argv[1:]
    scene = Scene(source)
    def walk(node):
        entity = node.entity
        text = (node.name, entity.get_type().name if entity is not None else "-")
        succeeded, mesh = Mesh._cast_as(entity)
        if succeeded:
            text += (len(mesh.control_points), len(mesh.polygons))
        for child in node.child_nodes:
            walk(child)
    walk(scene.root_node)
    box = scene.root_node.create_child_node("box", Box(1.0, 2.0, 3.0))
    box.transform.translation = Vector3(5.0, 0.0, 0.0)
    scene.save(target)
"""


def compiled(script: str, tmp_path: Path, *arguments: str) -> List[str]:
    """The methods that a child compiled while it ran the script."""
    report = tmp_path / "jit.txt"
    environment = dict(os.environ, DOTNET_JitStdOutFile=str(report), DOTNET_JitDisasmSummary="1")
    # Set from outside, each of these would change what is compiled.
    for name in ("DOTNET_ReadyToRun", "DOTNET_TieredCompilation", "DOTNET_TieredPGO", "DOTNET_TC_QuickJit"):
        environment.pop(name, None)
    subprocess.run(
        [sys.executable, "-c", textwrap.dedent(script), *arguments],
        env=environment,
        cwd=tmp_path,
        check=True,
        timeout=60,
    )
    lines = report.read_text(encoding="utf-8").splitlines() if report.exists() else []
    # Hot methods are compiled again at a higher tier, behind the back of the program.
    found = [re.sub(r"^.*JIT compiled (.*) \[.*$", r"\1", line) for line in lines if "Tier1" not in line]
    print(f"\n{len(found)} methods met the compiler:", *found, sep="\n    ")
    return found


def own(methods: List[str]) -> List[str]:
    return [method for method in methods if re.match(r"Velbor\.", method)]


def test_after_the_import(tmp_path: Path) -> None:
    methods = compiled("import velbor.voxlar", tmp_path)
    assert own(methods) == []
    assert len(methods) <= AFTER_IMPORT, methods


def test_after_the_first_handle(tmp_path: Path) -> None:
    methods = compiled("from velbor.voxlar.utilities import Vector3; Vector3()", tmp_path)
    assert len(methods) <= AFTER_IMPORT, methods


@pytest.mark.parametrize("extension", list(AFTER_DEMO))
def test_after_a_run_like_the_demo(extension: str, tmp_path: Path) -> None:
    file_format = FileFormat.get_format_by_extension("." + extension)
    if not (file_format.can_import and file_format.can_export):
        pytest.skip(f"reading and writing .{extension} is not built yet")
    from velbor.voxlar import Scene
    from velbor.voxlar.entities import Sphere

    scene = Scene()
    scene.root_node.create_child_node("sphere", Sphere().to_mesh())
    source = tmp_path / f"source.{extension}"
    scene.save(str(source))
    methods = compiled(DEMO, tmp_path, str(source), str(tmp_path / f"target.{extension}"))
    assert own(methods) == []
    assert len(methods) <= AFTER_DEMO[extension], f"{len(methods)} methods"
