"""Opens the files named on standard input, one after the other, and tells on standard output what became of each.

Run as a program by the tests of malformed files. One that takes more than ten seconds ends the process by SIGALRM; the
managed library holds Python up meanwhile, so the default action of the signal is what ends it. The heap is limited to
1 GiB.
"""

from __future__ import annotations

import json
import resource
import signal
import sys
import time
from typing import Any, Dict

SECONDS = 10
MEMORY = 1 << 30


def outcome(path: str) -> Dict[str, Any]:
    from velbor.voxlar import Scene

    signal.alarm(SECONDS)
    start = time.perf_counter()
    found: Dict[str, Any] = {"path": path, "error": None, "kind": None, "nodes": 0}
    try:
        scene = Scene(path)
        found["nodes"] = len(scene.root_node.select_objects("//*"))
    except Exception as error:
        found["kind"], found["error"] = type(error).__name__, str(error)
    signal.alarm(0)
    found["seconds"] = time.perf_counter() - start
    found["peak"] = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
    return found


def main() -> None:
    signal.signal(signal.SIGALRM, signal.SIG_DFL)
    import velbor.voxlar  # noqa: F401

    # Set after the start, which maps much that it never touches.
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, MEMORY))
    for line in sys.stdin:
        path = json.loads(line)
        print(json.dumps(outcome(path)), flush=True)


if __name__ == "__main__":
    main()
