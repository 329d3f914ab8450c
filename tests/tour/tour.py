"""The tour: the real program, driven as a person drives it, from the first password to the last.

Each station does a step and looks at what came of it, takes a picture and prints a line. The first
that is not as it should be ends the tour with what it missed, a picture and the program's words.
Pictures and the document stand in build/tour.

    scripts/tour.sh [--program build/release/bin/quorvane] [--output build/tour]
"""

import argparse
import os
import stat
import subprocess
import sys
from pathlib import Path

from desktop import Desktop

ROOT = Path(__file__).resolve().parent.parent.parent
DECRYPT = ROOT / "contrib" / "quorvane-decrypt.py"
sys.path.append(str(ROOT / "tests" / "independent"))
from quorvane_make import (AES_CURRENT, AES_FIRST, BLOWFISH_EARLY, BLOWFISH_WINDOW, Recipe,
                           flat_rtfd, make, rtf)


class Names:
    """What the program calls its widgets, and its words to the user. Nowhere else in the tour."""

    new_password = "Password"
    new_password_again = "Retype Password"
    set_password = "Set Password"
    password = "Master Password"
    editor = "Document text"
    bold, italic, underline = "Bold", "Italic", "Underline"
    font, font_size = "Font", "Font Size"
    file_name = "File name:"
    too_short = "Password too short"
    accepted = "Password accepted"
    wrong = "Wrong Password"
    lock_question = "Lock Document back to the crypted state?"
    ok, cancel, retry = "OK", "Cancel", "Retry"


PASSWORD = "correct horse 7"
PLAIN, BOLD, ITALIC, UNDERLINED, SERIF = "harbour", "lighthouse", "seagull", "breakwater", "lantern"
WORDS = (PLAIN, BOLD, ITALIC, UNDERLINED, SERIF)
TEXT = " ".join(WORDS)
UNSAVED = " foghorn"
FAMILY, SIZE = "DejaVu Serif", "24"
OLD_PASSWORD = "an old secret"
VERSIONS = BLOWFISH_EARLY + BLOWFISH_WINDOW + AES_FIRST + AES_CURRENT

STATIONS = []


def station(name):
    """Adds a station; they run in the order in which they stand here."""
    def add(function):
        STATIONS.append((name, function))
        return function
    return add


def must(truth, text):
    if not truth:
        raise AssertionError(text)


class Tour:
    """What the stations share: desktop, screen, program, document."""

    def __init__(self, desktop, screen, program, output):
        self.desktop = desktop
        self.screen = screen
        self.executable = program
        self.output = output
        self.document = output / "tour.quorvane"
        self.log = "program.log"
        self.text = TEXT
        self.editor_size = None
        self.locked_size = None
        self.old = []  # documents of old versions, once they were migrated

    def start(self, *files):
        self.screen.program = self.desktop.spawn(
            self.log, [str(self.executable), *map(str, files)], cwd=self.desktop.home)

    def quit(self):
        """Ends the program by its own command, where it has not ended with its last window."""
        program = self.screen.program
        if program.poll() is None and self.screen.sees("frame"):
            self.screen.keys("ctrl+q")
        try:
            program.wait(60)
        except subprocess.TimeoutExpired:
            raise AssertionError("the program does not end") from None
        must(program.returncode == 0, f"the program ended with {program.returncode}")
        self.screen.program = None

    def editor(self):
        return self.screen.find("text", Names.editor)

    def readable(self):
        """The words of the document that an accessibility client gets at, hidden widgets too."""
        seen = [piece for widget in self.screen.all(showing=False)
                for piece in (widget.name, widget.text)]
        return [word for word in WORDS if any(word in piece for piece in seen)]

    def unlock(self, password):
        field = self.screen.find("password text", Names.password)
        self.screen.fill(field, password)
        self.screen.keys("Return")

    def see_the_text(self):
        """The whole text with its styles, in a window as large as before."""
        editor = self.editor()
        self.screen.wait(f"the text '{self.text}'", lambda: editor.text.strip() == self.text)
        see_the_styles(editor)


def see_the_styles(editor):
    at = {word: editor.styles_at(editor.text.index(word) + 1) for word in WORDS}
    must(at[BOLD].get("weight") in ("bold", "700"), f"no bold: {at[BOLD]}")
    must(at[ITALIC].get("style") == "italic", f"no italic: {at[ITALIC]}")
    must(at[UNDERLINED].get("underline", "none") not in ("none", ""),
         f"no underline: {at[UNDERLINED]}")
    must(at[SERIF].get("family-name", "").strip('"') == FAMILY, f"no {FAMILY}: {at[SERIF]}")
    must(at[SERIF].get("size", "").startswith(SIZE), f"no {SIZE} pt: {at[SERIF]}")
    must(at[PLAIN].get("weight") not in ("bold", "700"), f"bold where none was: {at[PLAIN]}")


def in_the_clear(data, words):
    """Those of the words that stand in the bytes in an encoding that text is kept in."""
    return [word for word in words
            if any(word.encode(code) in data for code in ("utf-8", "utf-16-le", "utf-16-be"))]


@station("mandatory-password")
def a_new_document_asks_for_its_password(tour):
    tour.start()
    tour.screen.find("password text", Names.new_password)
    tour.screen.find("password text", Names.new_password_again)


@station("too-short-is-refused")
def five_characters_are_refused(tour):
    screen = tour.screen
    screen.fill(screen.find("password text", Names.new_password), PASSWORD[:5])
    screen.fill(screen.find("password text", Names.new_password_again), PASSWORD[:5])
    screen.press(Names.set_password)
    screen.sheet(Names.too_short, [Names.retry])


@station("password-accepted")
def a_longer_one_is_accepted(tour):
    screen = tour.screen
    screen.press(Names.retry)
    screen.fill(screen.find("password text", Names.new_password), PASSWORD)
    screen.fill(screen.find("password text", Names.new_password_again), PASSWORD)
    screen.press(Names.set_password)
    screen.sheet(Names.accepted, [Names.ok])


@station("styled-text")
def text_is_typed_in_styles(tour):
    screen = tour.screen
    screen.press(Names.ok)
    screen.gone("label", Names.accepted)
    screen.focus(tour.editor())
    screen.type(PLAIN + " ")
    for word, style in ((BOLD, Names.bold), (ITALIC, Names.italic), (UNDERLINED, Names.underline)):
        screen.press(style)
        screen.focus(tour.editor())
        screen.type(word)
        screen.press(style)
        screen.focus(tour.editor())
        screen.type(" ")
    for combo, value in ((Names.font, FAMILY), (Names.font_size, SIZE)):
        screen.fill(screen.combo(combo), value)
        screen.keys("Return")
    screen.focus(tour.editor())
    screen.type(SERIF)
    tour.see_the_text()
    tour.editor_size = screen.window()[2:]


@station("saved")
def it_is_saved_encrypted(tour):
    screen = tour.screen
    screen.keys("ctrl+s")
    screen.fill(screen.find("text", Names.file_name), str(tour.document))
    screen.keys("Return")
    screen.wait("the file", lambda: tour.document.exists() and tour.document.stat().st_size > 0)
    screen.gone("text", Names.file_name)
    data = tour.document.read_bytes()
    must(data.startswith(b"bplist00"), f"the file begins with {data[:8]}")
    must(not in_the_clear(data, (*WORDS, UNSAVED.strip(), PASSWORD)),
         f"in the clear in the file: {in_the_clear(data, (*WORDS, UNSAVED.strip(), PASSWORD))}")
    mode = stat.S_IMODE(tour.document.stat().st_mode)
    must(mode == 0o600, f"the file's mode is {mode:o}")


@station("closed")
def it_is_closed(tour):
    tour.screen.keys("ctrl+w")
    tour.screen.wait("the window closed", lambda: tour.screen.program.poll() is not None
                     or not tour.screen.sees("text", Names.editor))


@station("opened-locked")
def it_opens_as_a_small_locked_window(tour):
    tour.quit()
    tour.start(tour.document)
    tour.screen.find("password text", Names.password)
    must(not tour.screen.sees("text", Names.editor), "the editor shows in a locked window")
    must(not tour.readable(), f"readable in a locked window: {tour.readable()}")
    tour.screen.wait("a window smaller than the editor's", lambda: all(
        now < before for now, before in zip(tour.screen.window()[2:], tour.editor_size)))
    tour.locked_size = tour.screen.window()[2:]


@station("wrong-password")
def a_wrong_password_opens_nothing(tour):
    tour.unlock(PASSWORD + "x")
    tour.screen.sheet(Names.wrong, [Names.ok])
    must(not tour.readable(), f"readable after a wrong password: {tour.readable()}")


@station("right-password")
def the_right_password_brings_the_text_back(tour):
    screen = tour.screen
    screen.press(Names.ok)
    screen.gone("label", Names.wrong)
    tour.unlock(PASSWORD)
    tour.see_the_text()
    screen.wait(f"the window as large as it was, {tour.editor_size}",
                lambda: screen.window()[2:] == tour.editor_size)


@station("locked")
def it_is_locked_by_command(tour):
    """With a word that was not saved: it must be in the file at the end."""
    screen = tour.screen
    screen.keys("ctrl+End")
    screen.type(UNSAVED)
    tour.text = TEXT + UNSAVED
    tour.see_the_text()
    screen.keys("ctrl+l")
    screen.sheet(Names.lock_question, [Names.ok, Names.cancel])
    screen.press(Names.ok)
    screen.find("password text", Names.password)
    screen.gone("text", Names.editor)
    must(not tour.readable(), f"readable in the locked window: {tour.readable()}")
    screen.wait(f"the window as small as it was, {tour.locked_size}",
                lambda: screen.window()[2:] == tour.locked_size)


@station("unlocked-again")
def it_is_unlocked_again(tour):
    tour.unlock(PASSWORD)
    tour.see_the_text()


@station("read-without-the-program")
def a_script_reads_the_file(tour):
    tour.screen.keys("ctrl+w")
    tour.quit()
    reading, writing = os.pipe()
    os.write(writing, PASSWORD.encode())
    os.close(writing)
    answer = subprocess.run(
        [sys.executable, "-B", str(DECRYPT), "--password-fd", str(reading), str(tour.document)],
        pass_fds=[reading], timeout=300, capture_output=True, check=False)
    os.close(reading)
    must(answer.returncode == 0,
         f"{DECRYPT.name} ended with {answer.returncode}: {answer.stderr.decode()}")
    must(answer.stdout.decode().strip() == tour.text, f"{DECRYPT.name} found: {answer.stdout.decode()}")


@station("old-documents-migrated")
def a_folder_of_old_documents_is_migrated(tour):
    """One of each version that was ever written, made by another hand, by one command."""
    folder = tour.output / "tour.old"
    folder.mkdir(exist_ok=True)
    old = []
    for version in VERSIONS:
        old.append(folder / f"{version}.quorvane")
        old[-1].write_bytes(make(Recipe(password=OLD_PASSWORD, version=version, seed=str(version),
                                        body=flat_rtfd({"TXT.rtf": rtf(f"from {version}")}))))
    secret = tour.desktop.home / "secret"
    secret.write_text(OLD_PASSWORD)
    answer = subprocess.run(
        [tour.executable.with_name("quorvane-cli"), "migrate", "--password-file", secret, *old],
        timeout=300, capture_output=True, check=False, text=True)
    secret.unlink()
    must(answer.returncode == 0, f"migrate ended with {answer.returncode}: {answer.stderr}")
    must(answer.stdout.count("migrated") == len(old) - 1 and answer.stdout.count("current") == 1,
         f"migrate told: {answer.stdout}")
    tour.old = old


@station("each-of-them-opens")
def each_migrated_document_opens_in_its_window(tour):
    for path in tour.old:
        if tour.screen.program:
            tour.screen.keys("ctrl+w")
            tour.quit()
        tour.start(path)
        tour.unlock(OLD_PASSWORD)
        editor = tour.editor()
        tour.screen.wait(f"the text of {path.name}",
                         lambda editor=editor, path=path: editor.text.strip() == f"from {path.stem}")


@station("nothing-in-the-clear")
def nothing_else_holds_the_text(tour):
    """Settings, caches, temporary files, recent entries: none may tell a word or the password."""
    for path in sorted(tour.desktop.home.rglob("*")):
        if path.is_file():
            told = in_the_clear(path.read_bytes(), (*WORDS, UNSAVED.strip(), PASSWORD))
            must(not told, f"{path.relative_to(tour.desktop.home)} tells {told}")


def fail(tour, number, name, error):
    print(f"{number:02} {name} FAILED: {error}")
    try:
        picture = tour.output / f"{number:02}-{name}-failed.png"
        tour.screen.picture(picture)
        print(f"   picture: {picture}")
        for widget in tour.screen.all(showing=True):
            print(f"   on screen: {widget.role} '{widget.name}' {widget.place}")
    except Exception as second:  # What failed first is what counts.
        print(f"   and no picture: {second}")
    log = tour.desktop.home / tour.log
    if log.exists():
        print("   the program's words:\n" + log.read_text(errors="replace")[-8000:])


def go(tour):
    for number, (name, function) in enumerate(STATIONS, 1):
        try:
            function(tour)
            tour.screen.picture(tour.output / f"{number:02}-{name}.png")
        except Exception as error:
            fail(tour, number, name, error)
            return 1
        print(f"{number:02} {name} ok", flush=True)
    print(f"tour: {len(STATIONS)} stations, all as they should be; see {tour.output}")
    return 0


def main():
    arguments = argparse.ArgumentParser(description="Drives the real program from outside.")
    arguments.add_argument("--program", default=ROOT / "build/release/bin/quorvane", type=Path)
    arguments.add_argument("--output", default=ROOT / "build/tour", type=Path)
    arguments = arguments.parse_args()
    program, output = arguments.program.resolve(), arguments.output.resolve()
    if not os.access(program, os.X_OK):
        print(f"tour: there is no program at {program}", file=sys.stderr)
        return 2
    output.mkdir(parents=True, exist_ok=True)
    for old in (*output.glob("[0-9][0-9]-*.png"), *output.glob("tour.*"),
                *output.glob("tour.*/*.quorvane")):
        if old.is_file():
            old.unlink()
    with Desktop() as desktop:
        from screen import Screen  # Reads the environment when it is loaded.
        return go(Tour(desktop, Screen(), program, output))


if __name__ == "__main__":
    sys.exit(main())
