"""Stations of rich text: everything a text can hold goes in, through and out again unchanged."""

import zlib

from stations import Names, must, station

PASSWORD = "lighthouse keeper 9"
ATTACHED = "chart.bin", bytes(range(256)) * 7
PICTURE = "photo.png"
# Every kind of thing, each with a word to know it by.
RTF = r"""{\rtf1\ansi\ansicpg1252\cocoartf2822
{\fonttbl\f0\fswiss\fcharset0 Helvetica;\f1\froman\fcharset0 Times-Roman;}
{\colortbl;\red255\green255\blue255;\red200\green0\blue0;\red255\green255\blue0;}
{\*\listtable{\list\listtemplateid1{\listlevel\levelnfc0\levelnfcn0\leveljc0\leveljcn0\levelstartat1
{\leveltext\'02\'00.;}{\levelnumbers\'01;}\fi-360\li720\lin720 }{\listlevel\levelnfc23\levelnfcn23
\leveljc0\leveljcn0\levelstartat1{\leveltext\'01\u8226 ;}{\levelnumbers;}\fi-360\li1440\lin1440 }
{\listname ;}\listid1}}{\*\listoverridetable{\listoverride\listid1\listoverridecount0\ls1}}
\paperw11900\paperh16840\margl1440\margr1440
\pard\qc\sb120\sa240\f0\b\fs36 Headland\b0\fs24\par
\pard\ql {\b bolder} {\i slanted} {\ul underlined} {\strike struck} raised{\super up} lowered{\sub down}
{\cf2 red} {\cb3 marked} {\f1\fs30 Roman}\par
\pard\li720\fi-360\ls1\ilvl0 {\listtext\tab 1.\tab}first\par
\pard\li1440\fi-360\ls1\ilvl1 {\listtext\tab \u8226 \tab}nested\par
\pard\li720\fi-360\ls1\ilvl0 {\listtext\tab 2.\tab}second\par
\trowd\trgaph108\cellx3000\cellx6000\pard\intbl north\cell south\cell\row
\trowd\trgaph108\cellx3000\cellx6000\pard\intbl east\cell west\cell\row
\pard\ql A {\field{\*\fldinst{HYPERLINK "https://harbour.example/"}}{\fldrslt beacon}}
 with {{\NeXTGraphic photo.png \width640 \height480}\'ac} and {{\NeXTGraphic chart.bin}\'ac}.\par
}"""
WORDS = ("Headland", "bolder", "struck", "nested", "west", "beacon")


def png(width, height, pixel=None):
    """A picture of the colour that pixel(x, y) gives, or of two colours."""
    pixel = pixel or (lambda x, y: (0x20, 0x60, 0xa0) if x < width // 2 else (0xf0, 0xc0, 0x40))

    def chunk(kind, data):
        return (len(data).to_bytes(4, "big") + kind + data
                + zlib.crc32(kind + data).to_bytes(4, "big"))
    header = width.to_bytes(4, "big") + height.to_bytes(4, "big") + bytes([8, 2, 0, 0, 0])
    rows = b"".join(b"\0" + b"".join(bytes(pixel(x, y)) for x in range(width)) for y in range(height))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def protected(tour):
    """A new document with its password, before all others."""
    tour.screen.keys("ctrl+n")
    tour.protect(PASSWORD)
    tour.screen.focus(tour.editor())


def imported(tour, package):
    tour.screen.choose(Names.file_menu, Names.import_menu, Names.from_rtfd)
    tour.choose_file(package)


def exported(tour, package):
    screen = tour.screen
    screen.choose(Names.file_menu, Names.export_menu, Names.to_rtfd)
    screen.sheet(Names.export_title, [Names.cancel, Names.export])
    screen.press(Names.export)
    tour.choose_file(package)
    screen.wait(f"the package {package.name}", lambda: (package / "TXT.rtf").exists())
    return {path.name: path.read_bytes() for path in package.iterdir()}


def see(tour):
    tour.screen.wait("the words of the imported text",
                     lambda: all(word in tour.words() for word in WORDS))


@station("imported")
def a_text_with_everything_is_imported(tour):
    package = tour.output / "tour-in.rtfd"
    package.mkdir()
    (package / "TXT.rtf").write_text(RTF, encoding="cp1252")
    (package / PICTURE).write_bytes(png(64, 48))
    (package / ATTACHED[0]).write_bytes(ATTACHED[1])
    tour.start()
    tour.protect(PASSWORD)
    tour.screen.focus(tour.editor())
    imported(tour, package)
    see(tour)
    tour.screen.keys("ctrl+Home")


@station("rich-text-through-a-lock")
def it_survives_save_lock_and_unlock(tour):
    screen = tour.screen
    tour.save_as(tour.output / "tour-rich.quorvane")
    screen.keys("ctrl+l")
    screen.sheet(Names.lock_question, [Names.ok, Names.cancel])
    screen.press(Names.ok)
    screen.find("password text", Names.password)
    tour.unlock(PASSWORD)
    see(tour)


@station("exported")
def it_is_exported_with_its_files(tour):
    """What went in as a picture and a file comes out byte for byte."""
    tour.exported = exported(tour, tour.output / "tour-out.rtfd")
    must(tour.exported.get(ATTACHED[0]) == ATTACHED[1], "the attached file has other bytes")
    must(tour.exported.get(PICTURE) == png(64, 48), "the picture has other bytes")
    rtf = tour.exported["TXT.rtf"]
    for word in (b"\\strike", b"\\super", b"\\sub", b"\\ls1", b"\\ilvl1", b"\\trowd", b"HYPERLINK",
                 b"\\NeXTGraphic"):
        must(word in rtf, f"the exported text has no {word.decode()}")


@station("imported-again")
def the_export_is_what_it_was(tour):
    """Taken into a new document and exported once more, it is the same to the byte."""
    protected(tour)
    imported(tour, tour.output / "tour-out.rtfd")
    see(tour)
    again = exported(tour, tour.output / "tour-again.rtfd")
    must(again == tour.exported, f"changed: {[n for n in again if again[n] != tour.exported.get(n)]}")


@station("copied-to-another-document")
def it_is_copied_between_documents(tour):
    screen = tour.screen
    screen.keys("ctrl+a", "ctrl+c")
    protected(tour)
    screen.keys("ctrl+v")
    see(tour)
    pasted = exported(tour, tour.output / "tour-pasted.rtfd")
    must(pasted == tour.exported,
         f"changed: {[n for n in pasted if pasted[n] != tour.exported.get(n)]}")
    for _ in range(2):
        screen.keys("ctrl+w")
        screen.press(Names.dont_save)
        screen.gone("push button", Names.dont_save)
    tour.quit()
