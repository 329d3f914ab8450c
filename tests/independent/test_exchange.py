#!/usr/bin/env python3
"""Exchanges documents between the program's own engine and the independent one, in both directions.

  test_exchange.py DOCFILE

DOCFILE is a program over the engine:
  DOCFILE write OUT PASSWORD-FILE BODY-FILE NOTE-FILE    writes a new document
  DOCFILE read IN PASSWORD-FILE                          prints the body; exits with 3 for a wrong password,
                                                         2 for what it cannot load, 4 for a newer version
The files hold their value and nothing else, in UTF-8.
"""
from __future__ import annotations

import hashlib
import os
import plistlib
import random
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from quorvane_make import FAULTS, WINDOW_KEYS, Form, Recipe, flat_rtfd, make, rtf
from vectors import archived_values

SCRIPT = Path(__file__).resolve().parents[2] / "contrib" / "quorvane-decrypt.py"
DOCFILE = None
TEXT = "Grüße, Привет, 你好, 🎻.\n"
NOTE = "A note\nwith Ünïcödé and 🎻"
PASSWORDS = ("correct horse", "x", "äöüß-morning", "парольдлядневника", "我的日记本很秘密", "🎻🎹🥁🎺", "e\u0301te\u0301",
             " spaces ", "0123456789" * 12)
BODIES = (b"", b"x", bytes(15), bytes(16), bytes(17), bytes(range(256)), rtf(TEXT), flat_rtfd({"TXT.rtf": rtf(TEXT)}),
          flat_rtfd({"TXT.rtf": rtf(TEXT * 400), "a.png": random.Random("a.png").randbytes(200000)}))
CIPHERTEXTS = ("textData", "crDate", "crMAC", "rc")
KINDS = {"appversion": int, "publicTextData": str, "isEditable": bool, "makeToolbarVisibleAtDecrypt": bool,
         **{key: bytes for key in CIPHERTEXTS + ("salt", "IV", "sha1-rc")}, **{key: float for key in WINDOW_KEYS}}


class Exchange(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content.encode() if isinstance(content, str) else content)
        return path

    def engine_writes(self, password, body, note=NOTE):
        out = self.folder / "theirs.quorvane"
        out.unlink(missing_ok=True)
        subprocess.run([DOCFILE, "write", out, self.file("password", password), self.file("body", body),
                        self.file("note", note)], check=True, stdout=subprocess.DEVNULL)
        return out.read_bytes()

    def engine_reads(self, data, password):
        return subprocess.run([DOCFILE, "read", self.file("ours.quorvane", data), self.file("password", password)],
                              capture_output=True, check=False)

    def script_reads(self, data, password, *options):
        return subprocess.run([sys.executable, "-B", SCRIPT, "--password-file", self.file("password", password),
                               *options, self.file("document", data)], capture_output=True, check=False)

    def test_theEngineOpensOurFiles(self):
        for number, (password, body) in enumerate(pairs()):
            with self.subTest(password=password, size=len(body)):
                done = self.engine_reads(make(Recipe(password=password, body=body, note=NOTE, seed=str(number),
                                                     form=Form(xml=number % 3 == 0))), password)
                self.assertEqual((done.returncode, done.stdout), (0, body))

    def test_theScriptOpensTheEnginesFiles(self):
        for password, body in pairs():
            with self.subTest(password=password, size=len(body)):
                data = self.engine_writes(password, body)
                done = self.script_reads(data, password, "--body")
                self.assertEqual((done.returncode, done.stdout), (0, body), done.stderr)
                self.assertEqual(self.script_reads(data, password, "--note").stdout.decode(), NOTE)
                self.assertEqual(self.script_reads(data, password + "x", "--body").returncode, 3)

    def test_theEngineRefusesAsItShould(self):
        body = flat_rtfd({"TXT.rtf": rtf(TEXT)})
        rows = (("another password", Recipe(body=body), "another", 3),
                ("wrong digest", Recipe(body=body, alter=FAULTS["wrong-digest"]), "correct horse", 3),
                ("damaged padding", Recipe(body=body, alter=FAULTS["broken-text-padding"]), "correct horse", 3),
                ("newer version", Recipe(body=body, version=20401), "correct horse", 4))
        for name, recipe, password, exit_code in rows:
            with self.subTest(name):
                done = self.engine_reads(make(recipe), password)
                self.assertEqual((done.returncode, done.stdout), (exit_code, b""))
        self.assertEqual(self.engine_reads(b"no document", "correct horse").returncode, 2)

    def test_everyKeyHasItsClassAndLength(self):
        data = self.engine_writes("correct horse", BODIES[7])
        plist, values = plistlib.loads(data), archived_values(data)
        self.assertEqual(data[:8], b"bplist00")
        self.assertEqual((plist["$version"], plist["$archiver"]), (100000, "NSKeyedArchiver"))
        self.assertEqual(plist["$top"], {"root": plistlib.UID(1)})
        objects = plist["$objects"]
        self.assertEqual(objects[objects[1]["$class"].data],
                         {"$classname": "NSMutableDictionary",
                          "$classes": ["NSMutableDictionary", "NSDictionary", "NSObject"]})
        # The address is absent on a machine that has none, but its ciphertext is not.
        self.assertEqual({key: type(value) for key, value in values.items()}, KINDS)
        self.assertEqual((values["appversion"], values["publicTextData"], values["isEditable"]), (20400, NOTE, True))
        self.assertEqual({key: len(values[key]) for key in ("salt", "IV", "sha1-rc", "crMAC")},
                         {"salt": 8, "IV": 16, "sha1-rc": 20, "crMAC": 16})
        self.assertEqual([key for key in CIPHERTEXTS if len(values[key]) % 16], [])
        self.assertEqual(len(values["textData"]), len(BODIES[7]) // 16 * 16 + 16)
        self.assertGreaterEqual(len(values["rc"]), 272)
        self.assertLessEqual(len(values["rc"]), 528)

    def test_theCreationDateIsAnArchivedDate(self):
        values = archived_values(self.engine_writes("correct horse", b"text"))
        key = hashlib.pbkdf2_hmac("sha1", b"correct horse", values["salt"], 10000, 32)
        plain = subprocess.run(["openssl", "enc", "-d", "-aes-256-cbc", "-K", key.hex(), "-iv", values["IV"].hex()],
                               input=values["crDate"], stdout=subprocess.PIPE, check=True).stdout
        objects = plistlib.loads(plain)["$objects"]
        self.assertIsInstance(objects[1]["NS.time"], float)
        self.assertEqual(objects[objects[1]["$class"].data]["$classes"], ["NSDate", "NSObject"])

    def test_twoWritesShareNoSecretBytes(self):
        first, second = (archived_values(self.engine_writes("correct horse", BODIES[7])) for _ in range(2))
        # Not sha1-rc: the check string is no secret, and two processes that begin within one second
        # draw the same one.
        for key in CIPHERTEXTS + ("salt", "IV"):
            with self.subTest(key):
                self.assertNotEqual(first[key], second[key])
        blocks = [{values[key][at:at + 16] for key in CIPHERTEXTS for at in range(0, len(values[key]), 16)}
                  for values in (first, second)]
        self.assertEqual(blocks[0] & blocks[1], set())

    def test_nothingOfTheTextStandsInTheFile(self):
        marker = b"a marker that nobody else writes"
        data = self.engine_writes("a password to look for", marker)
        for secret in (marker, b"a password to look for", b"a password to look for".decode().encode("utf-16-be")):
            self.assertNotIn(secret, data)


def pairs():
    """Each password and each body at least once, without all their combinations."""
    for number in range(max(len(PASSWORDS), len(BODIES))):
        yield PASSWORDS[number % len(PASSWORDS)], BODIES[number % len(BODIES)]


if __name__ == "__main__":
    if len(sys.argv) < 2 or not os.access(sys.argv[1], os.X_OK):
        sys.exit(__doc__)
    DOCFILE = sys.argv.pop(1)
    unittest.main()
