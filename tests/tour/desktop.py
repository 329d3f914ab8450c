"""A desktop of the tour's own: session bus, screen, window manager and an empty home."""

import os
import shutil
import subprocess
import tempfile
from pathlib import Path

KEPT = ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS")


class Desktop:
    """Stands from `with` to its end. While it stands, os.environ is that of a new user on it."""

    def __init__(self, size="1280x800x24"):
        self.size = size
        self.children = []
        self.home = None

    def __enter__(self):
        self.home = Path(tempfile.mkdtemp(prefix="quorvane-tour-"))
        environment = {name: os.environ[name] for name in KEPT if name in os.environ}
        for name, folder in (("HOME", ""), ("XDG_CONFIG_HOME", "config"), ("XDG_DATA_HOME", "data"),
                             ("XDG_STATE_HOME", "state"), ("XDG_CACHE_HOME", "cache"),
                             ("XDG_RUNTIME_DIR", "runtime"), ("TMPDIR", "tmp")):
            path = self.home / folder
            path.mkdir(mode=0o700, exist_ok=True)
            environment[name] = str(path)
        environment |= {"LC_ALL": "C.UTF-8", "TZ": "UTC", "XDG_SESSION_TYPE": "x11",
                        "QT_QPA_PLATFORM": "xcb", "QT_SCALE_FACTOR": "1",
                        "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        os.environ.clear()
        os.environ.update(environment)
        try:
            os.environ["DBUS_SESSION_BUS_ADDRESS"] = self.start(
                "bus.log", lambda fd: ["dbus-daemon", "--session", "--nofork", f"--print-address={fd}"])
            # Without -noreset the keymap is lost when the first client leaves.
            os.environ["DISPLAY"] = ":" + self.start(
                "screen.log", lambda fd: ["Xvfb", "-displayfd", str(fd), "-screen", "0", self.size,
                                          "-noreset", "-nolisten", "tcp"])
            self.spawn("windows.log", ["openbox", "--sm-disable"])
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for child in reversed(self.children):
            child.terminate()
            try:
                child.wait(10)
            except subprocess.TimeoutExpired:
                child.kill()
                child.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    def spawn(self, log, command, **options):
        """Starts a child that ends with the tour, however that ends. Its words go into the log."""
        with open(self.home / log, "wb") as words:
            child = subprocess.Popen(["setpriv", "--pdeathsig", "TERM", *command],
                                     stdin=subprocess.DEVNULL, stdout=words, stderr=words, **options)
        self.children.append(child)
        return child

    def start(self, log, command):
        """Starts a child that tells one line on a descriptor when it is ready, and gives the line."""
        reading, writing = os.pipe()
        child = self.spawn(log, command(writing), pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as answer:
            line = answer.readline().strip()
        if not line:
            words = (self.home / log).read_text(errors="replace")
            raise RuntimeError(f"{child.args[3]} did not start\n{words}")
        return line
