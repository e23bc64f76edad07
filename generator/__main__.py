"""Command line: `python -m generator --catalogue catalogue --out build/release/generated`."""

from __future__ import annotations

import argparse
import importlib
import importlib.util
import sys
from pathlib import Path

from generator import parser
from generator.model import CatalogueError

# Each emitter offers `emit(catalogue, catalogue_folder, out)` and writes only what has changed.
EMITTERS = (
    "emit_wire", "emit_cpp", "emit_generics", "emit_csharp", "emit_services", "emit_stubs", "emit_docs", "emit_entries",
)  # fmt: skip


def main(arguments: list[str] | None = None) -> int:
    """Reads the catalogue and runs every emitter; a bad row is one line on stderr and status 1."""
    options = argparse.ArgumentParser(prog="generator", description=__doc__)
    options.add_argument("--catalogue", type=Path, required=True, help="folder of the catalogue's text files")
    options.add_argument("--out", type=Path, required=True, help="folder of the build tree to write into")
    values = options.parse_args(arguments)
    try:
        catalogue = parser.read(values.catalogue)
        for name in EMITTERS:
            if importlib.util.find_spec(f"generator.{name}") is not None:
                importlib.import_module(f"generator.{name}").emit(catalogue, values.catalogue, values.out)
    except CatalogueError as error:
        print(f"generator: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
