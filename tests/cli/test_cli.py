#!/usr/bin/env python3
"""Tests quorvane-cli with documents that another hand made:  test_cli.py PROGRAM"""
from __future__ import annotations

import hashlib
import json
import os
import re
import resource
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from terminal import Terminal

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "independent"))
from quorvane_make import (AES_CURRENT, AES_FIRST, BLOWFISH_EARLY, BLOWFISH_WINDOW, Recipe,  # noqa: E402
                           archive, flat_rtfd, make, rtf)
from vectors import all_vectors  # noqa: E402

PROGRAM = None
SCRIPT = ROOT / "contrib" / "quorvane-decrypt.py"
COMMANDS = ("info", "cat", "create", "passwd", "note", "migrate", "verify")
TEXT = "Grüße, 你好, 🎻.\nSecond line"
BODY = flat_rtfd({"TXT.rtf": rtf(TEXT)})
PASSWORD = "correct horse"
DONE, USAGE, UNREADABLE, WRONG, NEWER, UNWRITABLE = range(6)


class Case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def file(self, name, content=None, **recipe):
        path = self.folder / name
        if content is None:
            content = make(Recipe(**{"body": BODY, "note": "a note", "seed": name, **recipe}))
        path.write_bytes(content.encode() if isinstance(content, str) else content)
        return path

    def run_cli(self, *arguments, password=PASSWORD, new=None, input=b"", **more):
        """Without any terminal; passwords come from files that are not in the document's folder."""
        command = [PROGRAM, *arguments]
        with tempfile.TemporaryDirectory() as secrets:
            for option, secret in (("--password-file", password), ("--new-password-file", new)):
                if secret is not None:
                    path = Path(secrets) / option
                    path.write_text(secret + "\nsecond line")
                    command[2:2] = [option, path]
            return subprocess.run(command, input=input, capture_output=True, check=False, start_new_session=True,
                                  **more)

    def assert_ends(self, done, code, told=""):
        self.assertEqual(done.returncode, code, done.stderr.decode())
        self.assertIn(told, done.stderr.decode())
        return done

    def body_of(self, path, password=PASSWORD):
        """What another program finds in the document."""
        done = subprocess.run([sys.executable, "-B", SCRIPT, "--password-fd", "0", "--body", path],
                              input=password.encode(), capture_output=True, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def info(self, path):
        return json.loads(self.assert_ends(self.run_cli("info", "--json", path, password=None), DONE).stdout)[0]


class Reading(Case):
    def test_vectorsEndAsTheyShould(self):
        usual = {"opened": DONE, "wrong-password": WRONG, "refused-newer": NEWER, "unreadable": UNREADABLE}
        tried = [vector for vector in all_vectors()
                 if re.match("blowfish-[a-z]|unlisted|newer|check|date|mac|missing|text", vector.name)]
        self.assertGreater(len(tried), 40)
        for vector in tried:
            with self.subTest(vector.name):
                code = int(vector.script_exit or usual[vector.expect])
                if vector.expect != "opened" and code == DONE:
                    code = UNREADABLE  # the other program reads past damage that does not concern the text
                path = self.file("vector.quorvane", vector.data)
                done = self.assert_ends(self.run_cli("cat", "--format", "body", path, password=vector.password), code)
                if code == DONE:
                    self.assertEqual(hashlib.sha1(done.stdout).hexdigest(), vector.body_sha1)

    def test_infoTellsWhatIsInTheClear(self):
        old = self.info(self.file("old.quorvane", version=10603, editable=False, window=(1.5, 2, 300, 400)))
        self.assertEqual((old["version"], old["release"], old["family"], old["cipher"], old["note"], old["readOnly"]),
                         (10603, "1.6.3", "Blowfish with window", "Blowfish", "a note", True))
        self.assertEqual(old["window"], {"x": 1, "y": 2, "width": 300, "height": 400})
        self.assertEqual(old["lengths"]["textData"], len(BODY) // 8 * 8 + 8)
        self.assertIsNone(old["lengths"]["salt"])
        path = self.file("new.quorvane", note="two\nlines \x1b[31m")
        new = self.info(path)
        self.assertEqual((new["family"], new["lengths"]["salt"], new["lengths"]["sha1-rc"]), ("Current AES", 8, 20))
        shown = self.run_cli("info", path, password=None).stdout.decode()
        self.assertIn("Public note     two\n                  lines ^[[31m\n", shown)

    def test_eachFormatIsWritten(self):
        path = self.file("a.quorvane")
        rows = (("text", TEXT.encode()), ("rtf", b"{\\rtf1"), ("html", b"<!DOCTYPE HTML"), ("body", BODY))
        for format, piece in rows:
            with self.subTest(format):
                done = self.assert_ends(self.run_cli("cat", "--format", format, path), DONE)
                self.assertTrue(done.stdout.startswith(piece))
                out = self.file("out", "what was there")
                out.chmod(0o644)
                self.assert_ends(self.run_cli("cat", "-f", format, "-o", out, path), DONE)
                self.assertEqual((out.read_bytes(), out.stat().st_mode & 0o777), (done.stdout, 0o600))
        self.assertEqual(self.run_cli("cat", path).stdout, TEXT.encode())

    def test_whatIsNoRegularFileIsWrittenToAsAStream(self):
        path, out = self.file("a.quorvane"), self.file("out", "before\n")
        out.chmod(0o644)
        link, fifo = self.folder / "link", self.folder / "fifo"
        link.symlink_to("/dev/stdout")
        os.mkfifo(fifo)
        rows = (("/dev/stdout", "ab"), ("/dev/fd/1", "ab"), ("/proc/self/fd/1", "r+b"), (link, "ab"))
        for name, mode in rows:
            with self.subTest(name), open(out, mode) as shells:
                out.write_text("before\n")
                shells.seek(7)
                inode = out.stat().st_ino
                command = [PROGRAM, "cat", "--password-file", self.file("pw", PASSWORD), "-o", name, path]
                subprocess.run(command, stdout=shells, check=True)
                self.assertEqual((out.read_text(), out.stat().st_ino), ("before\n" + TEXT, inode))
        reader = subprocess.Popen(["cat", fifo], stdout=subprocess.PIPE)
        self.addCleanup(reader.kill)
        self.assert_ends(self.run_cli("cat", "-o", fifo, path), DONE)
        self.assertEqual(reader.communicate()[0], TEXT.encode())
        self.assert_ends(self.run_cli("cat", "-o", "/dev/null", path), DONE)
        self.assert_ends(self.run_cli("cat", "-o", "/dev/full", path), UNWRITABLE, "/dev/full: No space left")
        self.assert_ends(self.run_cli("cat", "-o", "/dev/fd/77", path), UNWRITABLE, "/dev/fd/77: ")
        self.assertTrue(fifo.is_fifo() and link.is_symlink())

    def test_whatShouldLastIsNotReplaced(self):
        path, other = self.file("a.quorvane"), self.file("other.quorvane")
        old, newer = self.file("old.quorvane", version=1400), self.file("newer.quorvane", version=20401)
        damaged = self.file("damaged.quorvane", other.read_bytes()[:-40])
        package = self.folder / "out.rtfd"
        self.assert_ends(self.run_cli("cat", "-f", "rtfd", "-o", package, path), DONE)
        self.assert_ends(self.run_cli("cat", "-f", "rtfd", "-o", package, path), DONE)
        (package / "mine").write_text("mine")
        rows = [("rtfd", self.file("text", "x"), "it is a file"), ("rtfd", "/dev/null", "it is no folder"),
                ("text", package, "it is a folder"), ("rtfd", package, "'mine'")]
        rows += [(format, out, "protected document") for format in ("text", "body", "rtfd")
                 for out in (other, old, newer, damaged)]
        files = [each for each in self.folder.rglob("*") if each.is_file()]
        before = {each: each.read_bytes() for each in files}
        for format, out, told in rows:
            with self.subTest(f"{format} over {out}"):
                done = self.assert_ends(self.run_cli("cat", "-f", format, "-o", out, path), UNWRITABLE, told)
                self.assertIn(str(out), done.stderr.decode())
        self.assertEqual({each: each.read_bytes() for each in files}, before)

    def test_verifyPromisesNoMoreThanItKnows(self):
        rows = ((None, {}, DONE, "without the password"),
                (PASSWORD, {}, DONE, "the password opens it"),
                ("another", {}, WRONG, "wrong password"),
                (PASSWORD, {"version": 1410}, DONE, "no other proof"),
                (PASSWORD, {"body": flat_rtfd({"TXT.rtf": rtf(TEXT)})[:-9]}, UNREADABLE, "the text within is damaged"),
                (None, {"version": 10701}, UNREADABLE, "nothing can unlock it"),
                (None, {"alter": lambda values: values.pop("rc")}, UNREADABLE, "password check"))
        for password, recipe, code, told in rows:
            with self.subTest(told):
                done = self.run_cli("verify", self.file("a.quorvane", **recipe), password=password)
                self.assertEqual(done.returncode, code)
                self.assertIn(told, (done.stdout + done.stderr).decode())


class Writing(Case):
    def test_createTakesEachKindOfContent(self):
        package = self.folder / "in.rtfd"
        package.mkdir()
        (package / "TXT.rtf").write_bytes(rtf(TEXT))
        (package / "a.png").write_bytes(b"an image")
        rows = ((self.file("in.txt", TEXT), b""), (self.file("in.rtf", rtf(TEXT)), b""), (package, b""),
                ("-", TEXT.encode()), (self.file("in.flat", BODY), b""))
        for number, (source, input) in enumerate(rows):
            with self.subTest(source):
                out = self.folder / f"{number}.quorvane"
                self.assert_ends(self.run_cli("create", "--from", source, "--note", "ü", out, input=input), DONE)
                self.assertEqual(out.stat().st_mode & 0o777, 0o600)
                self.assertEqual(self.run_cli("cat", out).stdout.decode(), TEXT)
                self.assertTrue(self.body_of(out).startswith(b"rtfd"))
                self.assertEqual(self.run_cli("note", out, password=None).stdout.decode(), "ü\n")
        empty = self.folder / "empty.quorvane"
        self.assert_ends(self.run_cli("create", empty), DONE)
        self.assertEqual(self.body_of(empty), b"")

    def test_aPackageComesBackAsItWas(self):
        out = self.folder / "out.rtfd"
        graphic = b"{{\\NeXTGraphic a.png \\width640 \\height480 \\noorient\n}\xac}"
        text = rtf("x").replace(b"x}", b"x" + graphic + b"}")
        path = self.file("a.quorvane", body=flat_rtfd({"a.png": b"an image", "TXT.rtf": text}))
        self.assert_ends(self.run_cli("cat", "--format=rtfd", "--output", out, path), DONE)
        self.assertEqual((out / "a.png").read_bytes(), b"an image")
        again = self.folder / "again.quorvane"
        self.assert_ends(self.run_cli("create", "--from", out, again), DONE)
        self.assertEqual(self.run_cli("cat", again).stdout.decode(), "x\ufffc")

    def test_passwdChangesThePasswordAndNothingElse(self):
        for version in (1400, 10603, 10700, 20400):
            with self.subTest(version):
                path = self.file("a.quorvane", version=version, editable=False)
                before = self.info(path)
                self.assert_ends(self.run_cli("passwd", path, new="another horse"), DONE)
                self.assertEqual(self.body_of(path, "another horse"), BODY)
                self.assert_ends(self.run_cli("cat", path), WRONG)
                after = self.info(path)
                self.assertEqual((after["version"], after["note"], after["readOnly"]), (20400, "a note", True))
                self.assertEqual(after["window"], before["window"] or dict.fromkeys(("x", "y", "width", "height"), 0))

    def test_noteIsSetAndTheRestStays(self):
        path = self.file("a.quorvane", toolbar=False, editable=False)
        before = self.info(path)
        self.assert_ends(self.run_cli("note", "--set", "-x ü\n", path), DONE)
        after = self.info(path)
        self.assertEqual({**after, "lengths": None}, {**before, "note": "-x ü\n", "lengths": None})
        self.assertEqual(self.body_of(path), BODY)

    def test_aFolderOfOldDocumentsIsMigratedByOneCommand(self):
        files = {}
        for version in BLOWFISH_EARLY + BLOWFISH_WINDOW + AES_FIRST + AES_CURRENT + (0, 1, 10405, 10699):
            path = self.file(f"{version}.quorvane", version=version, editable=version % 2 == 0,
                             window=(10, -20, 640, 480))
            files[path] = self.info(path), path.read_bytes()
        bad = {self.file("wrong.quorvane", version=10600, password="another"): WRONG,
               self.file("no document.quorvane", "text"): UNREADABLE,
               self.file("newer.quorvane", version=20401): NEWER,
               self.file("of another program", archive({"NSWindowFrame": "0 0 1 1"})): UNREADABLE,
               # Opens with this password, as one in 256 does with a wrong one.
               self.file("noise.quorvane", version=10603, body=b"\x93\x00noise\xff"): WRONG}
        untouched = {path: path.read_bytes() for path in bad}
        first = next(iter(files))
        trial = self.assert_ends(self.run_cli("migrate", "--dry-run", *files, password=None), DONE)
        self.assertEqual(trial.stdout.count(b"to migrate"), len(files) - 1)
        self.assertEqual(self.run_cli("migrate", "-n", *files).stdout.count(b"would migrate"), len(files) - 1)
        self.assertEqual({path: path.read_bytes() for path in files}, {path: old[1] for path, old in files.items()})

        done = self.run_cli("migrate", *bad, *files, first)
        self.assertEqual(done.returncode, next(iter(bad.values())))
        told = done.stderr.decode()
        for path in bad:
            self.assertIn(str(path), told)
        self.assertIn(f"{len(files) - 1} migrated, 1 current, 1 named twice, {len(bad)} failed", told)
        self.assertNotIn("\r", told)  # no bar: this is no terminal
        self.assertEqual({path: path.read_bytes() for path in bad}, untouched)
        self.assertEqual(len(list(self.folder.iterdir())), len(files) + len(bad))
        for path, (before, content) in files.items():
            with self.subTest(path.name):
                after = self.info(path)
                expected = {"version": 20400, "note": "a note", "readOnly": before["readOnly"],
                            "toolbar": before["toolbar"] is not False,
                            "window": before["window"] or dict.fromkeys(("x", "y", "width", "height"), 0)}
                self.assertEqual({key: after[key] for key in expected}, expected)
                self.assertEqual(self.body_of(path), BODY)
                self.assertEqual(path.read_bytes() == content, before["version"] == 20400)


class Refusals(Case):
    def test_eachExitCodeNamesTheFile(self):
        good, old = self.file("good.quorvane"), self.file("old.quorvane", version=1400)
        text, out = self.file("text", "x"), self.folder / "out"
        newer, gone = self.file("newer.quorvane", version=20401), self.folder / "gone"
        fifo = self.folder / "fifo"
        os.mkfifo(fifo)
        rows = (
            (("create", "--force", fifo), UNWRITABLE, "no ordinary file"),
            (("create", "--force", "/dev/stdout"), UNWRITABLE, "no ordinary file"),
            (("info", gone), UNREADABLE, "gone: No such file"), (("info", self.folder), UNREADABLE, str(self.folder)),
            (("info", text), UNREADABLE, "no document"), (("info", newer), NEWER, "newer.quorvane"),
            (("cat", text), UNREADABLE, "no document"), (("cat", newer), NEWER, "newer"),
            (("cat", "--format", "doc", good), USAGE, "'doc' is no format"),
            (("cat", "--format", "rtfd", good), USAGE, "--output"),
            (("cat", "-o", good, good), USAGE, "its own document"),
            (("cat", "-o", self.folder / "no" / "out", good), UNWRITABLE, "out: "),
            (("cat", "-o", self.folder, good), UNWRITABLE, str(self.folder)),
            (("create", good), UNWRITABLE, "--force"), (("create", "--from", gone, out), UNREADABLE, "gone"),
            (("create", "--from", self.folder, out), UNREADABLE, "no RTFD package"),
            (("create", "--from", text, ""), USAGE, "the name of the document is empty"),
            (("create", self.folder / "no" / "out"), UNWRITABLE, "out: "),
            (("note", gone), UNREADABLE, "gone"), (("note", "--set", "x", newer), NEWER, "newer"),
            (("passwd", text), UNREADABLE, "text"), (("passwd", newer), NEWER, "newer"),
            (("migrate", newer, text), NEWER, "newer"), (("verify", text, newer), UNREADABLE, "newer"),
            (("cat", good, old), USAGE, "old.quorvane"), (("cat",), USAGE, "which file"),
            (("cat", "--frmat", good), USAGE, "--frmat"), (("verify", "--", "--help"), UNREADABLE, "--help"))
        for arguments, code, told in rows:
            with self.subTest(arguments):
                password = None if arguments[0] == "info" else PASSWORD
                self.assert_ends(self.run_cli(*arguments, password=password), code, told)
        for arguments in (("cat", good), ("cat", old), ("note", "--set", "x", good), ("migrate", old)):
            self.assert_ends(self.run_cli(*arguments, password="wrong one"), WRONG, str(arguments[-1]))
        self.assert_ends(self.run_cli("passwd", good, password="wrong one", new="x"), WRONG, "good.quorvane")
        self.assert_ends(self.run_cli("passwd", good, new="short"), USAGE, "Password Too Short.")
        self.assert_ends(self.run_cli("create", out, password="short"), USAGE, "Password Too Short.")
        self.assertFalse(out.exists())
        self.assertTrue(fifo.is_fifo())
        for arguments in ((), ("frobnicate",)):
            self.assert_ends(subprocess.run([PROGRAM, *arguments], capture_output=True, check=False), USAGE, "--help")

    def test_passwordsComeFromNowhereElse(self):
        good = self.file("good.quorvane")
        self.assert_ends(self.run_cli("cat", good, password=None, input=PASSWORD.encode()), USAGE, "no terminal")
        typed = b"correct horse\nwhat follows"
        self.assert_ends(self.run_cli("cat", "--password-fd", "0", good, password=None, input=typed), DONE)
        rows = (("0", b"", "empty"), ("0", b"\xff\n", "UTF-8"), ("77", b"", "descriptor 77"), ("x", b"", "'x' is no"))
        for number, input, told in rows:
            done = self.run_cli("cat", "--password-fd", number, good, password=None, input=input)
            self.assert_ends(done, USAGE, told)
        for input in (b"correct horse\r\nmore", b"correct horse\r", b"correct horse"):
            self.assert_ends(self.run_cli("cat", "--password-fd=0", good, password=None, input=input), DONE)
        fresh = self.folder / "fresh.quorvane"
        for control in ("\0", "\t", "\x1b", "\x7f", "\x85", "\r\r"):
            input = f"correct{control}".encode()
            done = self.run_cli("create", "--password-fd=0", fresh, password=None, input=input)
            self.assert_ends(done, USAGE, "control character")
            done = self.run_cli("passwd", "--new-password-fd=0", good, input=input)
            self.assert_ends(done, USAGE, "control character")
        self.assertFalse(fresh.exists())
        # Two lines of one descriptor, and the content behind them.
        both = self.run_cli("passwd", "--password-fd=0", "--new-password-fd=0", good, password=None,
                            input=b"correct horse\nanother horse\n")
        self.assert_ends(both, DONE)
        self.assertEqual(self.body_of(good, "another horse"), BODY)

    def test_aFailedSaveLeavesTheOldFile(self):
        def little_room():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (200, 200))
        path = self.file("old.quorvane", version=10603)
        before = path.read_bytes()
        for command in (("migrate", path), ("note", "--set", "x", path), ("passwd", path)):
            new = "another horse" if command[0] == "passwd" else None
            self.assert_ends(self.run_cli(*command, new=new, preexec_fn=little_room), UNWRITABLE, "old.quorvane: ")
        self.assertEqual((path.read_bytes(), list(self.folder.iterdir())), (before, [path]))

    def test_anOutputThatTakesNothingIsToldOf(self):
        good = self.file("good.quorvane")
        for arguments in (("info", good), ("cat", "--password-file", self.file("pw", PASSWORD), good), ("--help",)):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([PROGRAM, *arguments], stdout=full, stderr=subprocess.PIPE, check=False)
            self.assert_ends(done, UNWRITABLE, "standard output: No space")

    def test_aMissingCipherIsToldOf(self):
        old = self.file("old.quorvane", version=10603)
        without = {**os.environ, "OPENSSL_MODULES": "/nowhere"}
        self.assert_ends(self.run_cli("cat", old, env=without), UNREADABLE, "legacy provider")


class AtATerminal(Case):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        try:
            for end in os.openpty():
                os.close(end)
        except OSError as error:
            raise unittest.SkipTest(f"this machine has no terminals to give: {error}") from None

    def test_aPasswordIsAskedForAndNotShown(self):
        path = self.file("a.quorvane", body=flat_rtfd({"TXT.rtf": rtf("text\x1b[31m")}))
        terminal = Terminal(PROGRAM, "cat", path)
        terminal.answer("Password for ", PASSWORD)
        self.assertEqual(terminal.end(), DONE)
        self.assertNotIn(PASSWORD.encode(), terminal.output)
        self.assertIn(b"text^[[31m", terminal.output)

    def test_aNewPasswordIsTypedTwice(self):
        path = self.folder / "a.quorvane"
        rows = (("secret password", "secret passwort", USAGE, "doesn't match"), ("short", "short", USAGE, "Too Short"),
                ("пароль", "пароль", DONE, ""))
        for first, second, code, told in rows:
            terminal = Terminal(PROGRAM, "create", path)
            terminal.answer("New password: ", first)
            terminal.answer("New password again: ", second)
            self.assertEqual((terminal.end(), path.exists()), (code, code == DONE))
            self.assertIn(told, terminal.output.decode())
            self.assertNotIn(first.encode(), terminal.output)
        terminal = Terminal(PROGRAM, "passwd", path)
        terminal.answer("Old password of ", "пароль")
        terminal.answer("New password: ", "another horse")
        terminal.answer("New password again: ", "another horse")
        self.assertEqual(terminal.end(), DONE)
        self.assertEqual(self.body_of(path, "another horse"), b"")

    def test_aBarIsShownAndALongOldPasswordTypedTwice(self):
        password = "a password beyond sixteen letters"
        path = self.file("a.quorvane", version=10603, password=password)
        slip = Terminal(PROGRAM, "migrate", path)
        slip.answer("Password of the documents: ", password[:-1])
        slip.answer("Once more", password)
        self.assertEqual((slip.end(), self.info(path)["version"]), (USAGE, 10603))
        terminal = Terminal(PROGRAM, "migrate", path)
        terminal.answer("Password of the documents: ", password)
        terminal.answer("Once more", password)
        self.assertEqual(terminal.end(), DONE)
        self.assertIn(b"] 1/1", terminal.output)
        self.assertEqual(self.body_of(path, password), BODY)
        current = Terminal(PROGRAM, "migrate", path)  # asks nothing
        self.assertEqual(current.end(), DONE)

    def test_anInterruptedMigrationLeavesEachDocumentWhole(self):
        files = [self.file(f"{number}.quorvane", version=1400) for number in range(40)]
        terminal = Terminal(PROGRAM, "migrate", *files)
        terminal.answer("Password of the documents: ", PASSWORD)
        terminal.expect("] 1/40")
        terminal.type("\x03")
        self.assertEqual(terminal.end(), -signal.SIGINT)
        self.assertEqual(sorted(self.folder.iterdir()), sorted(files))
        versions = [self.info(path)["version"] for path in files]
        self.assertTrue({20400} <= set(versions) <= {1400, 20400}, versions)
        for path in files:
            self.assertEqual(self.body_of(path), BODY)

    def test_anInterruptFindsTheTerminalAsItWas(self):
        terminal = Terminal(PROGRAM, "cat", self.file("a.quorvane"))
        terminal.expect("Password for ")
        self.assertFalse(terminal.echoes())
        terminal.type("half a pass\x03")
        self.assertEqual((terminal.end(), terminal.echoed_at_its_end), (-signal.SIGINT, True))


class Words(Case):
    def test_pagesAndCompletionTellOfEveryOption(self):
        page = (ROOT / "docs" / "quorvane-cli.1").read_text().replace("\\-", "-")
        completion = (ROOT / "contrib" / "quorvane-cli.bash").read_text()
        program = subprocess.run([PROGRAM, "--help"], capture_output=True, check=True, text=True).stdout
        for command in COMMANDS:
            words = subprocess.run([PROGRAM, command, "--help"], capture_output=True, check=True, text=True).stdout
            self.assertIn(f"\n  {command} ", program)
            self.assertIn(f".SS {command}", page)
            for option in set(re.findall("--[a-z-]+", words)):
                with self.subTest(f"{command} {option}"):
                    self.assertIn(option, page)
                    offered = subprocess.run(
                        ["bash", "-c", f"{completion}\nCOMP_WORDS=(quorvane-cli {command} {option}); COMP_CWORD=2; "
                         "_quorvane_cli; printf '%s\\n' \"${COMPREPLY[@]}\""],
                        capture_output=True, check=True, text=True)
                    self.assertIn(option, offered.stdout.split())
        version = subprocess.run([PROGRAM, "--version"], capture_output=True, check=True, text=True).stdout
        self.assertEqual(version, "quorvane-cli (Quorvane) 2.6.1\n")


if __name__ == "__main__":
    if len(sys.argv) < 2 or not os.access(sys.argv[1], os.X_OK):
        sys.exit(__doc__)
    PROGRAM = sys.argv.pop(1)
    unittest.main()
