"""Measures what moves many elements or many bytes, and prints a table.

Times are the least of several runs, taken in turns where two are compared, since these machines are noisy.
`bulk.py quick` leaves out the largest sizes.
"""

from __future__ import annotations

import array
import gc
import io
import os
import sys
import tempfile
import time
import zipfile
from pathlib import Path
from typing import Any, Callable, List, Optional

MIB = 1 << 20
PIECE = 64 << 10


def say(name: str, figure: float, unit: str, aim: Optional[str] = None, more: str = "") -> None:
    print(f"{name:52} {figure:10.2f} {unit:10} {aim or '':>10}  {more}")


def least(*functions: Callable[[], Any], rounds: int = 7) -> List[float]:
    """The least seconds of each function, run in turns."""
    best = [float("inf")] * len(functions)
    for _ in range(rounds):
        for index, function in enumerate(functions):
            start = time.perf_counter()
            function()
            best[index] = min(best[index], time.perf_counter() - start)
    return best


def resident() -> float:
    """Resident memory in MiB."""
    return int(Path("/proc/self/statm").read_text(encoding="ascii").split()[1]) * 4 / 1024


# --- meshes --------------------------------------------------------------------------------------------


def meshes() -> None:
    from velbor.voxlar.entities import Mesh, TriMesh, VertexElementNormal
    from velbor.voxlar.utilities import Vector4, VertexDeclaration, VertexFieldDataType, VertexFieldSemantic

    side = 250
    places = [(float(x), float(y)) for y in range(200) for x in range(side)]
    corners = [(y * side + x, side) for y in range(200 - 1) for x in range(side - 1)]
    triangles = [[a, a + 1, a + s] for a, s in corners] + [[a + 1, a + s + 1, a + s] for a, s in corners]
    triangles += triangles[: 100_000 - len(triangles)]
    points = [Vector4(x, y, 0.0, 1.0) for x, y in places]
    assert len(points) == 50_000 and len(triangles) == 100_000
    mesh = Mesh()

    def extend() -> None:
        nonlocal mesh
        mesh = Mesh()
        mesh.control_points.extend(points)

    def assign() -> None:
        mesh.control_points[:] = points

    def polygons() -> None:
        create = mesh.create_polygon
        for triangle in triangles:
            create(triangle)

    def normals() -> None:
        VertexElementNormal().set_data(points)

    def whole() -> None:
        extend()
        assign()
        polygons()
        normals()

    made = least(lambda: [Vector4(x, y, 0.0, 1.0) for x, y in places])[0]
    say("50,000 Vector4 from Python floats", made * 1e3, "ms")
    say("control_points.extend(list)", least(extend)[0] * 1e3, "ms")
    say("control_points[:] = list", least(assign)[0] * 1e3, "ms")
    extend()
    say("create_polygon, 100,000 times", least(polygons, rounds=3)[0] * 1e3, "ms")
    say("set_data(list)", least(normals)[0] * 1e3, "ms")
    say("the four together", least(whole)[0] * 1e3, "ms", "500")

    declaration = VertexDeclaration()
    declaration.add_field(VertexFieldDataType.F_VECTOR3, VertexFieldSemantic.POSITION, 0, "position")
    floats = array.array("f", [value for x, y in places for value in (x, y, 0.0)])
    given = {"bytes": floats.tobytes(), "array of floats": floats}
    try:
        import numpy

        given["numpy array"] = numpy.array(floats, dtype="f4").reshape(-1, 3)
    except ImportError:
        pass
    indices = [index for triangle in triangles for index in triangle]
    empty = TriMesh("t", declaration)
    for name, data in given.items():
        raw, load = least(
            lambda: TriMesh.from_raw_data(declaration, data, indices, False),
            lambda: empty.load_vertices_from_bytes(data),
            rounds=30,
        )
        say(f"TriMesh.from_raw_data, {name}", raw * 1e3, "ms", "20")
        say(f"load_vertices_from_bytes, {name}", load * 1e3, "ms", "20")

    other = Mesh().control_points

    def join() -> None:
        nonlocal other
        other = Mesh().control_points
        other += mesh.control_points

    def one_by_one() -> None:
        target = Mesh().control_points
        target.extend(iter(points))

    joined, walked = least(join, one_by_one)
    joined, walked = joined / len(points) * 1e9, walked / len(points) * 1e9
    say("x += y between managed lists, an element", joined, "ns", more=f"from Python {walked:.0f} ns")


# --- growth --------------------------------------------------------------------------------------------


def growth(sizes: List[int]) -> None:
    from velbor.voxlar.entities import VertexElementNormal

    kinds = ("iteration", "extend from Python", "slice to Python", "item by index", "x += managed")
    heads = "".join(f"{size:>14,}" for size in sizes)
    print(f"\n{'ns an element, list of integers':32}{heads}{'most/least':>12}")
    rows: dict = {kind: [] for kind in kinds}
    for size in sizes:
        rounds = 3 if size > 1_000_000 else 7
        plain = [7] * size  # one object: the memory of Python's own integers is not what is measured
        managed = VertexElementNormal().indices
        managed.extend(plain)
        target = VertexElementNormal().indices

        def iterate() -> None:
            for _ in managed:
                pass

        def extend() -> None:
            target.clear()
            target.extend(plain)

        def index() -> None:
            for place in range(size):
                managed[place]

        def join() -> None:
            target.clear()
            target.extend(managed)

        figures = least(iterate, extend, lambda: managed[:], index, join, rounds=rounds)
        for kind, seconds in zip(kinds, figures):
            rows[kind].append(seconds / size * 1e9)
        target.clear()
        managed.clear()
    for kind, figures in rows.items():
        row = "".join(f"{figure:14.1f}" for figure in figures)
        print(f"{kind:32}{row}{max(figures) / min(figures):12.2f}")


# --- streams -------------------------------------------------------------------------------------------


def vertices(size: int) -> Any:
    """A mesh that writes so many bytes to a stream, by one write."""
    from velbor.voxlar.entities import TriMesh
    from velbor.voxlar.utilities import VertexDeclaration, VertexFieldDataType, VertexFieldSemantic

    declaration = VertexDeclaration()
    declaration.add_field(VertexFieldDataType.FLOAT, VertexFieldSemantic.WEIGHT, 0, "weight")
    mesh = TriMesh("t", declaration)
    mesh.load_vertices_from_bytes(os.urandom(size))
    return mesh


def streams(total: int) -> None:
    from velbor.voxlar import FileFormat
    from velbor.voxlar.utilities import MemoryFileSystem

    print()
    pieces = 50  # so few that a round fits into a slice of time
    data, mesh = os.urandom(PIECE), vertices(PIECE)
    kept = io.BytesIO(bytes(PIECE))

    def ours_to_memory() -> None:
        for _ in range(pieces):
            kept.seek(0)
            mesh.write_vertices_to(kept)

    def floor_to_memory() -> None:
        for _ in range(pieces):
            kept.seek(0)
            kept.write(data)

    ours, floor = least(ours_to_memory, floor_to_memory, rounds=400)
    each = f"{ours / pieces * 1e6:.1f} us a piece"
    say("64 KiB into a BytesIO: managed over plain Python", ours / floor, "", "1.7", each)

    stream = MemoryFileSystem().write_file("a", FileFormat.GLTF2.create_save_options())
    room = bytearray(PIECE)
    for file in (stream, kept):
        file.seek(0)
        file.write(data)

    def readinto(file: Any) -> Callable[[], None]:
        def run() -> None:
            for _ in range(pieces):
                file.seek(0)
                file.readinto(room)

        return run

    def write(file: Any) -> Callable[[], None]:
        def run() -> None:
            for _ in range(pieces):
                file.seek(0)
                file.write(data)

        return run

    for name, make in (("readinto", readinto), ("write", write)):
        ours, floor = least(make(stream), make(kept), rounds=400)
        each = f"{ours / pieces * 1e6:.1f} us a piece"
        say(f"64 KiB {name}, managed stream over BytesIO", ours / floor, "", None, each)

    with tempfile.TemporaryFile(buffering=0) as file:
        to_file(file, total)
        from_file(file, total)


def to_file(file: Any, total: int) -> None:
    """So much through a raw file on disk by pieces of 1 MiB, over and over the same 8 MiB."""
    data, mesh = os.urandom(MIB), vertices(MIB)

    def ours() -> None:
        file.seek(0)
        for _ in range(8):
            mesh.write_vertices_to(file)

    def plain() -> None:
        file.seek(0)
        for _ in range(8):
            file.write(data)

    ours()
    gc.collect()
    before = resident()
    managed, python = least(ours, plain, rounds=total // (8 * MIB))
    say(f"{total // MIB} MiB to a Python file: speed over plain Python", 100 * python / managed, "%", "90",
        f"{8 * MIB / managed / 1e9:.2f} GB/s, memory {resident() - before:+.1f} MiB")  # fmt: skip


def from_file(file: Any, total: int) -> None:
    """So much out of a raw file on disk: a stored member of an archive, which is read whole each time."""
    from velbor.voxlar import FileFormat
    from velbor.voxlar.utilities import ZipArchiveFileSystem

    block = 64 * MIB
    file.seek(0)
    file.truncate()
    with zipfile.ZipFile(file, "w") as archive:
        archive.writestr("a", os.urandom(block))
    files, options = ZipArchiveFileSystem(file), FileFormat.GLTF2.create_load_options()

    def ours() -> None:
        files.read_file("a", options).close()

    def plain() -> None:
        file.seek(64)
        assert len(file.read(block)) == block  # into memory of its own, as the archive's reader does

    room = bytearray(block)

    def kept() -> None:
        file.seek(64)
        assert file.readinto(room) == block

    for _ in range(3):
        ours()
    gc.collect()
    before = resident()
    managed, python, into = least(ours, plain, kept, rounds=total // block)
    say(f"{total // MIB} MiB from a Python file: speed over file.read", 100 * python / managed, "%", "90",
        f"{block / managed / 1e9:.2f} GB/s, memory {resident() - before:+.1f} MiB")  # fmt: skip
    say("  the same over readinto of one kept bytearray", 100 * into / managed, "%")


def main() -> None:
    quick = sys.argv[1:] == ["quick"]
    print(f"load of the machine: {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors")
    print(f"{'bulk':52} {'figure':>10} {'unit':10} {'aim':>10}")
    meshes()
    growth([10_000, 100_000] if quick else [10_000, 100_000, 1_000_000, 10_000_000])
    streams((64 if quick else 1024) * MIB)


if __name__ == "__main__":
    main()
