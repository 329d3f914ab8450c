"""Reads the document vectors of tests/data/vectors."""
from __future__ import annotations

import plistlib
import re
from pathlib import Path

FOLDER = Path(__file__).resolve().parent.parent / "data" / "vectors"


class Vector:
    """Header lines by name, and the bytes of the document."""

    def __init__(self, path):
        head, _, self.data = path.read_bytes().partition(b"\n\n")
        self.name, self.headers = path.stem, {}
        for line in head.decode().split("\n"):
            key, _, value = line.partition(":")
            self.headers[key] = re.sub(r"\\(.)", lambda found: {"n": "\n", "r": "\r"}.get(found[1], found[1]),
                                       value[1:])

    def __getattr__(self, name):
        return self.headers.get(name.replace("_", "-"))


def all_vectors():
    return [Vector(path) for path in sorted(FOLDER.glob("*.vector"))]


def archived_values(data):
    """The values of a document's dictionary, as they stand in the archive."""
    objects = plistlib.loads(data)["$objects"]
    return {objects[key.data]: objects[value.data]
            for key, value in zip(objects[1]["NS.keys"], objects[1]["NS.objects"])}
