"""Writes generated files, leaving a file alone when its text has not changed, so that nothing is built twice."""

from __future__ import annotations

from pathlib import Path


def write(path: Path, text: str) -> None:
    """Writes the text when it differs from what stands there."""
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.write_text(text, encoding="utf-8")
