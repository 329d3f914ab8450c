"""The last stations: what is left when the program is gone."""

import os
import subprocess
import sys
from pathlib import Path

from stations import PASSWORD, UNSAVED, WORDS, in_the_clear, must, station
from workflow import NEW_PASSWORD, UNTITLED

DECRYPT = Path(__file__).resolve().parent.parent.parent / "contrib" / "quorvane-decrypt.py"
SECRETS = (*WORDS, UNSAVED.strip(), UNTITLED, PASSWORD, NEW_PASSWORD)


@station("read-without-the-program")
def a_script_reads_the_file(tour):
    reading, writing = os.pipe()
    os.write(writing, tour.password.encode())
    os.close(writing)
    answer = subprocess.run(
        [sys.executable, "-B", str(DECRYPT), "--password-fd", str(reading), str(tour.document)],
        pass_fds=[reading], timeout=300, capture_output=True, check=False)
    os.close(reading)
    must(answer.returncode == 0,
         f"{DECRYPT.name} ended with {answer.returncode}: {answer.stderr.decode()}")
    must(answer.stdout.decode().strip() == tour.text, f"{DECRYPT.name} found: {answer.stdout.decode()}")


@station("nothing-in-the-clear")
def nothing_else_holds_the_text(tour):
    """Settings, caches, temporary files, recent entries: none may tell a word or the password."""
    for path in sorted(tour.desktop.home.rglob("*")):
        if path.is_file():
            told = in_the_clear(path.read_bytes(), SECRETS)
            must(not told, f"{path.relative_to(tour.desktop.home)} tells {told}")
