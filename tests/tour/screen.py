"""What a person sees and does: widgets found by role and name, real clicks, real keys, pictures.

Widgets are found through AT-SPI and acted on through X events, for AT-SPI's own actions pass a
sheet that blocks its window. Nothing sleeps for luck: each step waits for what it needs to see.
"""

import subprocess
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

MENU_ITEMS = ("menu item", "check menu item", "radio menu item", "menu")
BUTTONS = ("push button", "check box", "toggle button")
PATIENCE = 30  # Seconds. A sanitized program on a busy machine is slow; a healthy one never waits.


class NotSeen(Exception):
    """Something did not come to be in time."""


class Widget:
    """A node of the accessibility tree. What has vanished meanwhile reads as empty."""

    def __init__(self, node):
        self.node = node

    def _ask(self, question, otherwise):
        try:
            answer = question()
        except GLib.Error:
            return otherwise
        return otherwise if answer is None else answer

    @property
    def role(self):
        return self._ask(self.node.get_role_name, "")

    @property
    def name(self):
        return self._ask(self.node.get_name, "")

    @property
    def text(self):
        """The text in it, or nothing where it holds none."""
        return self._ask(lambda: Atspi.Text.get_text(self.node, 0, -1), "") \
            if self._ask(self.node.get_text_iface, None) else ""

    @property
    def description(self):
        """Its tool tip, where nothing better was said."""
        return self._ask(self.node.get_description, "")

    def has(self, state):
        states = self._ask(self.node.get_state_set, None)
        return states is not None and states.contains(getattr(Atspi.StateType, state.upper()))

    @property
    def place(self):
        """x, y, width and height on the screen."""
        box = self._ask(lambda: self.node.get_extents(Atspi.CoordType.SCREEN), None)
        return (box.x, box.y, box.width, box.height) if box else (0, 0, 0, 0)

    def styles_at(self, offset):
        """The text's attributes at a character, as the platform names them."""
        run = self._ask(lambda: Atspi.Text.get_attribute_run(self.node, offset, True), None)
        return dict(run[0]) if run else {}

    def children(self):
        for index in range(self._ask(self.node.get_child_count, 0)):
            child = self._ask(lambda: self.node.get_child_at_index(index), None)
            if child is not None:
                yield Widget(child)

    def tree(self):
        """This widget and all below it, hidden ones too."""
        yield self
        for child in self.children():
            yield from child.tree()


class Screen:
    """The screen with one program on it, known by its process."""

    def __init__(self):
        Atspi.init()
        self.program = None

    # Seeing

    def wait(self, what, look, seconds=PATIENCE):
        """What `look` gives as soon as it gives something; NotSeen names `what` otherwise."""
        end = time.monotonic() + seconds
        while True:
            answer = look()
            if answer:
                return answer
            if self.program is not None and self.program.poll() is not None:
                raise NotSeen(f"the program ended with {self.program.returncode}, waited for: {what}")
            if time.monotonic() > end:
                raise NotSeen(f"not seen in {seconds} s: {what}")
            time.sleep(0.03)

    def root(self):
        """The program's node, read anew; nothing while it is not there."""
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for application in Widget(desktop).children():
            try:
                if application.node.get_process_id() == self.program.pid:
                    application.node.clear_cache()
                    return application
            except GLib.Error:
                pass
        return None

    def all(self, role=None, name=None, showing=True):
        """Every widget of this role (or one of these) and name. A frame is a window: what Qt calls so
        within one is a part of it."""
        roles = (role,) if isinstance(role, str) else role
        root = self.root()
        return [] if root is None else [
            widget for widget in (root.children() if role == "frame" else root.tree())
            if (name is None or widget.name == name) and (roles is None or widget.role in roles)
            and (not showing or widget.has("showing"))]

    def find(self, role, name=None, seconds=PATIENCE):
        """The last opened widget of this role and name that shows, as soon as there is one."""
        return self.wait(f"{role} '{name}'", lambda: self.all(role, name), seconds)[-1]

    def combo(self, name):
        """The combo box of this name: Qt tells a combo box's value for its name on this platform,
        so that the name stands in its tool tip or on the field in it."""
        def look():
            return [box for box in self.all("combo box") if box.description == name
                    or any(below.name == name for below in box.tree() if below.role == "text")]
        return self.wait(f"combo box '{name}'", look)[-1]

    def sees(self, role, name=None):
        return bool(self.all(role, name))

    def gone(self, role, name=None):
        self.wait(f"{role} '{name}' gone", lambda: not self.sees(role, name))

    def sheet(self, message, buttons):
        """Waits for the alert with these words; its buttons must stand in this order."""
        self.find("label", message)

        def row():
            found = [widget for dialog in self.all(("dialog", "alert"))
                     if any(below.name == message for below in dialog.tree())
                     for widget in dialog.tree() if widget.role == "push button"]
            return [widget.name for widget in sorted(found, key=lambda widget: widget.place[0])]
        self.wait(f"the buttons {buttons} below '{message}' (there are {row()})",
                  lambda: row() == buttons)

    def window(self):
        """The place of the program's one document window."""
        return self.find("frame").place

    def picture(self, path):
        """Takes the screen once it stands still (a blinking caret may pass)."""
        before = b""
        for _ in range(12):
            subprocess.run(["import", "-window", "root", "-define", "png:exclude-chunks=date,time",
                            str(path)], check=True, timeout=60)
            now = path.read_bytes()
            if now == before:
                return
            before = now

    # Doing

    def _x(self, *words):
        subprocess.run(["xdotool", *words], check=True, timeout=120)

    def click(self, widget):
        """Presses the left button in its middle, once it has stopped moving."""
        last = None

        def rests():
            nonlocal last
            before, last = last, widget.place
            return last == before and last[2] > 0 and widget.has("enabled")
        self.wait(f"{widget.role} '{widget.name}' at rest and enabled", rests)
        x, y, width, height = widget.place
        self._x("mousemove", str(x + width // 2), str(y + height // 2), "click", "1")

    def press(self, name):
        """Clicks the button of this name."""
        self.click(self.find(BUTTONS, name))

    def choose(self, *titles):
        """Clicks through a menu to an item."""
        for title in titles:
            self.click(self.find(MENU_ITEMS, title))

    def keys(self, *chords):
        self._x("key", "--delay", "12", *chords)

    def focus(self, widget):
        if not widget.has("focused"):
            self.click(widget)
            self.wait(f"focus on {widget.role} '{widget.name}'", lambda: widget.has("focused"))

    def type(self, text):
        """Types plain ASCII where the focus is: others are lost while the keymap is changed."""
        assert text.isascii()
        self._x("type", "--delay", "12", "--", text)

    def fill(self, widget, text):
        """Replaces what a field holds."""
        self.focus(widget)
        self.keys("ctrl+a")
        self.type(text)
