"""Every case of this folder is a process of its own: it starts a runtime, and its end is what is looked at."""

from __future__ import annotations

import os
import subprocess
import sys
import textwrap
from pathlib import Path
from typing import Callable

import pytest

_HELPERS = str(Path(__file__).resolve().parent / "helpers")

Run = Callable[..., "subprocess.CompletedProcess[str]"]


@pytest.fixture
def run() -> Run:
    """Runs a script in a child of its own. One that hangs fails the test."""

    def run_script(
        script: str, *options: str, seconds: float = 60, **variables: str
    ) -> "subprocess.CompletedProcess[str]":
        environment = dict(os.environ)
        environment["PYTHONPATH"] = os.pathsep.join([_HELPERS, environment.get("PYTHONPATH", "")])
        environment.update(variables)
        return subprocess.run(
            [sys.executable, *options, "-c", textwrap.dedent(script)],
            env=environment,
            capture_output=True,
            text=True,
            timeout=seconds,
            check=False,
        )

    return run_script
