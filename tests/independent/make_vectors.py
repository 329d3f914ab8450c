#!/usr/bin/env python3
"""Makes the document vectors in tests/data/vectors, the same bytes each time.

  make_vectors.py            write the whole set
  make_vectors.py --check    compare the set on disk with what would be written
"""
from __future__ import annotations

import argparse
import datetime
import hashlib
import plistlib
import random
import subprocess
import sys
from pathlib import Path

from quorvane_make import (AES_CURRENT, AES_FIRST, BLOWFISH_EARLY, BLOWFISH_WINDOW, WINDOW_KEYS, Boxed, Form, Recipe,
                           archive, drop, fields, flat_rtfd, flip, make, mutable_data, mutable_string, pbkdf2_input,
                           put, rtf)

FOLDER = Path(__file__).resolve().parent.parent / "data" / "vectors"
TEXT = "Dear diary,\nnothing happened today. Grüße, Привет, 你好, 🎻.\n"
BODY = flat_rtfd({"TXT.rtf": rtf(TEXT)})
NEWER, REFUSED, UNREADABLE, OPENED = "refused-newer", "wrong-password", "unreadable", "opened"


class Vector:
    def __init__(self, name, comment, expect, headers, data):
        self.name, self.comment, self.expect, self.headers, self.data = name, comment, expect, headers, data

    def bytes(self):
        lines = [("expect", self.expect)] + [pair for pair in self.headers if pair[1] is not None]
        lines.append(("comment", self.comment))
        head = "".join(f"{key}:{' ' if value else ''}{escaped(value)}\n" for key, value in lines)
        return head.encode() + b"\n" + self.data


def escaped(value):
    return value.replace("\\", "\\\\").replace("\n", "\\n").replace("\r", "\\r")


def numbers(values):
    return " ".join(str(int(value)) for value in values)


def expected_fields(recipe, cipher):
    """What the program holds after loading the recipe's file."""
    values = fields(recipe)
    version = int(values.get("appversion", 0)) if isinstance(values.get("appversion", 0), (int, float)) else 0
    listed = version in AES_FIRST + AES_CURRENT + BLOWFISH_EARLY + BLOWFISH_WINDOW
    window = None
    if version in AES_FIRST + AES_CURRENT + BLOWFISH_WINDOW:
        window = numbers(values.get(key, 0) for key in WINDOW_KEYS)
    note = values.get("publicTextData", "")
    editable = values.get("isEditable", True) if listed else True
    toolbar = values.get("makeToolbarVisibleAtDecrypt", False) if version in AES_CURRENT else True
    yes_no = {True: "yes", False: "no"}
    return [("cipher", cipher), ("version", str(version)), ("note", note if isinstance(note, str) else None),
            ("editable", yes_no.get(editable) if "isEditable" in values or not listed else None),
            ("window", window), ("toolbar", yes_no.get(toolbar))]


def document(name, comment, expect=OPENED, attempt=None, script_exit=None, text=None, body=None, data=None, **recipe):
    """A vector of a document: the recipe, the password tried, and what deviates from what the recipe promises."""
    recipe = Recipe(seed=name, **{"body": BODY if body is None else body, "note": f"Note of {name}", **recipe})
    password = recipe.password if attempt is None else attempt
    headers = [("password", password)]
    version = recipe.version if isinstance(recipe.version, (int, float)) else 20400
    cipher = recipe.cipher or ("aes" if version >= 10700 else "blowfish")
    if expect in (OPENED, REFUSED):
        headers += expected_fields(recipe, cipher)
    if expect == OPENED:
        held = recipe.body or b""
        headers.append(("body-sha1", hashlib.sha1(opened_body(recipe, password, held, cipher)).hexdigest()))
        if cipher == "aes":
            headers += [("mac", recipe.mac.hex()), ("date", repr(recipe.date))]
        headers.append(("text", text))
    headers.append(("script-exit", script_exit))
    return Vector(name, comment, expect, headers, make(recipe) if data is None else data(make(recipe)))


def opened_body(recipe, password, held, cipher):
    """The plaintext that the file's textData really gives, since a fault or a wrong password may have changed it."""
    values = fields(recipe)
    if not values.get("textData"):
        return b""
    if cipher == "blowfish":
        key = password.encode("mac_roman")[:16].ljust(16, b"\0")
        return decrypted(values["textData"], key, bytes.fromhex("3ea15c07d2964bf8"), "-bf-cbc",
                         "-provider", "legacy", "-provider", "default")
    plain = decrypted(values["textData"], aes_key(password, values["salt"]), values["IV"][:16], "-aes-256-cbc")
    assert recipe.alter or plain == held
    return plain


def aes_key(password, salt):
    return hashlib.pbkdf2_hmac("sha1", pbkdf2_input(password), salt, 10000, 32)


def decrypted(data, key, iv, *cipher):
    return subprocess.run(["openssl", "enc", "-d", *cipher, "-K", key.hex(), "-iv", iv.hex()], input=data,
                          stdout=subprocess.PIPE, check=True).stdout


def file_only(name, comment, data, script_exit=None):
    return Vector(name, comment, UNREADABLE, [("password", "correct horse"), ("script-exit", script_exit)], data)


# --- The groups --------------------------------------------------------------

def versions():
    for number in AES_FIRST + AES_CURRENT:
        yield document(f"aes-{number}", "a listed version of the AES families", version=number, text=TEXT,
                       editable=number % 2 == 0, toolbar=number % 200 != 0)
    for number in BLOWFISH_EARLY + BLOWFISH_WINDOW:
        yield document(f"blowfish-{number}", "a listed version of the Blowfish families", version=number, text=TEXT,
                       editable=number % 2 == 0)
    for number in (0, 1, 10405, 10501, 10604, 10699):
        yield document(f"unlisted-blowfish-{number}", "an unlisted version: note and text count, the rest is ignored",
                       version=number, editable=False)
    cipher_keys = drop("salt", "IV", "rc", "sha1-rc", "crDate", "crMAC")
    for number in (10701, 20002, 20302):
        yield document(f"unlisted-aes-{number}-bare", "an unlisted version has no salt to work with", REFUSED,
                       version=number, alter=cipher_keys, editable=False, script_exit="2")
    yield document("unlisted-aes-10701-with-keys", "salt and check of an unlisted version are ignored", REFUSED,
                   version=10701, script_exit="2")
    for label, number in (("20401", 20401), ("99999", 99999), ("minus-one", -1), ("beyond-32-bits", 2 ** 32 + 20400),
                          ("beyond-63-bits", 2 ** 63)):
        yield document(f"newer-{label}", "versions compare as unsigned 64-bit numbers", NEWER, version=number,
                       cipher="aes")
    yield document("missing-appversion", "reads as version 0, an unlisted Blowfish file", version=0,
                   alter=drop("appversion"))
    yield document("missing-appversion-aes", "AES fields without a version: Blowfish does not open them", REFUSED,
                   version=0, cipher="aes", alter=drop("appversion"), script_exit="3")
    yield document("appversion-real", "a real number where an integer is expected", version=20400.0)


def passwords():
    rows = (
        ("one-letter", "x", "a single letter"),
        ("spaces", "  two words  ", "spaces at both ends count"),
        ("backslash", "back\\slash \"quotes\" $HOME %s", "no character is special"),
        ("line-end", "two\nlines", "a line end inside"),
        ("long-ascii", "0123456789" * 12, "longer than a block of the digest"),
        ("umlauts", "Schlüsselbärtchen", "15 of 17 letters reach the key"),
        ("cyrillic", "парольдлядневника", "half of the letters reach the key"),
        ("chinese", "我的日记本很秘密", "8 of 24 bytes: the third character is cut in two"),
        ("emoji", "🎻🎹🥁🎺", "surrogate pairs: 8 units of 16 bytes"),
        ("combining", "e\u0301te\u0301", "combining accents, not composed"),
        ("mixed", "naïve пароль 密 🎻 end", "one to four bytes a character"),
        ("empty", "", "an empty password is a key like any other"),
    )
    for name, password, comment in rows:
        yield document(f"password-{name}", comment, password=password)
    pairs = (
        ("tail-ascii", "äöüß-morning", "äöüß-morrow!", OPENED, "the last letters do not reach the key"),
        ("tail-emoji", "🎻🎹🥁🎺", "🎻🎹🎺🥁", OPENED, "the last two symbols do not reach the key"),
        ("tail-cut-character", "我的日记本很秘密", "我的早记本很秘密", OPENED,
         "the cut character differs only in the byte that was cut off"),
        ("tail-length-counts", "äöüß-morning", "äöüß-mornings", REFUSED, "one more unit lets one more byte in"),
        ("head-differs", "äöüß-morning", "aöüß-morning", REFUSED, "the head reaches the key"),
        ("composed-form", "\u00e9t\u00e9", "e\u0301te\u0301", REFUSED, "composed and combining letters are different"),
        ("case", "Password", "password", REFUSED, "case counts"),
        ("wrong", "correct horse", "battery staple", REFUSED, "the padding of the check record is broken"),
        ("wrong-empty", "correct horse", "", REFUSED, "an empty attempt"),
    )
    for name, password, attempt, expect, comment in pairs:
        same = pbkdf2_input(password) == pbkdf2_input(attempt)
        assert same == (expect == OPENED), (name, pbkdf2_input(password), pbkdf2_input(attempt))
        yield document(f"password-{name}", comment, expect, password=password, attempt=attempt)
    lucky = Recipe(seed="password-lucky-padding")
    values, attempt = fields(lucky), LUCKY_AES
    assert decrypted(values["rc"], aes_key(attempt, values["salt"]), values["IV"], "-aes-256-cbc")
    yield document("password-lucky-padding", "a wrong password that leaves a valid padding: the digest tells", REFUSED,
                   attempt=attempt)


# Found by trying "wrong 0", "wrong 1", ... until the padding was valid; checked again at each run.
LUCKY_AES = "wrong 8"
LUCKY_BLOWFISH = "wrong 161"


def blowfish():
    old = {"version": 10603}
    rows = (
        ("short", "secret", "secret", OPENED, "padded with zero bytes"),
        ("sixteen", "sixteen letters!", "sixteen letters!", OPENED, "exactly the key"),
        ("beyond-sixteen", "sixteen letters! and more", "sixteen letters! AND MORE", OPENED, "the rest does not count"),
        ("mac-roman", "clé à molette", "clé à molette", OPENED, "accented letters are Mac Roman bytes"),
        ("unrepresentable", "secret", "пароль", REFUSED, "Mac Roman has no such letters"),
        ("wrong", "secret", "Secret", REFUSED, "the padding is broken"),
        ("wrong-but-lucky", "secret", LUCKY_BLOWFISH, OPENED, "noise that ends in a valid padding passes"),
    )
    for name, password, attempt, expect, comment in rows:
        yield document(f"blowfish-password-{name}", comment, expect, password=password, attempt=attempt, **old)
    yield document("blowfish-plain-rtf", "the body is RTF", body=rtf(TEXT), text=TEXT, **old)
    yield document("blowfish-empty-text", "no bytes at all open with any password", alter=put(textData=b""),
                   attempt="anything", **old)
    yield document("blowfish-missing-text", "no text opens with any password", alter=drop("textData"),
                   attempt="anything", **old)
    yield document("blowfish-odd-length", "not a multiple of 8 bytes", REFUSED, script_exit="2",
                   alter=lambda values: values.update(textData=values["textData"][:-3]), **old)
    yield document("blowfish-missing-window", "a missing rectangle reads as zeros", window=None, **old)


def notes():
    yield document("note-empty", "a note that was never written", note="")
    yield document("note-missing", "no note at all reads as none", note=None)
    yield document("note-lines", "line ends and tabs", note="first\n\tsecond\r\nthird\\n is no line end\n")
    yield document("note-long", "a long note of many scripts",
                   note="".join(f"{i}. Ünï ħó Ж щ 漢字 カナ 🎻 \u202bשלום\u202c e\u0301\n" for i in range(60)))


def windows():
    def reals(*values):
        return put(**dict(zip(WINDOW_KEYS, values)))
    yield document("window-missing", "written while locked: no rectangle", window=None)
    yield document("window-partly-missing", "a missing key reads as 0", alter=drop("windowRecX", "windowRecHeight"))
    yield document("window-fractions", "fractions are cut off towards zero", window=(100.75, -0.5, 640.999, 480.25))
    yield document("window-negative", "on a screen to the left", window=(-1280.0, -20.5, 640.0, 480.0))
    yield document("window-integers", "integers where reals are expected", alter=reals(1, 2, 300, 400))
    yield document("toolbar-missing", "a missing flag is no flag", toolbar=None)
    yield document("editable-missing", "a missing permission", editable=None)


def bodies():
    source = random.Random("bodies")
    for length in (0, 1, 15, 16, 17, 32, 4096):
        yield document(f"body-{length:05}-bytes", "the padding adds 1 to 16 bytes", body=source.randbytes(length))
    yield document("body-every-byte", "all byte values", body=bytes(range(256)) * 2)
    yield document("body-40-kilobytes", "a longer text", body=flat_rtfd({"TXT.rtf": rtf(TEXT * 250)}), text=TEXT * 250)
    yield document("body-rtf", "RTF in place of flattened RTFD", body=rtf(TEXT), text=TEXT)
    yield document("body-plain-utf-8", "plain text", body=TEXT.encode(), text=TEXT)
    yield document("body-plain-1252", "plain text that is not UTF-8", body="Grüße – „ja“".encode("cp1252"),
                   text="Grüße – „ja“")
    graphic = b"{{\\NeXTGraphic photo.png \\width640 \\height480 \\appleattachmentpadding0 \\appleembedtype0\n}\xac}"
    files = {"photo.png": b"\x89PNG\r\n\x1a\n" + source.randbytes(5000),
             "TXT.rtf": rtf("See here: @ - nice").replace(b"@", graphic)}
    yield document("body-attachment", "a text with an image", body=flat_rtfd(files), text="See here: [photo.png] - nice")
    hostile = {"TXT.rtf": rtf("Beware"), "../../escaped": b"1", "/etc/escaped": b"2", "..": b"3", "a\x00b": b"4",
               "txt.RTF": b"5", "C:\\escaped": b"6", "": b"7", ".hidden": b"8", "x" * 300: b"9"}
    yield document("body-hostile-names", "names of attachments that would leave the folder", body=flat_rtfd(hostile),
                   text="Beware")


def check_record():
    yield document("check-ascii", "256 bytes of check string", check=b"~" * 256)
    yield document("check-short", "a reader must not assume its length", check=b"short")
    yield document("check-empty", "nor that there is any", check=b"")
    yield document("check-wrong-digest", "the digest of another string", REFUSED, alter=flip("sha1-rc", 7))
    yield document("check-altered", "changed at its start: the padding is valid, the digest differs", REFUSED,
                   alter=flip("rc", 3))
    yield document("check-broken-padding", "changed at its end", REFUSED, alter=flip("rc", -1))
    yield document("check-odd-length", "not a multiple of 16 bytes", REFUSED, script_exit="2",
                   alter=lambda values: values.update(rc=values["rc"][:-5]))
    yield document("check-of-nothing", "a missing record and the digest of nothing prove nothing", REFUSED,
                   script_exit="2", alter=lambda values: values.update({"rc": b"", "sha1-rc": hashlib.sha1().digest()}))
    yield document("salt-longer", "the salt counts at whatever length it has", salt_length=16)
    yield document("iv-longer", "the first 16 bytes of the IV count", iv_length=20)
    yield document("salt-altered", "another salt, another key", REFUSED, alter=flip("salt", 0))
    yield document("iv-altered", "another first block of the check record", REFUSED, alter=flip("IV", 0))


def damage():
    yield document("mac-empty", "made on a machine without an address", mac=b"")
    moment = archive(datetime.datetime(2023, 11, 15, 0, 0, 0))
    yield document("date-plain-shape", "a date that stands in the archive directly", date_archive=moment,
                   date=721699200.0)
    yield document("date-before-2001", "a negative number of seconds", date=-86400.25)
    for key, exit_code in (("textData", "2"), ("crDate", "0"), ("crMAC", "0"), ("salt", "2"), ("IV", "2"),
                           ("rc", "2"), ("sha1-rc", "2")):
        yield document(f"missing-{key}", "the key is absent: the unlocking fails", REFUSED, alter=drop(key),
                       script_exit=exit_code)
    yield document("missing-isEditable-and-window", "the rest opens all the same", editable=None, window=None,
                   toolbar=None)
    length = len(BODY) // 16 * 16
    yield document("text-altered-in-the-middle", "nothing notices it: the text opens damaged",
                   alter=flip("textData", length // 2))
    yield document("text-altered-iv-block", "its first block damaged, and one bit of the second",
                   alter=flip("textData", 0))
    yield document("text-broken-padding", "surfaces as a wrong password", REFUSED, alter=flip("textData", -1),
                   script_exit="2")
    yield document("text-cut-in-a-block", "not a multiple of 16 bytes", REFUSED, script_exit="2",
                   alter=lambda values: values.update(textData=values["textData"][:-1]))
    yield document("text-cut-at-a-block", "the padding is gone", REFUSED, script_exit="2",
                   alter=lambda values: values.update(textData=values["textData"][:-32]))
    yield document("date-broken-padding", "surfaces as a wrong password", REFUSED, alter=flip("crDate", -1),
                   script_exit="0")
    yield document("mac-broken-padding", "surfaces as a wrong password", REFUSED, alter=flip("crMAC", -1),
                   script_exit="0")
    yield document("date-is-no-archive", "well padded, but no archive", REFUSED, date_archive=b"yesterday",
                   script_exit="0")


def containers():
    form = Form()
    forms = (
        ("xml", Form(xml=True), "the XML form"),
        ("older-order", Form(plist_order=("$version", "$objects", "$archiver", "$top")), "another order of its parts"),
        ("reverse-order", Form(plist_order=("$objects", "$top", "$archiver", "$version")), "yet another order"),
        ("immutable-root", Form(chain=("NSDictionary", "NSObject")), "the root is an NSDictionary"),
        ("foreign-leaf", Form(chain=("__NSDictionaryM", "NSMutableDictionary", "NSDictionary", "NSObject")),
         "the class is known by its ancestors"),
        ("unnamed-root", Form(top="$0"), "the root stands under $0"),
        ("other-root-name", Form(top="document"), "the root is the one entry there is"),
        ("numbered-keys", Form(numbered_keys=True), "NS.key.0 in place of an array"),
        ("wide-references", Form(fillers=300), "references of two bytes"),
    )
    for name, shape, comment in forms:
        yield document(f"container-{name}", comment, form=shape)

    def mutable(values):
        for key, value in values.items():
            if isinstance(value, bytes):
                values[key] = mutable_data(value)
            elif isinstance(value, str):
                values[key] = mutable_string(value)

    def boxed(values):
        number = ("NSNumber", "NSValue", "NSObject")
        values.update(appversion=Boxed(number, NS_intval=20400), isEditable=Boxed(number, NS_boolval=True),
                      windowRecX=Boxed(number, NS_dblval=100.0))

    def reversed_keys(values):
        for key in list(values)[::-1]:
            values[key] = values.pop(key)

    alterations = (
        ("mutable-values", mutable, form, "mutable strings and data"),
        ("data-by-reference", mutable, Form(data_by_reference=True), "NS.data holds a reference"),
        ("boxed-numbers", boxed, form, "numbers as objects"),
        ("reversed-keys", reversed_keys, form, "the order of the keys carries no meaning"),
        ("extra-keys", put(anything=1, note="n", password=b"p"), form, "unknown keys are ignored"),
    )
    for name, alter, shape, comment in alterations:
        plain = document(f"container-{name}", comment)
        recipe = Recipe(seed=plain.name, body=BODY, note=f"Note of {plain.name}", alter=alter, form=shape)
        plain.data = make(recipe)
        yield plain


def broken_containers():
    whole = make(Recipe(seed="broken", body=BODY))
    yield file_only("broken-empty-file", "no byte at all", b"")
    yield file_only("broken-half", "cut in half", whole[:len(whole) // 2])
    yield file_only("broken-last-byte", "cut by one byte", whole[:-1])
    yield file_only("broken-rtf", "some other kind of file", rtf(TEXT))
    yield file_only("broken-zeros", "a file full of zeros", bytes(2048))
    yield file_only("broken-xml-cut", "XML cut in half", make(Recipe(seed="broken", form=Form(xml=True)))[:900])
    plain = plistlib.dumps({"appversion": 20400, "publicTextData": "note"}, fmt=plistlib.FMT_BINARY)
    yield file_only("broken-plain-plist", "a property list, but no archive", plain)
    yield file_only("broken-root-string", "the root is a string", archive("a string"))
    yield file_only("broken-root-date", "the root is a date", archive(datetime.datetime(2023, 11, 15)))
    yield file_only("broken-root-data", "the root is data", archive(mutable_data(b"data")))
    values = fields(Recipe(seed="broken"))
    overrides = (
        ("archiver", {"$archiver": "OtherArchiver"}, "another archiver"),
        ("version", {"$version": 200000}, "another version of the archive"),
        ("top", {"$top": {}}, "no root"),
        ("root-beyond", {"$top": {"root": plistlib.UID(9999)}}, "a root that is not there"),
        ("root-nil", {"$top": {"root": plistlib.UID(0)}}, "no object as root"),
        ("objects", {"$objects": "none"}, "objects that are no array"),
    )
    for name, override, comment in overrides:
        yield file_only(f"broken-{name}", comment, archive(values, Form(overrides=override)))

    def patched(change):
        plist = plistlib.loads(archive(values))
        change(plist["$objects"])
        return plistlib.dumps(plist, fmt=plistlib.FMT_BINARY, sort_keys=False)

    changes = (
        ("value-beyond", lambda objects: objects[1]["NS.objects"].__setitem__(3, plistlib.UID(9999)),
         "a value that is not there"),
        ("class-missing", lambda objects: objects[1].pop("$class"), "a root without a class"),
        ("class-beyond", lambda objects: objects[1].update({"$class": plistlib.UID(9999)}), "a class that is not there"),
        ("cycle", lambda objects: objects[1]["NS.objects"].__setitem__(3, plistlib.UID(1)), "a dictionary in itself"),
        ("odd-dictionary", lambda objects: objects[1]["NS.objects"].pop(), "more keys than values"),
    )
    for name, change, comment in changes:
        yield file_only(f"broken-{name}", comment, patched(change))


def all_vectors():
    groups = (versions, passwords, blowfish, notes, windows, bodies, check_record, damage, containers,
              broken_containers)
    made = {}
    for group in groups:
        for vector in group():
            assert vector.name not in made, vector.name
            made[vector.name] = vector.bytes()
    return made


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--check", action="store_true")
    options = parser.parse_args()
    made = {f"{name}.vector": data for name, data in all_vectors().items()}
    present = {path.name: path.read_bytes() for path in FOLDER.glob("*.vector")}
    different = sorted(name for name in set(made) | set(present) if made.get(name) != present.get(name))
    print(f"{len(made)} vectors, {sum(map(len, made.values()))} bytes, {len(different)} differ from those on disk")
    if options.check:
        print("\n".join(different))
        return 1 if different else 0
    for name in different:
        (FOLDER / name).unlink() if name not in made else (FOLDER / name).write_bytes(made[name])
    return 0


if __name__ == "__main__":
    sys.exit(main())
