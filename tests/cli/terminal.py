"""Runs a program at a terminal of its own, as a person would see it."""
from __future__ import annotations

import os
import pty
import select
import termios

PATIENCE = 60  # seconds for whatever is waited for


class Terminal:
    """A program whose only way to a person is the terminal. Its output stays to be looked at."""

    def __init__(self, *arguments):
        self.output = b""
        self.echoed_at_its_end = None
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.execv(arguments[0], [os.fspath(argument) for argument in arguments])

    def expect(self, text):
        """Reads on until the text has come."""
        while text.encode() not in self.output:
            if not self._read():
                raise AssertionError(f"no {text!r} in {self.output.decode(errors='replace')!r}")

    def type(self, text):
        os.write(self.fd, text.encode())

    def answer(self, prompt, text):
        self.expect(prompt)
        self.output = self.output.replace(prompt.encode(), b"", 1)
        self.type(text + "\n")

    def echoes(self):
        return bool(termios.tcgetattr(self.fd)[3] & termios.ECHO)

    def end(self):
        """The exit code; minus the signal that ended the program."""
        while self._read():
            pass
        code = os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])
        self.echoed_at_its_end = self.echoes()
        os.close(self.fd)
        return code

    def _read(self):
        ready, _, _ = select.select([self.fd], [], [], PATIENCE)
        if not ready:
            raise AssertionError(f"nothing more came after {self.output.decode(errors='replace')!r}")
        try:
            piece = os.read(self.fd, 65536)
        except OSError:  # the other side is closed
            return False
        self.output += piece
        return bool(piece)
