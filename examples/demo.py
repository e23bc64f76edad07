"""Opens a real OBJ file, walks it, changes it and saves it in four formats.

Run with `make demo`, or with the package on the path: `python examples/demo.py [FILE]`.
"""

import sys
import time
from pathlib import Path

START = time.perf_counter()

import velbor  # noqa: E402
from velbor.voxlar import FileFormat, Scene  # noqa: E402
from velbor.voxlar.entities import Box, Mesh  # noqa: E402
from velbor.voxlar.formats import GltfSaveOptions  # noqa: E402
from velbor.voxlar.utilities import Vector3  # noqa: E402

READY = time.perf_counter()
HERE = Path(__file__).resolve().parent
OUT = HERE.parent / "out"


def walk(node, depth=0):
    """Prints the tree below a node; gives the points and polygons in it."""
    entity = node.entity
    points = polygons = 0
    line = "  " * depth + (node.name or "(unnamed)")
    succeeded, mesh = Mesh._cast_as(entity)
    if succeeded:
        points, polygons = len(mesh.control_points), len(mesh.polygons)
        line += f": Mesh, {points} points, {polygons} polygons"
    elif entity is not None:
        line += f": {entity.get_type().name}"
    if node.material is not None:
        line += f", material '{node.material.name}'"
    print(line)
    for child in node.child_nodes:
        more_points, more_polygons = walk(child, depth + 1)
        points, polygons = points + more_points, polygons + more_polygons
    return points, polygons


def main():
    source = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE / "data" / "spider.obj"
    scene = Scene(str(source))
    print(f"{source.name}:")
    points, polygons = walk(scene.root_node)
    print(f"in all {points} points, {polygons} polygons")

    box = scene.root_node.create_child_node("box", Box(1.0, 2.0, 3.0))
    box.transform.translation = Vector3(5.0, 0.0, 0.0)
    print(f"added: {velbor.actual(box.entity).get_type().name} at x = {box.global_transform.translation.x}")

    OUT.mkdir(exist_ok=True)
    scene.save(str(OUT / "scene.glb"))
    scene.save(str(OUT / "scene.stl"))
    scene.save(str(OUT / "scene.ply"), FileFormat.PLY)
    scene.save(str(OUT / "scene.obj"))
    options = GltfSaveOptions(FileFormat.GLTF2)
    options.pretty_print = True
    scene.save(str(OUT / "scene.gltf"), options)
    for path in sorted(OUT.glob("scene.*")):
        print(f"saved {path.name}: {path.stat().st_size} bytes")
    end = time.perf_counter()
    print(f"import {1000 * (READY - START):.0f} ms, the rest {1000 * (end - READY):.0f} ms")


if __name__ == "__main__":
    main()
