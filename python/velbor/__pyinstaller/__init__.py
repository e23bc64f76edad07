"""Hooks by which PyInstaller packs the family."""

from __future__ import annotations

from pathlib import Path
from typing import List


def get_hook_dirs() -> List[str]:
    """The folder of the hooks."""
    return [str(Path(__file__).resolve().parent)]
