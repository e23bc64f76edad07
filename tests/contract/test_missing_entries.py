"""Entry points that the managed side lacks: a told error at each use of the type, and nothing else breaks."""

from __future__ import annotations

import re
import subprocess
import sys
from pathlib import Path
from typing import List

from samples import CATALOGUE

_SCRIPT = Path(__file__).resolve().parent / "missing_entries.py"


def run(mode: str) -> List[str]:
    """The lines of a run in a process of its own, which holds everything itself."""
    command = [sys.executable, str(_SCRIPT), mode]
    done = subprocess.run(command, capture_output=True, text=True, timeout=600, check=False)
    assert done.returncode == 0, done.stdout[-2000:] + done.stderr[-4000:]
    print(done.stdout)
    return done.stdout.splitlines()


def test_each_entry_point_missing_once() -> None:
    lines = run("each")
    total = sum(int(number) for line in lines for number in re.findall(r"missing=(\d+)", line))
    print(f"{total} entry points were missing once")
    own = [list(wrapped.entries()) for wrapped in CATALOGUE.types.values()]
    assert total > sum(len(entries) for entries in own) + 7 * len(CATALOGUE.enums)
    assert len(lines) == max(len(entries) for entries in own) + 1  # the last run finds nothing left


def test_types_that_refer_to_a_broken_one() -> None:
    run("referred")


def test_no_import_without_the_hosts_of_the_start() -> None:
    run("start")
