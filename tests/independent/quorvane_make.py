#!/usr/bin/env python3
"""Makes Quorvane documents, sound and faulty ones, for tests.

Shares no line with the program nor with contrib/quorvane-decrypt.py. The
ciphers are those of the `openssl` program, which gets its key as an argument:
good enough for the passwords of tests, and for nothing else.
"""
from __future__ import annotations

import argparse
import hashlib
import plistlib
import random
import struct
import subprocess
from dataclasses import dataclass, field
from typing import Any, Callable, Optional

AES_FIRST = (10700, 20000, 20001)
AES_CURRENT = (20100, 20101, 20200, 20201, 20300, 20301, 20400)
BLOWFISH_EARLY = (1400, 1410, 10402, 10403, 10404)
BLOWFISH_WINDOW = (10500, 10600, 10601, 10602, 10603)
WINDOW_KEYS = ("windowRecX", "windowRecY", "windowRecWidth", "windowRecHeight")


# --- Ciphers -----------------------------------------------------------------

def pbkdf2_input(password):
    return password.encode("utf-8")[:len(password.encode("utf-16-le")) // 2]


def openssl(data, *arguments):
    return subprocess.run(["openssl", "enc", "-e", *arguments], input=data, stdout=subprocess.PIPE, check=True).stdout


def aes(data, key, iv, pad=True):
    return openssl(data, "-aes-256-cbc", "-K", key.hex(), "-iv", iv.hex(), *([] if pad else ["-nopad"]))


def blowfish(data, password):
    key = password.encode("mac_roman")[:16].ljust(16, b"\0")
    return openssl(data, "-provider", "legacy", "-provider", "default", "-bf-cbc", "-K", key.hex(),
                   "-iv", "3ea15c07d2964bf8")


# --- Keyed archives ----------------------------------------------------------

class Boxed:
    """A value that is archived as an object of the named class, holding the given coder keys."""

    def __init__(self, chain, **coded):
        self.chain, self.coded = chain, {key.replace("_", ".", 1): value for key, value in coded.items()}


def mutable_string(text):
    return Boxed(("NSMutableString", "NSString", "NSObject"), NS_string=text)


def mutable_data(data):
    return Boxed(("NSMutableData", "NSData", "NSObject"), NS_data=data)


def date(seconds):
    return Boxed(("NSDate", "NSObject"), NS_time=float(seconds))


@dataclass
class Form:
    """The liberties that a writer of keyed archives has."""

    xml: bool = False
    top: str = "root"
    chain: tuple = ("NSMutableDictionary", "NSDictionary", "NSObject")
    plist_order: tuple = ("$version", "$archiver", "$top", "$objects")
    numbered_keys: bool = False  # NS.key.0, NS.object.0 in place of two arrays
    data_by_reference: bool = False  # NS.data holds a reference to the bytes
    fillers: int = 0  # objects that nothing refers to, so that references need two bytes
    overrides: dict = field(default_factory=dict)  # values of the outermost property list


class Archiver:
    def __init__(self, form):
        self.form, self.objects, self.classes = form, ["$null"], {}

    def uid(self, number):
        return {"CF$UID": number} if self.form.xml else plistlib.UID(number)

    def add(self, value):
        self.objects.append(value)
        return self.uid(len(self.objects) - 1)

    def class_of(self, chain):
        if chain not in self.classes:
            self.classes[chain] = self.add({"$classname": chain[0], "$classes": list(chain)})
        return self.classes[chain]

    def value(self, value):
        if not isinstance(value, Boxed):
            return self.add(value)
        held = {}
        reference = self.add(held)
        for key, coded in value.coded.items():
            held[key] = self.add(coded) if self.form.data_by_reference and key == "NS.data" else coded
        held["$class"] = self.class_of(value.chain)
        return reference

    def root(self, value):
        if not isinstance(value, dict):
            return self.value(value)
        held = {}
        reference = self.add(held)
        for _ in range(self.form.fillers):
            self.add("unused")
        keys = [self.add(key) for key in value]
        values = [self.value(entry) for entry in value.values()]
        if self.form.numbered_keys:
            held.update({f"NS.key.{i}": key for i, key in enumerate(keys)})
            held.update({f"NS.object.{i}": entry for i, entry in enumerate(values)})
        else:
            held.update({"NS.keys": keys, "NS.objects": values})
        held["$class"] = self.class_of(self.form.chain)
        return reference


def archive(root, form=None):
    """The bytes of a keyed archive of a dictionary or of a single value."""
    form = form or Form()
    archiver = Archiver(form)
    top = {form.top: archiver.root(root)}
    parts = {"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": top, "$objects": archiver.objects}
    plist = {key: parts[key] for key in form.plist_order}
    plist.update(form.overrides)
    return plistlib.dumps(plist, fmt=plistlib.FMT_XML if form.xml else plistlib.FMT_BINARY, sort_keys=form.xml)


# --- Bodies ------------------------------------------------------------------

def flat_rtfd(files, modified=1700000000):
    """A folder of files as one byte string; contents from 4096 bytes on start at a multiple of 4096."""
    names = [name.encode() for name in files]
    listed = [struct.pack("<I", len(name)) + name for name in names]
    record = struct.pack("<IIII", modified, 0o666, 0, 0)
    dot = (struct.pack("<I", len(names)) + b"".join(listed) + struct.pack("<I", 16) * len(names)
           + record * len(names))
    entries = list(zip(listed + [struct.pack("<I", 1) + b"."], list(files.values()) + [dot]))
    at = 8 + 8 + sum(len(name) + 4 for name, _ in entries)
    nodes = []
    for _, held in entries:
        if len(held) >= 4096:
            gap = -(at + 16) % 4096
            node = struct.pack("<IIII", 1, 0x80000000, len(held), gap) + bytes(gap) + held
        else:
            node = struct.pack("<II", 1, len(held)) + held
        nodes.append(node)
        at += len(node)
    return (b"rtfd" + struct.pack("<III", 0, 3, len(entries)) + b"".join(name for name, _ in entries)
            + b"".join(struct.pack("<I", len(node)) for node in nodes) + b"".join(nodes))


def rtf(text):
    """Plain text in the usual dialect."""
    def escaped(character):
        if character == "\n":
            return "\\\n"
        if character in "\\{}":
            return "\\" + character
        if ord(character) < 128:
            return character
        units = struct.unpack(f"<{len(character.encode('utf-16-le')) // 2}H", character.encode("utf-16-le"))
        return "\\uc0" + "".join(f"\\u{unit} " for unit in units)
    return ("{\\rtf1\\ansi\\ansicpg1252\\cocoartf2709\n\\cocoatextscaling0\\cocoaplatform0{\\fonttbl\\f0\\fswiss"
            "\\fcharset0 Helvetica;}\n{\\colortbl;\\red255\\green255\\blue255;}\n{\\*\\expandedcolortbl;;}\n"
            "\\pard\\pardirnatural\\partightenfactor0\n\n\\f0\\fs24 \\cf0 "
            + "".join(map(escaped, text)) + "}").encode("ascii")


# --- Documents ---------------------------------------------------------------

@dataclass
class Recipe:
    """What goes into a document. A value of None leaves its key out."""

    password: str = "correct horse"
    body: Optional[bytes] = b""
    version: Any = 20400
    note: Optional[str] = ""
    editable: Optional[bool] = True
    window: Optional[tuple] = (100.0, 200.0, 640.0, 480.0)  # x, y, width, height
    toolbar: Optional[bool] = True
    mac: bytes = bytes.fromhex("02005e1000af")
    date: float = 721692800.5  # seconds since 2001-01-01 UTC
    date_archive: Optional[bytes] = None
    seed: str = "quorvane"
    salt_length: int = 8
    iv_length: int = 16
    check: Optional[bytes] = None  # the plaintext of the check record; drawn if None
    form: Form = field(default_factory=Form)
    alter: Optional[Callable] = None  # changes the dictionary of the file's values in place
    cipher: Optional[str] = None  # aes or blowfish; by the version if None


def fields(recipe):
    """The values of the document's dictionary, by key."""
    number = recipe.version if isinstance(recipe.version, (int, float)) else 0
    cipher = recipe.cipher or ("aes" if number >= 10700 else "blowfish")
    values = {"appversion": recipe.version, "publicTextData": recipe.note, "isEditable": recipe.editable}
    if cipher == "blowfish":
        values["textData"] = None if recipe.body is None else blowfish(recipe.body, recipe.password)
    else:
        values.update(aes_fields(recipe))
    if recipe.window is not None and number not in BLOWFISH_EARLY:
        values.update({key: float(value) for key, value in zip(WINDOW_KEYS, recipe.window)})
    if number >= AES_CURRENT[0]:
        values["makeToolbarVisibleAtDecrypt"] = recipe.toolbar
    values = {key: value for key, value in values.items() if value is not None}
    if recipe.alter:
        recipe.alter(values)
    return values


def aes_fields(recipe):
    source = random.Random(recipe.seed)
    salt, iv = source.randbytes(recipe.salt_length), source.randbytes(recipe.iv_length)
    key = hashlib.pbkdf2_hmac("sha1", pbkdf2_input(recipe.password), salt, 10000, 32)
    check = recipe.check
    if check is None:
        check = "".join(chr(source.randint(1, 255)) for _ in range(256)).encode()
    moment = recipe.date_archive if recipe.date_archive is not None else archive(date(recipe.date))
    plain = {"textData": recipe.body, "crDate": moment, "crMAC": recipe.mac, "rc": check}
    values = {name: None if held is None else aes(held, key, iv[:16]) for name, held in plain.items()}
    values.update({"salt": salt, "IV": iv, "sha1-rc": hashlib.sha1(check).digest()})
    return values


def make(recipe):
    """The bytes of a document file."""
    return archive(fields(recipe), recipe.form)


# --- Faults ------------------------------------------------------------------

def flip(key, at):
    """Turns over one bit of one byte."""
    def change(values):
        data = bytearray(values[key])
        data[at] ^= 1
        values[key] = bytes(data)
    return change


def drop(*keys):
    def change(values):
        for key in keys:
            values.pop(key, None)
    return change


def put(**changed):
    return lambda values: values.update(changed)


FAULTS = {
    "wrong-digest": flip("sha1-rc", 0),
    "altered-check": flip("rc", 0),
    "altered-text": flip("textData", 0),
    "broken-text-padding": flip("textData", -1),
    "broken-date-padding": flip("crDate", -1),
    "no-text": drop("textData"),
    "no-check": drop("rc"),
    "no-salt": drop("salt"),
    "no-window": drop(*WINDOW_KEYS),
    "no-version": drop("appversion"),
}


def read(path, default):
    if path is None:
        return default
    with open(path, "rb") as source:
        return source.read()


def main():
    parser = argparse.ArgumentParser(description="Make a Quorvane document for a test.")
    parser.add_argument("out")
    parser.add_argument("--password-file", help="UTF-8, taken whole")
    parser.add_argument("--body", help="a file with the body's bytes; without it a short text")
    parser.add_argument("--note-file", help="UTF-8")
    parser.add_argument("--version", type=int, default=20400)
    parser.add_argument("--window", type=float, nargs=4, metavar=("X", "Y", "W", "H"), default=Recipe.window)
    parser.add_argument("--read-only", action="store_true")
    parser.add_argument("--hide-toolbar", action="store_true")
    parser.add_argument("--mac", type=bytes.fromhex, default=Recipe.mac, help="hexadecimal, or empty")
    parser.add_argument("--date", type=float, default=Recipe.date, help="seconds since 2001-01-01 UTC")
    parser.add_argument("--seed", default="quorvane", help="what salt, IV and check record are drawn from")
    parser.add_argument("--xml", action="store_true", help="the XML form of the archive")
    parser.add_argument("--fault", choices=sorted(FAULTS))
    options = parser.parse_args()
    recipe = Recipe(password=read(options.password_file, b"correct horse").decode(),
                    body=read(options.body, flat_rtfd({"TXT.rtf": rtf("Made for a test.")})),
                    note=read(options.note_file, b"").decode(), version=options.version,
                    window=tuple(options.window), editable=not options.read_only, toolbar=not options.hide_toolbar,
                    mac=options.mac, date=options.date, seed=options.seed, form=Form(xml=options.xml),
                    alter=FAULTS.get(options.fault))
    with open(options.out, "wb") as out:
        out.write(make(recipe))


if __name__ == "__main__":
    main()
