#!/usr/bin/env python3
"""Installs into a folder and reads there what a desktop would read.

    test_packaging.py BUILD_FOLDER PROGRAM
"""

import configparser
import os
import plistlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
ID = "com.orbelt.Quorvane"
MIME = "application/x-quorvane"
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)
GUIDE = "share/doc/quorvane/Quorvane User Guide.pdf"
INSTALLED = {
    "bin/quorvane", "bin/quorvane-cli",
    f"share/applications/{ID}.desktop",
    f"share/dbus-1/services/{ID}.service",
    f"share/metainfo/{ID}.metainfo.xml",
    f"share/mime/packages/{ID}.xml",
    "share/bash-completion/completions/quorvane-cli",
    "share/doc/quorvane/file-format.md",
    "share/doc/quorvane/examples/quorvane-decrypt.py",
    "share/man/man1/quorvane.1", "share/man/man1/quorvane-cli.1",
    f"share/icons/hicolor/scalable/apps/{ID}.svg",
    "share/icons/hicolor/scalable/mimetypes/application-x-quorvane.svg",
    f"share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg",
} | {f"share/icons/hicolor/{size}x{size}/{name}.png" for size in SIZES
     for name in (f"apps/{ID}", "mimetypes/application-x-quorvane")}


def run(*command, **options):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          check=False, **options)


def vector(name):
    return (ROOT / "tests/data/vectors" / f"{name}.vector").read_bytes().split(b"\n\n", 1)[1]


def archive(*keys):
    """A keyed archive that somebody else wrote."""
    return plistlib.dumps({"$version": 100000, "$archiver": "NSKeyedArchiver",
                           "$objects": ["$null", *keys]}, fmt=plistlib.FMT_BINARY)


class Installed(unittest.TestCase):
    build = program = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        answer = run("cmake", "--install", cls.build, "--prefix", "/usr",
                     env={**os.environ, "DESTDIR": cls.folder.name})
        assert answer.returncode == 0, answer.stderr
        cls.prefix = Path(cls.folder.name, "usr")

    def entry(self, path):
        parser = configparser.ConfigParser(interpolation=None, delimiters="=")
        parser.optionxform = str
        parser.read(self.prefix / path, encoding="utf-8")
        return parser

    def test_everything_is_installed_and_nothing_else(self):
        files = {str(path.relative_to(self.prefix))
                 for path in self.prefix.rglob("*") if path.is_file()}
        self.assertEqual(files - {GUIDE}, INSTALLED)

    def test_the_validators_find_nothing(self):
        for command in (["desktop-file-validate"], ["appstreamcli", "validate", "--no-net"]):
            folder = "applications" if command[0].startswith("desktop") else "metainfo"
            path, = (self.prefix / "share" / folder).iterdir()
            answer = run(*command, path)
            self.assertEqual(answer.returncode, 0, answer.stdout + answer.stderr)

    def test_what_starts_the_program_names_options_that_it_has(self):
        helps = run(self.program, "--help").stdout
        desktop = self.entry(f"share/applications/{ID}.desktop")
        starts = [desktop[section]["Exec"] for section in desktop.sections()]
        service = self.entry(f"share/dbus-1/services/{ID}.service")["D-BUS Service"]
        self.assertEqual(service["Name"], ID)
        path, _, option = service["Exec"].partition(" ")
        starts.append(f"{Path(path).name} {option}")
        for start in starts:
            name, _, argument = start.partition(" ")
            self.assertIn(f"bin/{name}", INSTALLED)
            self.assertTrue(argument == "%F" or re.search(rf"{argument}\s", helps), start)
        actions = desktop["Desktop Entry"]["Actions"].strip(";").split(";")
        self.assertEqual({f"Desktop Action {action}" for action in actions} | {"Desktop Entry"},
                         set(desktop.sections()))

    def test_the_manual_pages_have_every_option_and_the_release(self):
        page = (self.prefix / "share/man/man1/quorvane.1").read_text(encoding="utf-8")
        for option in re.findall(r"(?<=[\s,])--?[a-z-]+", run(self.program, "--help").stdout):
            self.assertIn(option.replace("-", r"\-"), page)
        release = run(self.program, "--version").stdout.split()[-1]
        for path in (self.prefix / "share/man/man1").iterdir():
            self.assertIn(f'"Quorvane {release}"', path.read_text(encoding="utf-8"))
        changes = (ROOT / "packaging/debian/changelog").read_text(encoding="utf-8")
        self.assertTrue(changes.startswith(f"quorvane ({release}) "))

    def test_pictures_have_the_size_of_their_folder(self):
        for path in self.prefix.rglob("hicolor/*x*/*/*.png"):
            width, height = struct.unpack(">II", path.read_bytes()[16:24])
            self.assertEqual(f"{width}x{height}", path.parent.parent.name)
        for path in self.prefix.rglob("*.svg"):
            ElementTree.parse(path)

    def test_documents_are_known_by_name_and_by_content(self):
        rows = {
            "a document by its name": ("letter.quorvane", b"", MIME),
            "one in the XML form": ("letter.quorvane", vector("container-xml"), MIME),
            "a current document without an extension": ("letter", vector("aes-20400"), MIME),
            "a document of the old cipher": ("letter", vector("blowfish-1400"), MIME),
            "one with a long list of keys": ("letter", vector("container-wide-references"), MIME),
            "another program's archive": ("letter", archive("appversion", "title"), None),
            "a property list that is no archive": ("letter", vector("broken-plain-plist"), None),
            "a text about documents": ("letter", b"bplist appversion publicTextData", None),
            "a text with the name of a text": ("letter.txt", b"bplist00", None),
        }
        data_folder = tempfile.TemporaryDirectory()
        self.addCleanup(data_folder.cleanup)
        shutil.copytree(self.prefix / "share/mime", Path(data_folder.name, "mime"))
        self.assertEqual(run("update-mime-database", Path(data_folder.name, "mime")).returncode, 0)
        ask = ("import sys\nfrom gi.repository import Gio\n"
               "print(Gio.content_type_guess(sys.argv[1], sys.stdin.buffer.read())[0])")
        # The machine's own types stand beside ours, as they would.
        environment = {**os.environ, "XDG_DATA_HOME": data_folder.name}
        for name, (file, data, expected) in rows.items():
            with self.subTest(name):
                answer = subprocess.run([sys.executable, "-c", ask, file], input=data,
                                        capture_output=True, env=environment, check=True)
                found = answer.stdout.decode().strip()
                self.assertEqual(found == MIME, expected == MIME, found)


if __name__ == "__main__":
    Installed.build, Installed.program = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
