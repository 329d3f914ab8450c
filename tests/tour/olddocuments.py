"""Stations of old documents: every version that was ever written opens."""

import subprocess
import sys
from pathlib import Path

from stations import must, station

sys.path.append(str(Path(__file__).resolve().parent.parent / "independent"))
from quorvane_make import (AES_CURRENT, AES_FIRST, BLOWFISH_EARLY, BLOWFISH_WINDOW, Recipe,  # noqa: E402
                           flat_rtfd, make, rtf)

OLD_PASSWORD = "an old secret"
VERSIONS = BLOWFISH_EARLY + BLOWFISH_WINDOW + AES_FIRST + AES_CURRENT


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
            tour.quit()
        tour.start(path)
        tour.unlock(OLD_PASSWORD)
        editor = tour.editor()
        tour.screen.wait(f"the text of {path.name}",
                         lambda editor=editor, path=path: editor.text.strip() == f"from {path.stem}")
    tour.quit()
