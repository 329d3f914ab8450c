#!/usr/bin/env python3
"""Holds the table of dependencies in ARCHITECTURE.md against scripts/packages, its one source.

    scripts/check-packages.py         tells where the two differ
    scripts/check-packages.py --fix   writes the table anew
"""

import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BEGIN, END = "<!-- packages: begin -->\n", "<!-- packages: end -->\n"
GROUPS = ("run", "wayland", "tour", "test", "fuzz", "bench", "package")


def packages():
    """Name, group and purpose of each package, as the file has them."""
    for line in (ROOT / "scripts/packages").read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            name, group, purpose = (piece.strip() for piece in line.split("|"))
            if group not in GROUPS:
                raise ValueError(f"scripts/packages: {name} is in no group: {group}")
            yield name, group, purpose


def table():
    rows = ["| package | for | what it is for |", "|---|---|---|"]
    rows += [f"| `{name}` | {group} | {purpose} |" for name, group, purpose in packages()]
    return "\n".join(rows) + "\n"


def main():
    page = ROOT / "ARCHITECTURE.md"
    text = page.read_text(encoding="utf-8")
    if text.count(BEGIN) != 1 or text.count(END) != 1:
        print(f"{page.name} must hold {BEGIN.strip()} and {END.strip()} once")
        return 1
    before, rest = text.split(BEGIN)
    now, after = rest.split(END)
    if now == table():
        print("check-packages: the table in ARCHITECTURE.md is scripts/packages")
        return 0
    if sys.argv[1:] == ["--fix"]:
        page.write_text(before + BEGIN + table() + END + after, encoding="utf-8")
        return 0
    for line in set(now.splitlines()) ^ set(table().splitlines()):
        print(f"ARCHITECTURE.md and scripts/packages differ in: {line}")
    print("scripts/check-packages.py --fix writes the table anew")
    return 1


if __name__ == "__main__":
    sys.exit(main())
