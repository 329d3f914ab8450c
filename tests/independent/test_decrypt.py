#!/usr/bin/env python3
"""Tests contrib/quorvane-decrypt.py: against the vectors, and in how it treats files and secrets."""
from __future__ import annotations

import concurrent.futures
import hashlib
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from quorvane_make import Recipe, flat_rtfd, make, pbkdf2_input, rtf
from vectors import FOLDER, Vector, all_vectors, archived_values

ROOT = Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "contrib" / "quorvane-decrypt.py"
EXITS = {"opened": 0, "unreadable": 2, "wrong-password": 3, "refused-newer": 4}


class DecryptTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def decrypt(self, data, *options, password="correct horse", **environment):
        """Runs the script on a document's bytes, the password in a descriptor."""
        reading, writing = os.pipe()
        os.write(writing, password.encode())
        os.close(writing)
        try:
            return subprocess.run([sys.executable, "-B", SCRIPT, "--password-fd", str(reading), *map(str, options), "-"],
                                  input=data, capture_output=True, pass_fds=(reading,), check=False,
                                  env={**os.environ, **environment})
        finally:
            os.close(reading)


class Vectors(DecryptTest):
    @classmethod
    def setUpClass(cls):
        cls.vectors = all_vectors()

    def each(self, check, vectors):
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            for vector, problem in zip(vectors, pool.map(check, vectors)):
                with self.subTest(vector.name):
                    self.assertIsNone(problem)

    def test_everyVectorEndsAsItSays(self):
        def check(vector):
            done = self.decrypt(vector.data, "--body", password=vector.password)
            wanted = int(vector.script_exit or EXITS[vector.expect])
            if done.returncode != wanted:
                return f"exit code {done.returncode}, not {wanted}: {done.stderr.decode()}"
            if vector.expect == "opened" and hashlib.sha1(done.stdout).hexdigest() != vector.body_sha1:
                return "another body"
            if wanted and (done.stdout or b"Traceback" in done.stderr or not done.stderr):
                return f"no clean refusal: {done.stdout} {done.stderr.decode()}"
            return None
        self.assertGreater(len(self.vectors), 150)
        self.each(check, self.vectors)

    def test_theNoteNeedsNoPassword(self):
        def check(vector):
            done = subprocess.run([sys.executable, "-B", SCRIPT, "--note", "-"], input=vector.data, check=False,
                                  capture_output=True)
            if vector.note is None:
                return None if done.returncode == EXITS[vector.expect] else f"exit code {done.returncode}"
            return None if done.stdout.decode() == vector.note else f"another note: {done.stdout.decode()}"
        chosen = [vector for vector in self.vectors if re.match("note|newer|broken|aes|blowfish|unlisted", vector.name)]
        self.each(check, chosen)

    def test_theTextIsTheOneWritten(self):
        def check(vector):
            done = self.decrypt(vector.data, password=vector.password)
            return None if done.stdout.decode() == vector.text else f"another text: {done.stdout.decode()[:200]}"
        chosen = [vector for vector in self.vectors if vector.text is not None]
        self.assertGreater(len(chosen), 20)
        self.each(check, chosen)


class Secrets(DecryptTest):
    """The password and the key stay out of every command line, and `openssl` is used but never trusted."""

    def fake_openssl(self, lines):
        folder = self.folder / "bin"
        folder.mkdir()
        program = folder / "openssl"
        program.write_text("#!/bin/sh\nprintf '%s\\n' \"$@\" >> \"$RECORD\"\n" + lines)
        program.chmod(0o755)
        return {"PATH": f"{folder}:{os.environ['PATH']}", "RECORD": str(self.folder / "arguments")}

    def test_opensslGetsNoSecretInItsArguments(self):
        environment = self.fake_openssl(f"PATH='{os.environ['PATH']}'\nexec openssl \"$@\"\n")
        done = self.decrypt(make(Recipe(body=b"through openssl")), "--body", **environment)
        self.assertEqual(done.stdout, b"through openssl")
        arguments = (self.folder / "arguments").read_text().lower()
        self.assertIn("-aes-256-cbc", arguments)
        salt = archived_values(make(Recipe(body=b"through openssl")))["salt"]
        key = hashlib.pbkdf2_hmac("sha1", pbkdf2_input("correct horse"), salt, 10000, 32)
        for secret in ("correct", "horse", key.hex(), key[:8].hex(), b"correct horse".hex()):
            self.assertNotIn(secret, arguments)

    def test_anOddOpensslDoesNoHarm(self):
        for name, lines in (("fails", "exit 1\n"), ("is silent", "exit 0\n"), ("echoes", "exec tail -c +17\n"),
                            ("is killed", "kill -9 $$\n")):
            with self.subTest(name):
                environment = self.fake_openssl(lines)
                done = self.decrypt(make(Recipe(body=b"all the same")), "--body", **environment)
                self.assertEqual((done.returncode, done.stdout), (0, b"all the same"))
                self.assertTrue((self.folder / "arguments").exists())
                self.tearDownFolder()

    def tearDownFolder(self):
        (self.folder / "bin" / "openssl").unlink()
        (self.folder / "bin").rmdir()
        (self.folder / "arguments").unlink()

    def test_itWorksWithoutOpenssl(self):
        data = make(Recipe(body=bytes(range(256)) * 40))
        for name, options, environment in (("none installed", (), {"PATH": str(self.folder)}),
                                           ("not wanted", ("--no-openssl",), {})):
            with self.subTest(name):
                done = self.decrypt(data, "--body", *options, **environment)
                self.assertEqual(done.stdout, bytes(range(256)) * 40)

    def test_passwordFileIsTakenWholeWithoutItsLastLineEnd(self):
        document = self.file("document", make(Recipe(password=" two\nlines ", body=b"x")))
        for content, exit_code in ((b" two\nlines ", 0), (b" two\nlines \n", 0), (b" two\nlines \r\n", 0),
                                   (b" two\nlines \n\n", 3), (b"two\nlines", 3), (b"\xff", 1)):
            with self.subTest(content):
                done = subprocess.run([sys.executable, "-B", SCRIPT, "--body", "--password-file",
                                       self.file("password", content), document], capture_output=True, check=False)
                self.assertEqual((done.returncode, done.stdout), (exit_code, b"x" if exit_code == 0 else b""))


class Results(DecryptTest):
    def test_rtfdStaysInItsFolder(self):
        vector = Vector(FOLDER / "body-hostile-names.vector")
        target = self.folder / "out" / "bundle"
        target.parent.mkdir()
        done = self.decrypt(vector.data, "--rtfd", target)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(list(self.folder.iterdir()), [self.folder / "out"])
        self.assertEqual(list(target.parent.iterdir()), [target])
        names = sorted(path.name for path in target.iterdir())
        contents = {path.read_bytes() for path in target.iterdir()}
        self.assertIn("TXT.rtf", names)
        self.assertEqual(len({name.casefold() for name in names}), len(names))
        for number in b"12456789":  # 3 is the contents of "..", which is no attachment
            self.assertIn(bytes([number]), contents)
        for name in names:
            self.assertNotRegex(name, r'^[.]|[/\\:\x00]|.{201}')
        self.assertEqual({path.stat().st_mode & 0o777 for path in target.iterdir()}, {0o600})

    def test_rtfdHoldsTextAndAttachments(self):
        image = bytes(range(256)) * 30
        nested = self.folder / "bundle"
        done = self.decrypt(make(Recipe(body=flat_rtfd({"a photo.png": image, "TXT.rtf": rtf("text")}))),
                            "--rtfd", nested)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual({path.name: path.read_bytes() for path in nested.iterdir()},
                         {"a photo.png": image, "TXT.rtf": rtf("text")})

    def test_nothingIsOverwritten(self):
        there, data = self.file("there", b"mine"), make(Recipe(body=b"text"))
        for name, options in (("file", ("-o", there)), ("folder", ("--rtfd", self.folder)),
                              ("no such folder", ("-o", self.folder / "none" / "new"))):
            with self.subTest(name):
                self.assertEqual(self.decrypt(data, *options).returncode, 5)
        self.assertEqual(there.read_bytes(), b"mine")

    def test_aNewFileIsForItsOwner(self):
        new = self.folder / "new"
        self.assertEqual(self.decrypt(make(Recipe(body=b"text")), "-o", new).returncode, 0)
        self.assertEqual((new.read_bytes(), new.stat().st_mode & 0o777), (b"text", 0o600))

    def test_aFullDiskIsReported(self):
        document, password = self.file("document", make(Recipe(body=b"text"))), self.file("password", b"correct horse")
        with open("/dev/full", "wb") as full:
            done = subprocess.run([sys.executable, "-B", SCRIPT, "--password-file", password, document], stdout=full,
                                  stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 5)
        self.assertNotIn(b"Traceback", done.stderr)

    def test_wrongUsageHasItsOwnCode(self):
        document = self.file("document", make(Recipe()))
        for options in ([], ["--no-such-option", document], ["--note", "--body", document],
                        ["--rtfd", "a", "-o", "b", document], ["--password-file", "/no/such/file", document],
                        ["--password-fd", "99", document], ["--password", "correct horse", document]):
            with self.subTest(options):
                done = subprocess.run([sys.executable, "-B", SCRIPT, *options], capture_output=True, check=False)
                self.assertEqual((done.returncode, done.stdout), (1, b""))

    def test_salvageHandsOutWhatThereIs(self):
        whole = Vector(FOLDER / "aes-20400.vector")
        body = self.decrypt(whole.data, "--body").stdout
        for name, kept in (("check-wrong-digest", len(body)), ("missing-rc", len(body)),
                           ("text-cut-in-a-block", len(body) // 16 * 16 - 16),
                           ("text-broken-padding", len(body) // 16 * 16 - 16)):
            with self.subTest(name):
                done = self.decrypt(Vector(FOLDER / f"{name}.vector").data, "--body", "--salvage")
                self.assertEqual((done.returncode, done.stdout[:kept]), (0, body[:kept]))


class Text(DecryptTest):
    def test_rtfBecomesText(self):
        attachment = rb"{{\NeXTGraphic my photo.png \width640 \height480 \noorient" + b"\n}\xac}"
        rows = (
            ("backslash and line feed end a paragraph", b"one\\\ntwo\nthree\\\r\nfour", "one\ntwothree\nfour"),
            ("words for white space", rb"a\par b\line c\tab d\page e", "a\nb\nc\td\ne"),
            ("escapes", rb"\{a\}\\b\~c\_d", "{a}\\b\u00a0c\u2011d"),
            ("hex in the document's code page", rb"Gr\'fc\'dfe \'80", "Grüße €"),
            ("hex in the font's code page", rb"\f1 \'cf\'f0\f0 \'fc", "Прü"),
            ("two bytes a character", rb"\f2 \'93\'fa\'96\'7b", "日本"),
            ("unsigned and negative units", rb"\uc0\u65509 \u-27 .", "\uffe5\uffe5."),
            ("surrogate pairs", rb"\uc0\u55356 \u57275 !", "🎻!"),
            ("fallback characters are skipped", rb"\uc1\u8364 ?\u8364\'80\uc2\u8364 xyz", "€€€z"),
            ("the count of fallbacks ends with its group", rb"{\uc0\u8364 a}\u8364 ab", "€a€b"),
            ("attachments stand by name", rb"see " + attachment + b" there", "see [my photo.png] there"),
            ("the placeholder may be written as hex", rb"{{\NeXTGraphic a.png}\'ac}b\'ac", "[a.png]b¬"),
            ("destinations to leave out", rb"{\*\generator Foo;}{\info{\title x}}a{\pict\bin4 }{}{}bc", "abc"),
            ("a link shows its text", rb'{\field{\*\fldinst{HYPERLINK "http://x"}}{\fldrslt here}}', "here"),
            ("deleted text stays deleted", rb"a{\deleted b}\deleted c\deleted0 d", "ad"),
            ("list labels count as text", rb"{\listtext" + b"\t" + rb"\uc0\u8226 " + b"\t}item", "\t•\titem"),
            ("table cells", rb"a\cell b\cell\row", "a\tb\t\n"),
            ("braces that do not match", b"a}}b{{{c", "abc"),
            ("very deep groups", b"{" * 5000 + b"deep" + b"}" * 5000, "deep"),
        )
        head = (rb"{\rtf1\ansi\ansicpg1252{\fonttbl\f0\fswiss\fcharset0 Helvetica;\f1\fnil\fcharset204 A;}"
                .replace(b";}", rb";{\f2\fnil\fcharset128 B;}}") + rb"{\colortbl;\red255\green255\blue255;}\f0 ")
        for name, content, text in rows:
            with self.subTest(name):
                done = self.decrypt(make(Recipe(body=head + content + b"}")))
                self.assertEqual((done.returncode, done.stdout.decode()), (0, text))

    def test_theDescriptionsExampleIsTrue(self):
        """The numbers in docs/file-format.md belong to the vector aes-20400."""
        text = (ROOT / "docs" / "file-format.md").read_text()
        document = archived_values(Vector(FOLDER / "aes-20400.vector").data)
        key = hashlib.pbkdf2_hmac("sha1", b"correct horse", document["salt"], 10000, 32)
        for name, value in (("salt", document["salt"]), ("IV", document["IV"]), ("key", key),
                            ("sha1-rc", document["sha1-rc"]), ("textData", document["textData"][:16])):
            with self.subTest(name):
                self.assertIn(value.hex(), text)


if __name__ == "__main__":
    unittest.main()
