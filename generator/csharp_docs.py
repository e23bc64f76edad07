"""Reads what the scene library's sources say of its public members, so that the stubs say the same.

The documentation comments are plain enough for a line scanner: a block of `///` lines, attributes, one declaration.
"""

from __future__ import annotations

import re
from dataclasses import dataclass
from pathlib import Path

_NAMESPACE = re.compile(r"namespace ([\w.]+)")
_TYPE = re.compile(
    r"(?:public|internal)\s+(?:(?:static|abstract|sealed|readonly|partial|ref|unsafe)\s+)*"
    r"(?:class|struct|interface|enum|record)\s+(\w+)"
)
_MEMBER = re.compile(
    r"(?:public\s+)?(?:(?:static|abstract|virtual|override|sealed|readonly|new|required|const|unsafe)\s+)*"
    r"([\w.<>\[\],? ()]+?)\s+(this|\w+)\s*(\(|\[|\{|=|;)"
)
_CONSTRUCTOR = re.compile(r"public\s+(\w+)\s*\(")
_TAG = re.compile(r"<[^>]+>")
_REFERENCE = re.compile(r'<(?:see|paramref|typeparamref|seealso)\s+(?:cref|name|langword)="(?:\w:)?([^"]+)"\s*/>')


@dataclass
class MemberDoc:
    """One declaration: its summary and whether its managed type may be null."""

    summary: str
    nullable: bool


class Docs:
    """What the sources say, by type and by (type, member); overloads stand in the order of the source."""

    def __init__(self) -> None:
        self.types: dict[str, str] = {}
        self.members: dict[tuple[str, str], list[MemberDoc]] = {}

    def type_summary(self, type_name: str) -> str:
        return self.types.get(type_name, "")

    def member(self, type_names: list[str], member: str, overload: int = 0) -> MemberDoc | None:
        """The declaration of a member in the first of these types that has one with a summary."""
        for type_name in type_names:
            found = self.members.get((type_name, member))
            if found:
                return found[min(overload, len(found) - 1)]
        return None


def read(folder: Path) -> Docs:
    """Scans every source file below the folder. An absent folder gives empty documentation."""
    docs = Docs()
    for path in sorted(folder.rglob("*.cs")):
        if "obj" not in path.parts and "bin" not in path.parts:
            _scan(path.read_text(encoding="utf-8-sig"), docs)
    return docs


def _clean(lines: list[str]) -> str:
    text = " ".join(lines)
    match = re.search(r"<summary>(.*?)</summary>", text, re.S)
    if not match:
        return ""
    body = match[1]
    body = _REFERENCE.sub(lambda m: "`" + m[1].rpartition(".")[2] + "`", body)
    body = re.sub(r"<c>(.*?)</c>", r"`\1`", body)
    body = _TAG.sub("", body).replace("&lt;", "<").replace("&gt;", ">").replace("&amp;", "&")
    return re.sub(r"\s+", " ", body).strip()


def _scan(text: str, docs: Docs) -> None:
    comment: list[str] = []
    current: list[tuple[str, int]] = []  # (type, depth of its body)
    depth = 0
    for raw in text.splitlines():
        line = raw.strip()
        if line.startswith("///"):
            comment.append(line[3:].strip())
            continue
        if line.startswith("[") or not line:
            continue
        type_match = _TYPE.search(line) if not line.startswith("//") else None
        if type_match:
            summary = _clean(comment)
            if summary or type_match[1] not in docs.types:
                docs.types[type_match[1]] = summary
            current.append((type_match[1], depth + 1))
        elif current and depth == current[-1][1]:
            _member(line, current[-1][0], _clean(comment), docs)
        comment = []
        code = line.split("//", 1)[0]
        depth += code.count("{") - code.count("}")
        while current and depth < current[-1][1] and "{" in code + "}" and not type_match:
            current.pop()


def _member(line: str, type_name: str, summary: str, docs: Docs) -> None:
    constructor = _CONSTRUCTOR.match(line)
    if constructor and constructor[1] == type_name:
        docs.members.setdefault((type_name, "new"), []).append(MemberDoc(summary, False))
        return
    match = _MEMBER.match(line)
    if match and match[2] not in ("if", "return", "get", "set"):
        docs.members.setdefault((type_name, match[2]), []).append(MemberDoc(summary, match[1].rstrip().endswith("?")))
