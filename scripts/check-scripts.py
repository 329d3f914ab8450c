#!/usr/bin/env python3
"""Reads every shell and Python script of the project for its grammar, and that it can be started."""

import os
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SKIPPED = {".git", "build", ".cache", "data", "__pycache__"}


def scripts():
    for folder, folders, files in os.walk(ROOT):
        folders[:] = sorted(set(folders) - SKIPPED)
        for file in sorted(files):
            path = Path(folder, file)
            if path.suffix in {".py", ".sh", ""} and path.is_file():
                with path.open("rb") as source:
                    yield path, source.readline(200).decode(errors="replace")


def fault(path, first):
    """What is wrong with the script, or nothing."""
    if path.suffix == ".py" or "python" in first:
        try:
            compile(path.read_bytes(), str(path), "exec")
        except SyntaxError as error:
            return str(error)
    elif path.suffix == ".sh" or "bash" in first:
        answer = subprocess.run(["bash", "-n", str(path)], capture_output=True, text=True,
                                check=False)
        if answer.returncode != 0:
            return answer.stderr.strip()
    if first.startswith("#!") and not os.access(path, os.X_OK):
        return f"{path}: begins with #! and is not executable"
    return None


def main():
    found = list(scripts())
    faults = [text for path, first in found if (text := fault(path, first))]
    print("\n".join(faults) if faults else f"check-scripts: {len(found)} files read")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
