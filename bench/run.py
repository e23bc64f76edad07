"""Measures the bridge against a hand-written floor in the same run, and prints a table of ratios.

Each pair is measured in turns, many times; the least time of each counts, since these machines are noisy. Times are
in nanoseconds an operation unless a unit stands beside them.
"""

from __future__ import annotations

import importlib.machinery
import importlib.util
import os
import resource
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from typing import Any, Callable, List, Optional, Tuple

ROUNDS = 40
TARGET = 0.004  # seconds a round
WARM = 0.4  # seconds before each pair


def load_floor() -> Any:
    """The floor extension from the build tree beside the staged package."""
    stage = next(Path(p) for p in sys.path if (Path(p) / "velbor").is_dir())
    (library,) = (stage.parent / "bench").glob("floor*.so")
    loader = importlib.machinery.ExtensionFileLoader("floor", str(library))
    spec = importlib.util.spec_from_loader("floor", loader)
    assert spec is not None
    module = importlib.util.module_from_spec(spec)
    loader.exec_module(module)
    return module


def compiled(statement: str, names: dict) -> Callable[[int], float]:
    """A function that runs the statement n times and gives the seconds."""
    source = f"def run(n, clock, {', '.join(names)}):\n start = clock()\n for _ in range(n):\n  {statement}\n return clock() - start\n"
    scope: dict = {}
    exec(source, scope)
    run = scope["run"]
    return lambda n: run(n, time.perf_counter, **names)


def fit(function: Callable[[int], float]) -> int:
    count = 10
    while function(count) < TARGET / 2 and count < 10_000_000:
        count *= 2
    return count


def pair(floor: Callable[[int], float], ours: Callable[[int], float], per: int = 1) -> Tuple[float, float]:
    """The least time of each, in nanoseconds an operation, measured in turns.

    Both run for a while first: the runtime compiles what is called often once more, in the background.
    """
    start = time.perf_counter()
    while time.perf_counter() - start < WARM:
        floor(1000)
        ours(1000)
    counts = fit(floor), fit(ours)
    best = [float("inf"), float("inf")]
    for _ in range(ROUNDS):
        for index, function in enumerate((floor, ours)):
            best[index] = min(best[index], function(counts[index]) / counts[index])
    return best[0] * 1e9 / per, best[1] * 1e9 / per


def calls() -> List[Tuple[str, float, float, Optional[float]]]:
    floor_module = load_floor()
    from velbor.voxlar import Node, Scene
    from velbor.voxlar.deformers import MorphTargetChannel
    from velbor.voxlar.entities import Camera, Mesh, Shape, VertexElementUV
    from velbor.voxlar.utilities import Vector2, Vector3, Vector4

    f = floor_module.Floor()
    f2 = floor_module.Floor()
    vector = Vector3(1.5, 2.5, 3.5)
    node = Node("a name of some length")
    other = Node("other")
    channel = MorphTargetChannel("channel")
    channel.targets.extend([Shape() for _ in range(1000)])  # one weight a target: a managed list of doubles
    weights = channel.weights
    scene = Scene()
    mesh = Mesh()
    mesh.control_points.extend([Vector4() for _ in range(4)])
    coordinates = VertexElementUV()
    camera = Camera()
    rows: List[Tuple[str, float, float, Optional[float]]] = []

    def add(name: str, aim: Optional[float], floor: str, floor_names: dict, ours: str, our_names: dict, per: int = 1) -> None:
        rows.append((name, *pair(compiled(floor, floor_names), compiled(ours, our_names), per), aim))

    add("property get, double", 1.4, "o.x", {"o": f}, "o.x", {"o": vector})
    add("property set, double", 1.4, "o.x = 2.5", {"o": f}, "o.x = 2.5", {"o": vector})
    add("property get, str", 1.25, "o.name", {"o": f}, "o.name", {"o": node})
    add("property set, str", None, "o.name = 'a name of some length'", {"o": f}, "o.name = 'a name of some length'", {"o": node})
    add("one str argument", 0.8, "o.take_text('none')", {"o": f}, "o.get_animation_clip('none')", {"o": scene})
    add("the same by keyword", 0.6, "o.take_text(text='none')", {"o": f}, "o.get_animation_clip(name='none')", {"o": scene})
    add("one wrapper argument", 0.6, "o.take_object(p)", {"o": f, "p": f2}, "o.compare_to(p)", {"o": vector, "p": Vector3(1.5, 2.5, 3.5)})
    add("overload, third row accepts", 0.06, "o.overload('none')", {"o": f}, "t(0, 1, 2, 3)", {"t": mesh.create_polygon})
    add("construct and its end", 0.9, "t()", {"t": floor_module.Floor}, "t()", {"t": Vector3})
    add("fresh wrapper and its end", 1.9, "o.child()", {"o": f}, "o.root_node", {"o": scene})
    add("len", 1.4, "len(o)", {"o": f}, "len(o)", {"o": weights})
    add("item", 1.4, "o[7]", {"o": f}, "o[7]", {"o": weights})
    add("iteration, an element", 2.0, "for _e in o: pass", {"o": f}, "for _e in o: pass", {"o": weights}, 1000)
    add(
        "callback into Python, an element", 1.1,
        "o.take_all(t(v))", {"o": f, "t": Repeated, "v": Vector2()},
        "o.add_data(t(v)); o.clear()", {"o": coordinates, "t": Repeated, "v": Vector2()},
        Repeated.COUNT,
    )  # fmt: skip
    add("failing call, known before", 1.0, *_failing("o.take_text(1.5)", f), *_failing("o.get_animation_clip(1.5)", scene))
    add("failing call, managed throw", 11.0, *_failing("o.fail()", f), *_failing("o.render(c, 'x.png')", scene, c=camera))
    return rows


class Repeated:
    """An iterator written in Python that gives one object many times."""

    COUNT = 1000

    def __init__(self, value: Any) -> None:
        self.value = value
        self.left = self.COUNT

    def __iter__(self) -> "Repeated":
        return self

    def __next__(self) -> Any:
        if self.left == 0:
            raise StopIteration
        self.left -= 1
        return self.value


def _failing(call: str, o: Any, **names: Any) -> Tuple[str, dict]:
    """The statement and the names for a call whose exception is caught."""
    return f"try: {call}\n  except (RuntimeError, TypeError): pass", {"o": o, **names}


def import_time() -> Tuple[float, float]:
    """Milliseconds of a bare interpreter and of one that imports the module, the least of many runs.

    The package's Python files are compiled once and read from the cache after that, as in an installation.
    """
    best = [float("inf"), float("inf")]
    with tempfile.TemporaryDirectory() as cache:
        environment = {**os.environ, "PYTHONPYCACHEPREFIX": cache}
        environment.pop("PYTHONDONTWRITEBYTECODE", None)
        for _ in range(30):
            for index, code in enumerate(("pass", "import velbor.voxlar")):
                start = time.perf_counter()
                subprocess.run([sys.executable, "-c", code], check=True, env=environment)
                best[index] = min(best[index], time.perf_counter() - start)
    return best[0] * 1000, best[1] * 1000


def write_grid(path: Path, triangles: int) -> None:
    """A grid of quads cut into triangles, as OBJ."""
    side = int((triangles / 2) ** 0.5)
    with open(path, "w", encoding="ascii") as file:
        for y in range(side + 1):
            for x in range(side + 1):
                file.write(f"v {x / side:.6f} {y / side:.6f} {((x * 7 + y * 13) % 17) / 17:.6f}\n")
        for y in range(side):
            for x in range(side):
                a = y * (side + 1) + x + 1
                b = a + side + 1
                file.write(f"f {a} {a + 1} {b + 1}\nf {a} {b + 1} {b}\n")


_CONVERT = """
import resource, sys, time
from velbor.voxlar import Scene
start = time.perf_counter()
scene = Scene(sys.argv[1])
middle = time.perf_counter()
scene.save(sys.argv[2])
end = time.perf_counter()
print(middle - start, end - middle, resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024)
"""


def conversion() -> Tuple[float, float, float]:
    """Seconds to load and to save a 100,000-triangle OBJ as GLB, and the peak memory in MB; each the least of runs."""
    with tempfile.TemporaryDirectory() as folder:
        source, target = Path(folder) / "grid.obj", Path(folder) / "grid.glb"
        write_grid(source, 100_000)
        runs = []
        for _ in range(7):
            result = subprocess.run([sys.executable, "-c", _CONVERT, str(source), str(target)], check=True, capture_output=True, text=True)
            runs.append([float(word) for word in result.stdout.split()])
        load, save, memory = (min(values) for values in zip(*runs))
        return load, save, memory


def main() -> None:
    print(f"{'operation':34} {'floor':>9} {'bridge':>9} {'ratio':>7} {'aim':>6}")
    for name, floor, ours, aim in calls():
        print(f"{name:34} {floor:9.1f} {ours:9.1f} {ours / floor:7.2f} {aim if aim is not None else '':>6}")
    bare, imported = import_time()
    print(f"{'import over bare Python, ms':34} {bare:9.1f} {imported:9.1f} {imported - bare:7.1f} {50:>6}")
    load, save, memory = conversion()
    print(f"{'100,000 triangles: OBJ load, s':34} {'':9} {load:9.3f}")
    print(f"{'                   GLB save, s':34} {'':9} {save:9.3f}")
    print(f"{'                   both, s':34} {'':9} {load + save:9.3f} {'':7} {0.6:>6}")
    print(f"{'                   peak memory, MB':34} {'':9} {memory:9.1f} {'':7} {250:>6}")


if __name__ == "__main__":
    main()
