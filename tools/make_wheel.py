"""Writes a wheel of a staged package: `make_wheel.py STAGE DIST`."""

from __future__ import annotations

import base64
import hashlib
import sys
import zipfile
from pathlib import Path

NAME = "velbor_voxlar"
VERSION = "23.8.0"
METADATA = f"""Metadata-Version: 2.1
Name: velbor-voxlar
Version: {VERSION}
Summary: A managed 3-D scene library as ordinary Python modules
License: MIT
Requires-Python: >=3.9,<3.14
Description-Content-Type: text/markdown

"""


def main() -> None:
    stage, dist = Path(sys.argv[1]), Path(sys.argv[2])
    abi = f"cp{sys.version_info[0]}{sys.version_info[1]}"
    tag = f"{abi}-{abi}-linux_x86_64"
    info = f"{NAME}-{VERSION}.dist-info"
    readme = Path("README.md").read_text(encoding="utf-8")
    files = {
        path.relative_to(stage).as_posix(): path.read_bytes()
        for path in sorted(stage.rglob("*"))
        if path.is_file() and "__pycache__" not in path.parts
    }
    files[f"{info}/METADATA"] = (METADATA + readme).encode()
    files[f"{info}/WHEEL"] = f"Wheel-Version: 1.0\nGenerator: make_wheel\nRoot-Is-Purelib: false\nTag: {tag}\n".encode()
    files[f"{info}/LICENSE"] = Path("LICENSE").read_bytes()
    record = []
    for name, data in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
        record.append(f"{name},sha256={digest},{len(data)}")
    record.append(f"{info}/RECORD,,")
    files[f"{info}/RECORD"] = ("\n".join(record) + "\n").encode()
    dist.mkdir(exist_ok=True)
    target = dist / f"{NAME}-{VERSION}-{tag}.whl"
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in files.items():
            archive.writestr(name, data)
    print(f"{target}: {target.stat().st_size} bytes")


if __name__ == "__main__":
    main()
