"""The tour: the real program, driven as a person drives it, from the first password to the last.

Each station does a step and looks at what came of it, takes a picture and prints a line. The first
that is not as it should be ends the tour with what it missed, a picture and the program's words.
Pictures and the document stand in build/tour.

    scripts/tour.sh [--program build/release/bin/quorvane] [--output build/tour]
"""

import argparse
import os
import shutil
import sys
from pathlib import Path

import first
import workflow  # noqa: F401  (each lists its stations)
import richtext  # noqa: F401
import letter  # noqa: F401
import olddocuments  # noqa: F401
import preferences  # noqa: F401
import last  # noqa: F401
from desktop import Desktop
from stations import STATIONS, Tour
from updates import UpdateService

ROOT = Path(__file__).resolve().parent.parent.parent


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
            tour.station, tour.pictures = f"{number:02}-{name}", 0
            function(tour)
            if tour.screen.program or not tour.pictures:  # Else the screen is empty by now.
                tour.picture()
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
    arguments.add_argument("--update-host", help="the host that the program was built to ask for updates, "
                           "where it is one of this machine")
    arguments = arguments.parse_args()
    program, output = arguments.program.resolve(), arguments.output.resolve()
    if not os.access(program, os.X_OK):
        print(f"tour: there is no program at {program}", file=sys.stderr)
        return 2
    output.mkdir(parents=True, exist_ok=True)
    for old in (*output.glob("[0-9][0-9]-*.png"), *output.glob("tour*")):
        if old.is_dir():
            shutil.rmtree(old)
        else:
            old.unlink()
    with Desktop() as desktop:
        from screen import Screen  # Reads the environment when it is loaded.
        tour = Tour(desktop, Screen(), program, output)
        if arguments.update_host:
            tour.updates = UpdateService(arguments.update_host)
        return go(tour)


if __name__ == "__main__":
    sys.exit(main())
