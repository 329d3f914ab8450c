"""What all stations share: how they are listed, what the program calls things, what was typed."""

import os
import subprocess


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
    new_document = "New Document"
    recent_documents = "Recent Documents"
    ok, cancel, retry = "OK", "Cancel", "Retry"
    file_menu, format_menu = "File", "Format"
    public_note_item, password_item, lock_item = "Public Note…", "Document Password…", "Lock Document…"
    prevent_editing, allow_editing = "Prevent Editing", "Allow Editing"
    import_menu, export_menu = "Import", "Export"
    from_rtfd, to_rtfd = "From RTFD…", "To RTFD…"
    note, close = "Public Note", "Close"
    old_password = "Old Master Password"
    next_password, next_password_again = "New Password", "Retype New Password"
    change_password = "Change Password"
    password_changed = "Password changed successfuly"
    export_title, export = "Export as Unencripted RTF File", "Export"
    save, dont_save = "Save", "Don't Save"
    quorvane_menu, preferences_item, about_item = "Quorvane", "Preferences…", "About Quorvane"
    general, edit, advanced, update = "General", "Edit", "Advanced", "Update"
    at_startup, select = "What a start shows", "Select…"
    show_ruler, new_font_size = "Show the ruler", "Font size of new documents"
    settings_damaged = "Your preferences could not be read in full"
    check_now, about_title = "Check Now", "About Quorvane"
    update_available = "There is an update available for Quorvane"
    update_failed = "Quorvane was not able to connect to the Mirando server"
    download, download_page, later = "Download Update", "Download Page", "Later"


PASSWORD = "correct horse 7"
PLAIN, BOLD, ITALIC, UNDERLINED, SERIF = "harbour", "lighthouse", "seagull", "breakwater", "lantern"
WORDS = (PLAIN, BOLD, ITALIC, UNDERLINED, SERIF)
TEXT = " ".join(WORDS)
UNSAVED = " foghorn"
FAMILY, SIZE = "DejaVu Serif", "24"

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


def in_the_clear(data, words):
    """Those of the words that stand in the bytes in an encoding that text is kept in."""
    return [word for word in words
            if any(word.encode(code) in data for code in ("utf-8", "utf-16-le", "utf-16-be"))]


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
        self.password = PASSWORD
        self.old = []  # documents of old versions, once they were migrated
        self.updates = None  # the update service, where the program was built to ask it
        self.station = None
        self.pictures = 0
        self.editor_size = None
        self.locked_size = None

        settings = desktop.home / "config" / "quorvane" / "quorvane.ini"
        settings.parent.mkdir(mode=0o700)
        settings.write_text("[General]\nautolocBackgroundEnabled=true\nautolocBackgroundInterval=30\n")

    def stranger(self):
        """Another program that takes the keyboard: ours, of another user and without a bus."""
        home = self.desktop.home / "stranger"
        home.mkdir(mode=0o700)
        environment = {name: value for name, value in os.environ.items()
                       if name != "DBUS_SESSION_BUS_ADDRESS" and not name.startswith("XDG_")}
        return self.desktop.spawn("stranger.log", [str(self.executable)], cwd=home,
                                  env=environment | {"HOME": str(home)})

    def start(self, *files):
        self.screen.program = self.desktop.spawn(
            self.log, [str(self.executable), *map(str, files)], cwd=self.desktop.home)

    def picture(self):
        """Takes the picture of a station, and further ones of it where something passes by."""
        self.pictures += 1
        more = f"-{self.pictures}" if self.pictures > 1 else ""
        self.screen.picture(self.output / f"{self.station}{more}.png")

    def protect(self, password):
        """Gives a new document its first password."""
        screen = self.screen
        screen.fill(screen.find("password text", Names.new_password), password)
        screen.fill(screen.find("password text", Names.new_password_again), password)
        screen.press(Names.set_password)
        screen.sheet(Names.accepted, [Names.ok])
        screen.press(Names.ok)
        screen.gone("label", Names.accepted)

    def save_as(self, path):
        screen = self.screen
        screen.keys("ctrl+s")
        self.choose_file(path)
        screen.wait(f"the file {path.name}", lambda: path.exists() and path.stat().st_size > 0)

    def choose_file(self, path):
        """Types a path into the file panel that is about to show."""
        screen = self.screen
        screen.fill(screen.find("text", Names.file_name), str(path))
        screen.keys("Return")
        screen.gone("text", Names.file_name)

    def close(self):
        """Closes the one document; the start window is what is left."""
        self.screen.keys("ctrl+w")
        self.screen.find("push button", Names.new_document)

    def quit(self):
        """Ends the program by its own command."""
        program = self.screen.program
        self.screen.keys("ctrl+q")
        try:
            program.wait(60)
        except subprocess.TimeoutExpired:
            raise AssertionError("the program does not end") from None
        must(program.returncode == 0, f"the program ended with {program.returncode}")
        self.screen.program = None

    def editor(self):
        return self.screen.find("text", Names.editor)

    def words(self):
        """All text in the window, table cells and all."""
        return " ".join(widget.text for widget in self.screen.all("text"))

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
