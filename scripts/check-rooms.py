#!/usr/bin/env python3
"""Holds the sources against the table of rooms below: who may include whom, and what of Qt.

    scripts/check-rooms.py               checks the project, prints file:line of each breach
    scripts/check-rooms.py --self-test   proves that each kind of breach is seen
"""

import re
import sys
import tempfile
from pathlib import Path

# room: (the rooms it may use, the modules of Qt, other libraries). Whoever adds a room adds a line.
CORE = {"QtCore"}
GUI = CORE | {"QtGui"}
WIDGETS = GUI | {"QtWidgets", "QtPrintSupport"}
BELOW = {"platform"}
ROOMS = {
    "platform": (set(), CORE, set()),
    "platform_qt": (BELOW, WIDGETS | {"QtNetwork", "QtDBus"}, {"fontconfig", "enchant-2"}),
    "product": (BELOW, CORE, set()),
    "crypto": (BELOW, CORE, {"openssl"}),
    "util": (BELOW | {"crypto"}, GUI, set()),
    "document": (BELOW | {"product", "crypto"}, CORE, {"zxcvbn"}),
    "update": (BELOW | {"product"}, CORE, set()),
    "richtext": (BELOW, GUI, set()),
    "cli": (BELOW | {"product", "crypto", "document", "richtext"}, GUI, set()),
    "editor": (BELOW | {"product", "util", "document", "richtext"}, WIDGETS, set()),
    "shell": (BELOW | {"product", "crypto", "util", "document", "update", "richtext", "editor"},
              WIDGETS, set()),
}
ROOMS["app"] = (set(ROOMS), WIDGETS | {"QtNetwork", "QtDBus"}, set())

# Libraries that are neither the standard's, the system's nor Qt's are known by their first folder.
SYSTEM_FOLDERS = {"sys", "net", "netinet", "arpa", "linux", "bits"}

SOURCES = {".cpp", ".h"}
TEXTS = SOURCES | {".py", ".sh", ".md", ".txt", ".cmake", ".ui", ".json", ".qrc", ""}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
ROOM_LINKS = re.compile(r"quorvane_room\((\w+)\s+LINK\s+([^)]*)\)")

# What a comment here must not lean on: a paper that the reader has not got, a machine that the
# reader has not got, work that nobody will do.
WORDS = [
    (re.compile(r"\bspec[.]md\b|\bthe specification\b|\bspec(ification)? (says|part)\b"
                r"|\bParts? [1-7][.][1-9]", re.IGNORECASE), "leans on a paper outside the project"),
    (re.compile(r"\b(TO" r"DO|FIX" r"ME|XX" r"X|HA" r"CK)\b"), "is left open"),
    (re.compile(r"(?<![\w.])/(home|work)/"), "names a folder of somebody's machine"),
]


def qt_headers():
    """Header name -> module, read from the Qt that is installed."""
    headers = {}
    for base in sorted(Path("/usr").glob("include/*/qt6")) + [Path("/usr/include/qt6")]:
        for folder in base.glob("Qt*"):
            for header in folder.iterdir():
                headers.setdefault(header.name, folder.name)
    return headers


def lines_of(path):
    return path.read_text(encoding="utf-8", errors="replace").splitlines()


class Check:
    def __init__(self, root, qt, rooms):
        self.root = root
        self.src = root / "src"
        self.qt = qt
        self.rooms = rooms
        self.breaches = []
        self.includes = {}  # file -> [(line, file)], both relative to src

    def breach(self, path, number, text):
        self.breaches.append(f"{path.relative_to(self.root)}:{number}: {text}")

    def run(self):
        for path in sorted(self.src.rglob("*")):
            if path.suffix in SOURCES:
                self.check_source(path)
            elif path.name == "CMakeLists.txt":
                self.check_links(path)
        self.check_cycles()
        self.check_words()
        return self.breaches

    def check_source(self, path):
        name = path.relative_to(self.src)
        room = name.parts[0]
        if len(name.parts) < 2 or room not in self.rooms:
            self.breach(path, 1, f"'{room}' is no room of the table in scripts/check-rooms.py")
            return
        for number, line in enumerate(lines_of(path), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            if match[1] == '"':
                self.check_own(path, number, room, match[2])
            else:
                self.check_foreign(path, number, room, match[2])

    def check_own(self, path, number, room, header):
        uses, modules, _ = self.rooms[room]
        if header.endswith(".moc"):
            return
        if header.startswith("ui_"):
            if "QtWidgets" not in modules:
                self.breach(path, number, f"{room} has no QtWidgets for the form {header}")
            return
        target = header.split("/")[0]
        if "/" not in header or not (self.src / header).is_file():
            self.breach(path, number, f'"{header}" is no file counted from src')
            return
        if target != room and target not in uses:
            self.breach(path, number, f"{room} may not use {target}")
        self.includes.setdefault(path, []).append((number, self.src / header))

    def check_foreign(self, path, number, room, header):
        _, modules, libraries = self.rooms[room]
        folder, _, rest = header.rpartition("/")
        module = folder if folder.startswith("Qt") else None if folder else self.qt.get(header)
        if header in self.qt.values():
            self.breach(path, number, f"<{header}> is a whole module: name the class")
        elif module:
            if module not in modules:
                self.breach(path, number, f"{room} may not use {module}")
        elif not folder and re.match(r"Q[A-Z]|q[a-z]+\.h$", header):
            self.breach(path, number, f"<{header}> is in no module of the installed Qt")
        elif folder and rest and folder.split("/")[0] not in libraries | SYSTEM_FOLDERS:
            self.breach(path, number, f"{room} may not use {folder}")

    def check_links(self, path):
        """A room's link list may name no room that it may not include."""
        text = "\n".join(lines_of(path))
        for match in ROOM_LINKS.finditer(text):
            room, links = match[1], match[2].split()
            number = text[: match.start()].count("\n") + 1
            uses, modules, libraries = self.rooms.get(room, (set(), set(), set()))
            for link in links:
                link = link.split(":", 1)[1] if link.startswith("$<") else link
                link = link.rstrip(">")
                if link.startswith("quorvane_"):
                    known = link.removeprefix("quorvane_") in uses
                elif link.startswith("Qt6::"):
                    known = "Qt" + link.removeprefix("Qt6::") in modules
                else:
                    known = link.split("::")[0].lower() in libraries
                if not known:
                    self.breach(path, number, f"{room} may not link {link}")

    def check_cycles(self):
        """Files that include each other, told once a circle."""
        done, told = set(), set()

        def walk(path, trail):
            if path in trail:
                circle = trail[trail.index(path):]
                if frozenset(circle) not in told:
                    told.add(frozenset(circle))
                    names = [str(p.relative_to(self.src)) for p in circle + [path]]
                    number = next(n for n, to in self.includes[trail[-1]] if to == path)
                    self.breach(trail[-1], number, "circle: " + " -> ".join(names))
                return
            if path not in done:
                for _, to in self.includes.get(path, []):
                    walk(to, trail + [path])
                done.add(path)

        for path in sorted(self.includes):
            walk(path, [])

    def check_words(self):
        tops = [top for top in self.root.iterdir() if top.name not in {".git", "build", ".cache"}]
        files = [path for top in tops for path in [top, *top.rglob("*")] if path.is_file()]
        for path in sorted(files):
            name = path.relative_to(self.root)
            if path.suffix not in TEXTS or {"data", "__pycache__"} & set(name.parts):
                continue
            for number, line in enumerate(lines_of(path), 1):
                for pattern, why in WORDS:
                    match = pattern.search(line)
                    # Tests may make paths up.
                    if match and not (name.parts[0] == "tests" and match[0].startswith("/")):
                        self.breach(path, number, f"'{match[0]}' {why}")


def circle_in_table(rooms):
    """The first room from which a way leads back to itself, or nothing."""
    for room in rooms:
        seen, open_ends = set(), set(rooms[room][0])
        while open_ends:
            end = open_ends.pop()
            if end == room:
                return room
            if end not in seen:
                seen.add(end)
                open_ends |= rooms[end][0]
    return None


# What is caught, as: name, file, its text, a piece of the message; no message: nothing to catch.
SNIPPETS = [
    ("a room above", "document/a.cpp", '#include "editor/e.h"', "document may not use editor"),
    ("the adapters are for app alone", "shell/a.cpp", '#include "platform_qt/q.h"',
     "shell may not use platform_qt"),
    ("app may use all", "app/a.cpp", '#include "platform_qt/q.h"', None),
    ("a room beside", "richtext/a.cpp", '#include "document/d.h"', "richtext may not use document"),
    ("widgets below the line", "document/a.cpp", "#include <QMessageBox>",
     "document may not use QtWidgets"),
    ("a font below the line", "platform/a.cpp", "#include <QFont>", "platform may not use QtGui"),
    ("a font in richtext", "richtext/a.cpp", "#include <QFont>", None),
    ("a module's folder before the header", "crypto/a.cpp", "#include <QtGui/QFont>",
     "crypto may not use QtGui"),
    ("a whole module", "editor/a.cpp", "#include <QtCore>", "whole module"),
    ("no header of Qt", "editor/a.cpp", "#include <QNoSuchThing>", "no module"),
    ("OpenSSL outside crypto", "document/a.cpp", "#include <openssl/evp.h>",
     "document may not use openssl"),
    ("OpenSSL in crypto", "crypto/a.cpp", "#include <openssl/evp.h>", None),
    ("the system's folders", "platform/a.cpp", "#include <sys/stat.h>\n#include <optional>", None),
    ("a library nobody named", "platform/a.cpp", "#include <plist/plist.h>",
     "platform may not use plist"),
    ("a path not from src", "editor/a.cpp", '#include "e.h"', "no file counted from src"),
    ("a header that is not there", "editor/a.cpp", '#include "editor/gone.h"', "no file"),
    ("a form below the line", "document/a.cpp", '#include "ui_sheet.h"', "no QtWidgets"),
    ("the preprocessor's blanks", "document/a.cpp", '#  include  "editor/e.h"',
     "document may not use editor"),
    ("a folder that is no room", "attic/a.cpp", "", "no room of the table"),
    ("a circle of two headers", "editor/e.h", '#include "editor/f.h"', "circle: "),
    ("a link list upwards", "crypto/CMakeLists.txt",
     "quorvane_room(crypto LINK quorvane_document Qt6::Core)", "may not link quorvane_document"),
    ("a link list with widgets", "crypto/CMakeLists.txt",
     "quorvane_room(crypto LINK\n  Qt6::Widgets)", "may not link Qt6::Widgets"),
    ("a link list upwards, where there is such a room", "crypto/CMakeLists.txt",
     "quorvane_room(crypto LINK $<TARGET_NAME_IF_EXISTS:quorvane_shell>)",
     "may not link quorvane_shell"),
    ("a paper outside", "editor/a.cpp", "// As spec" ".md has it", "paper outside"),
    ("a chapter of it", "editor/a.cpp", "// See Part " "3.2.", "paper outside"),
    ("a published standard is welcome", "editor/a.cpp", "// RFC 8018, 5.2", None),
    ("left open", "editor/a.cpp", "int x; // TO" "DO: more", "left open"),
    ("a folder of one machine", "editor/a.cpp", '"/home' '/me/x"', "somebody's machine"),
]


def self_test(qt):
    wrong = []
    if circle_in_table(ROOMS):
        wrong.append(f"the table leads from {circle_in_table(ROOMS)} back to it")
    if circle_in_table({"a": ({"b"}, 0, 0), "b": ({"a"}, 0, 0)}) is None:
        wrong.append("a circle in the table is not seen")
    for name, file, text, message in SNIPPETS:
        with tempfile.TemporaryDirectory() as folder:
            src = Path(folder) / "src"
            standing = {"editor/e.h": "", "editor/f.h": '#include "editor/e.h"', "document/d.h": "",
                        "platform_qt/q.h": "", file: text + "\n"}
            for path, content in standing.items():
                (src / path).parent.mkdir(parents=True, exist_ok=True)
                (src / path).write_text(content)
            found = Check(Path(folder), qt, ROOMS).run()
        expected = found == [] if message is None else len(found) == 1 and message in found[0]
        if not expected:
            wrong.append(f"{name}: wanted {message!r}, found {found}")
    return wrong


def main():
    qt = qt_headers()
    if not qt:
        print("check-rooms: no headers of Qt 6 are installed", file=sys.stderr)
        return 2
    if sys.argv[1:] == ["--self-test"]:
        breaches = self_test(qt)
    else:
        breaches = Check(Path(__file__).resolve().parent.parent, qt, ROOMS).run()
    print("\n".join(breaches) if breaches else "check-rooms: every room is in order")
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
