"""Opens real files, counts what is in them, saves them in each format and compares what comes back.

Run as a program it walks a folder of files with measured truth (`truth.json` beside them) and prints what differs:

    python tests/runtime/asset_walk.py FOLDER [FORMAT...]
"""

from __future__ import annotations

import json
import sys
import tempfile
from dataclasses import asdict, dataclass
from pathlib import Path
from typing import Any, Dict, Iterator, List, Optional, Tuple

FORMATS = ("obj", "stl", "ply", "gltf")
TARGETS = (".obj", ".stl", ".ply", ".glb", ".gltf")


@dataclass
class Summary:
    """What a scene holds, counted over each entity once."""

    nodes: int = 0
    meshes: int = 0
    clouds: int = 0
    lines: int = 0
    materials: int = 0
    points: int = 0
    polygons: int = 0
    triangles: int = 0
    cameras: int = 0
    lights: int = 0


def nodes_of(node: Any) -> Iterator[Any]:
    for child in node.child_nodes:
        yield child
        yield from nodes_of(child)


def summarize(scene: Any, instanced: bool = False) -> Summary:
    """Counts each entity once, or once for every node that shows it."""
    import velbor
    from velbor.voxlar.entities import Camera, Light, Line, Mesh, PointCloud

    summary = Summary()
    entities: List[Any] = []
    materials: List[Any] = []
    seen = set()
    for node in [scene.root_node, *nodes_of(scene.root_node)]:
        summary.nodes += 1
        for item, kept in [*((e, entities) for e in node.entities), *((m, materials) for m in node.materials)]:
            key = (hash(item), kept is entities)
            known = key in seen and any(item == other for other in kept)
            if item is not None and (not known or (instanced and kept is entities)):
                seen.add(key)
                kept.append(item)
    summary.nodes -= 1  # the root is the scene's own
    summary.materials = len(materials)
    for entity in entities:
        actual = velbor.actual(entity)
        if isinstance(actual, Mesh):
            summary.meshes += 1
            summary.points += len(actual.control_points)
            for polygon in actual.polygons:
                summary.polygons += 1
                summary.triangles += len(polygon) - 2
        elif isinstance(actual, PointCloud):
            summary.clouds += 1
            summary.points += len(actual.control_points)
        elif isinstance(actual, Line):
            summary.lines += len(actual.segments)
        elif isinstance(actual, Camera):
            summary.cameras += 1
        elif isinstance(actual, Light):
            summary.lights += 1
    return summary


def expected(entry: Dict[str, Any]) -> Dict[str, int]:
    """What the truth says, in the words of the summary."""
    own = entry["own"]
    if entry["fmt"] == "obj":
        want = {"polygons": own["faces"], "triangles": own["triangles_if_fanned"]}
        if own["faces"] or own["v"]:
            want["points"] = own["v"]
        if own["faces"]:
            want["materials_at_least"] = own["materials_used"]
        return want
    if entry["fmt"] == "stl":
        return {"polygons": own["facets"], "points": 3 * own["facets"], "meshes": own.get("solids", 1)}
    if entry["fmt"] == "ply":
        return {"polygons": own.get("face", 0), "points": own["vertex"]}
    want = {"nodes": own["nodes"], "triangles": own["triangles"], "meshes_at_least": own.get("meshes", 0)}
    return want


def differences(entry: Dict[str, Any], summary: Summary) -> List[str]:
    found = []
    for name, value in expected(entry).items():
        if name.endswith("_at_least"):
            have = getattr(summary, name[: -len("_at_least")])
            if have < value:
                found.append(f"{name}: {have}, truth {value}")
        elif getattr(summary, name) != value:
            found.append(f"{name}: {getattr(summary, name)}, truth {value}")
    return found


# What each target can hold of the summary's counts; the rest may change by its documented rules.
KEPT = {
    ".obj": ("polygons", "triangles"),
    ".stl": ("triangles",),
    ".ply": ("polygons", "triangles"),
    ".glb": ("nodes", "triangles"),
    ".gltf": ("nodes", "triangles"),
}


# Formats without a scene graph hold an entity that several nodes show once for each of them.
FLAT = (".obj", ".stl", ".ply")


def round_trip(scene: Any, summary: Summary, folder: Path, target: str) -> List[str]:
    from velbor.voxlar import Scene

    if target in FLAT:
        summary = summarize(scene, instanced=True)

    path = folder / f"again{target}"
    try:
        scene.save(str(path))
    except RuntimeError as error:
        return [f"{target}: refused: {str(error)[:140]}"]
    try:
        again = summarize(Scene(str(path)))
    except RuntimeError as error:
        return [f"{target}: NOT READ AGAIN: {str(error)[:140]}"]
    return [
        f"{target}: {name} {getattr(again, name)}, was {getattr(summary, name)}"
        for name in KEPT[target]
        if getattr(again, name) != getattr(summary, name)
    ]


def walk(folder: Path, formats: Tuple[str, ...], filters: Optional[str] = None) -> int:
    from velbor.voxlar import Scene

    entries = [e for e in json.loads((folder / "truth.json").read_text(encoding="utf-8")) if e["fmt"] in formats]
    bad = 0
    for entry in entries:
        if filters and filters not in entry["main"]:
            continue
        invalid = (entry.get("note") or "").startswith("INVALID")
        try:
            scene = Scene(str(folder / entry["main"]))
        except RuntimeError as error:
            print(f"{entry['main']}: {'refused as it should be' if invalid else 'REFUSED'}: {str(error)[:160]}")
            bad += not invalid
            continue
        summary = summarize(scene)
        found = differences(entry, summary)
        with tempfile.TemporaryDirectory() as temporary:
            for target in TARGETS:
                found += round_trip(scene, summary, Path(temporary), target)
        bad += bool(found)
        print(f"{entry['main']}: {'; '.join(found) if found else 'ok'}")
        if found:
            print(f"    {({k: v for k, v in asdict(summary).items() if v})}")
    print(f"{len(entries)} files, {bad} that differ")
    return bad


if __name__ == "__main__":
    sys.exit(walk(Path(sys.argv[1]), tuple(sys.argv[2:]) or FORMATS) != 0)
