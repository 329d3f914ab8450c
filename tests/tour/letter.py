"""Stations of a letter: two pages with everything that a letter may have, printed to a PDF, and seen
on light and dark screens at one and at two dots a pixel."""

import math
import os
import subprocess
from contextlib import contextmanager

from richtext import png
from stations import Names, must, station

PASSWORD = "lakeside boathouse 4"
TITLE = "A week at the lake"
ADDRESS = "https://ferry.example/timetable"
NOTE = "timetable.txt", b"first ferry 7:40\nlast ferry 19:10\n"
MISSPELLED = "wonderfull"
LAKE = 400, 120  # pixels
# What a dark desktop tells its programs.
DARK = """[Colors:View]
BackgroundNormal=27,30,32
BackgroundAlternate=35,38,41
ForegroundNormal=252,252,252
ForegroundInactive=161,169,177
[Colors:Window]
BackgroundNormal=42,46,50
BackgroundAlternate=49,54,59
ForegroundNormal=252,252,252
ForegroundInactive=161,169,177
[Colors:Button]
BackgroundNormal=49,54,59
BackgroundAlternate=30,87,116
ForegroundNormal=252,252,252
ForegroundInactive=161,169,177
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=252,252,252
[Colors:Tooltip]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
"""


def line(tour, text, *chords):
    """A paragraph of its own, with the keys that make it what it is."""
    if chords:
        tour.screen.keys(*chords)
    tour.screen.type(text)
    tour.screen.keys("Return")


def sees(tour, *texts):
    tour.screen.wait(f"the words {texts}", lambda: all(text in tour.words() for text in texts))


@station("letter-begun")
def a_letter_is_begun(tour):
    screen = tour.screen
    tour.letter = tour.output / "tour-letter.quorvane"
    tour.start()
    tour.protect(PASSWORD)
    screen.focus(tour.editor())
    screen.keys("ctrl+r")  # the ruler
    line(tour, TITLE, "ctrl+alt+1")
    screen.keys("ctrl+shift+r")
    screen.choose(Names.insert_menu, Names.date_menu)
    screen.keys("Down", "Return")  # the first form
    screen.keys("Return", "ctrl+shift+l")
    line(tour, "Dear Anna,")
    tour.save_as(tour.letter)


@station("letter-styled")
def words_are_styled(tour):
    screen = tour.screen
    for word, chord in (("bold", "ctrl+b"), ("slanted", "ctrl+i"), ("underlined", "ctrl+u"),
                        ("struck out", "ctrl+shift+x")):
        screen.keys(chord)
        screen.type(word)
        screen.keys(chord)
        screen.type(" ")
    screen.type("and plain again. The water is " + MISSPELLED + " in the evening.")
    screen.keys("Return")
    styles = tour.editor().styles_at(tour.editor().text.index("bold") + 1)
    must(styles.get("weight") in ("bold", "700"), f"no bold: {styles}")


@station("letter-listed")
def lists_are_written(tour):
    """By keys, and by what is typed at the beginning of a paragraph."""
    screen = tour.screen
    line(tour, "What we have seen", "ctrl+alt+2")
    line(tour, "- the old harbour")
    line(tour, "the lighthouse")
    screen.keys("Tab")
    line(tour, "from below")
    line(tour, "from its lamp")
    screen.keys("Return", "Return")
    line(tour, "the boat is tight", "ctrl+shift+9")
    line(tour, "the oars are in it")
    screen.keys("Return")
    sees(tour, "from its lamp", "the oars are in it")


@station("letter-table")
def a_table_is_filled(tour):
    screen = tour.screen
    screen.choose(Names.table_menu, Names.insert_table)
    screen.press(Names.insert)
    screen.gone("push button", Names.insert)
    for cell in ("Day", "Walk", "Miles", "Monday", "to the mill", "7", "Tuesday", "round the lake", "12"):
        screen.type(cell)
        screen.keys("Tab")
    screen.type("Wednesday")
    sees(tour, "round the lake", "Wednesday")
    screen.keys("ctrl+End")


def lake(x, y):
    """Hills and the evening sun above the water that mirrors them."""
    width, height = LAKE
    shore = height * 3 // 5
    above = y if y < shore else 2 * shore - y
    hills = 20 + 10 * math.sin(x / 47) + 6 * math.sin(x / 19 + 1)
    sun = math.hypot(x - width * 0.7, above - height * 0.24)
    if above > shore - hills:
        colour = (70, 96, 112)
    elif sun < 11:
        colour = (255, 236, 196)
    else:
        glow = max(0, 1 - sun / 200)
        colour = (int(96 + 150 * glow), int(142 + 72 * glow), int(190 - 20 * glow))
    if y < shore:
        return colour
    ripple = 0.72 + 0.08 * math.sin(y * 1.9 + math.sin(x / 23))
    return tuple(int(part * ripple) for part in colour)


@station("letter-picture-link-and-file")
def things_are_inserted(tour):
    screen = tour.screen
    picture, note = tour.output / "tour-lake.png", tour.output / ("tour-" + NOTE[0])
    picture.write_bytes(png(*LAKE, lake))
    note.write_bytes(NOTE[1])
    screen.choose(Names.insert_menu, Names.picture_item)
    tour.choose_file(picture)
    screen.keys("Return")
    screen.type("The ferry: ")
    screen.keys("ctrl+k")
    screen.find("push button", Names.insert)
    screen.type(ADDRESS)
    screen.keys("Return")
    screen.gone("push button", Names.insert)
    screen.type(" and as a file: ")
    screen.choose(Names.insert_menu, Names.file_item)
    tour.choose_file(note)
    screen.keys("Return")
    sees(tour, ADDRESS)


@station("letter-second-page")
def a_second_page_begins(tour):
    screen = tour.screen
    screen.keys("ctrl+Return")
    line(tour, "The second page", "ctrl+alt+2")
    for number in range(1, 4):
        line(tour, f"Paragraph {number} of the second page tells of the lake, the mill and the ferry,"
             " as long as it takes to fill a line or two of a letter on paper.", "ctrl+shift+j")
    screen.choose(Names.insert_menu, Names.rule_item)
    line(tour, "Yours, Ben", "ctrl+shift+l")
    sees(tour, "Paragraph 3", "Yours, Ben")


@station("letter-searched")
def words_are_found_and_replaced(tour):
    screen = tour.screen
    screen.keys("ctrl+Home", "ctrl+f")
    screen.type("lake")
    screen.wait("the count of what was found",
                lambda: any(" of 5" in label.name for label in screen.all("label")))
    tour.picture()
    screen.keys("Escape", "ctrl+h")
    screen.fill(screen.find("text", Names.find_field), "Ben")
    screen.fill(screen.find("text", Names.replacement), "Benjamin")
    screen.press(Names.replace_all)
    sees(tour, "Yours, Benjamin")
    screen.keys("Escape")
    screen.focus(tour.editor())
    screen.keys("ctrl+z")
    screen.wait("the old name", lambda: "Benjamin" not in tour.words())


@station("letter-zoomed")
def it_is_shown_larger(tour):
    screen = tour.screen
    screen.keys("ctrl+Home")
    screen.keys(*["ctrl+plus"] * 4)
    screen.find("push button", "Zoom")
    tour.picture()
    screen.keys("ctrl+0")


@station("letter-previewed")
def its_pages_are_seen(tour):
    screen = tour.screen
    screen.keys("ctrl+shift+o")
    screen.wait("two pages", lambda: screen.sees("label", "1 of 2"))
    tour.picture()
    screen.keys("Escape")


@station("letter-printed")
def it_is_printed_to_a_pdf(tour):
    screen = tour.screen
    pdf = tour.output / "tour-letter.pdf"
    screen.keys("ctrl+p")
    screen.fill(screen.find("text", Names.output_file), str(pdf))
    screen.press(Names.print)
    screen.wait("the PDF", lambda: pdf.exists() and pdf.stat().st_size > 0)
    told = subprocess.run(["pdftotext", "-layout", str(pdf), "-"], capture_output=True, timeout=60,
                          check=True).stdout.decode()
    pages = told.rstrip("\f\n").split("\f")
    must(len(pages) == 2, f"the PDF has {len(pages)} pages")
    for page, words in ((0, (TITLE, "from its lamp", "round the lake", "The ferry")),
                        (1, ("The second page", "Paragraph 3", "Yours, Ben"))):
        for word in words:
            must(word in pages[page], f"page {page + 1} has no '{word}': {pages[page]}")


@contextmanager
def another_screen(tour, scale, dark):
    before = dict(os.environ)
    os.environ["QT_SCALE_FACTOR"] = str(scale)
    told = tour.desktop.home / "config" / "kdeglobals"
    if dark:
        os.environ |= {"XDG_CURRENT_DESKTOP": "KDE", "KDE_SESSION_VERSION": "5"}
        told.write_text(DARK)
    yield
    told.unlink(missing_ok=True)
    os.environ.clear()
    os.environ.update(before)


@station("letter-on-four-screens")
def it_is_seen_on_every_screen(tour):
    """Light and dark, at one and two dots a pixel; the text is what it was."""
    screen = tour.screen
    screen.keys("ctrl+s")
    screen.wait("a window that is not marked edited", lambda: "*" not in screen.find("frame").name)
    tour.quit()
    for scale, dark in ((1, False), (1, True), (2, False), (2, True)):
        with another_screen(tour, scale, dark):
            tour.start(tour.letter)
            tour.unlock(PASSWORD)
            sees(tour, TITLE, "Yours, Ben")
            tour.picture()
            tour.quit()
