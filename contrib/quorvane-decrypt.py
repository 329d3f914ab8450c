#!/usr/bin/env python3
"""Get the text out of a Quorvane document without Quorvane.

Needs Python 3.9 or later and nothing else. Where the `openssl` program is
installed, it decrypts large documents faster. The format of the file is
described in docs/file-format.md.

  quorvane-decrypt.py FILE                 the text, to standard output
  quorvane-decrypt.py -o NEW FILE          the text, to a new file
  quorvane-decrypt.py --rtfd NEWDIR FILE   the styled text and its attachments
  quorvane-decrypt.py --body -o NEW FILE   the decrypted bytes as they are
  quorvane-decrypt.py --note FILE          the public note; asks no password

Exit codes: 0 done, 1 wrong usage, 2 not a document or damaged, 3 wrong
password, 4 written by a newer version, 5 the result could not be written.
"""
from __future__ import annotations

import argparse
import codecs
import getpass
import hashlib
import hmac
import os
import plistlib
import re
import shutil
import struct
import subprocess
import sys

DONE, USAGE, UNREADABLE, WRONG_PASSWORD, NEWER, CANNOT_WRITE = range(6)

FIRST_NEWER_VERSION = 20401
FIRST_AES_VERSION = 10700
AES_VERSIONS = (10700, 20000, 20001, 20100, 20101, 20200, 20201, 20300, 20301, 20400)
BLOWFISH_IV = bytes.fromhex("3EA15C07D2964BF8")
PBKDF2_ROUNDS = 10000


class Failure(Exception):
    """Ends the program with an exit code and a sentence for the user."""

    def __init__(self, code, message):
        super().__init__(message)
        self.code = code


# --- The keyed archive -------------------------------------------------------

class Foreign:
    """An object of a class that no document needs. Kept so that it can be ignored."""


class KeyedArchive:
    """Objects of a keyed archive, from its binary or its XML form."""

    DEEPEST = 64

    def __init__(self, data):
        try:
            plist = plistlib.loads(data)
        except Exception as error:  # plistlib lets many kinds through on damaged input
            raise Failure(UNREADABLE, f"not a property list ({error or type(error).__name__})")
        if not isinstance(plist, dict) or plist.get("$archiver") != "NSKeyedArchiver" \
                or plist.get("$version") != 100000:
            raise Failure(UNREADABLE, "a property list, but not a keyed archive")
        self.objects, self.top = plist.get("$objects"), plist.get("$top")
        if not isinstance(self.objects, list) or not isinstance(self.top, dict):
            raise Failure(UNREADABLE, "a keyed archive without objects")
        self.known = {}

    def root(self):
        for name in ("root", "$0"):
            if name in self.top:
                return self.value(self.top[name])
        if len(self.top) == 1:
            return self.value(next(iter(self.top.values())))
        raise Failure(UNREADABLE, "a keyed archive without a root object")

    @staticmethod
    def uid(value):
        if isinstance(value, plistlib.UID):
            return value.data
        if isinstance(value, dict) and isinstance(value.get("CF$UID"), int):
            return value["CF$UID"]  # the XML form has no type of its own for a reference
        return None

    def value(self, value, path=()):
        """The object behind a reference, or a value that stands inline."""
        number = self.uid(value)
        if number == 0:
            return None
        if number in self.known:
            return self.known[number]
        if number is not None:
            if not 0 < number < len(self.objects) or number in path or self.uid(self.objects[number]) is not None:
                raise Failure(UNREADABLE, "the archive is damaged (a reference leads nowhere)")
            value = self.objects[number]
        if len(path) > self.DEEPEST:
            raise Failure(UNREADABLE, "the archive is damaged (endless nesting)")
        if isinstance(value, dict):
            value = self.instance(value, path + (number,))
        if number is not None:
            self.known[number] = value
        return value

    def instance(self, fields, path):
        number = self.uid(fields.get("$class"))
        info = self.objects[number] if number is not None and 0 < number < len(self.objects) else None
        if not isinstance(info, dict) or not isinstance(info.get("$classname"), str):
            raise Failure(UNREADABLE, "the archive is damaged (an object without a class)")
        chain = info.get("$classes")
        names = [info["$classname"]] + (chain if isinstance(chain, list) else [])
        if "NSDictionary" in names or "NSMutableDictionary" in names:
            return self.dictionary(fields, path)
        wanted = {"NSString": ("NS.string", "NS.bytes"), "NSData": ("NS.data", "NS.bytes"), "NSDate": ("NS.time",),
                  "NSNumber": ("NS.number", "NS.boolval", "NS.intval", "NS.dblval")}
        for kind, keys in wanted.items():
            if kind in names or kind.replace("NS", "NSMutable") in names:
                held = [self.value(fields[key], path) for key in keys if key in fields]
                if not held:
                    raise Failure(UNREADABLE, f"the archive is damaged (an empty {kind})")
                if kind == "NSString" and isinstance(held[0], bytes):
                    return held[0].decode("utf-8", "replace")
                return held[0]
        return Foreign()

    def dictionary(self, fields, path):
        keys, values = fields.get("NS.keys"), fields.get("NS.objects")
        if keys is None and values is None:
            count = sum(1 for name in fields if str(name).startswith("NS.key."))
            keys = [fields.get(f"NS.key.{i}") for i in range(count)]
            values = [fields.get(f"NS.object.{i}") for i in range(count)]
        if not isinstance(keys, list) or not isinstance(values, list) or len(keys) != len(values):
            raise Failure(UNREADABLE, "the archive is damaged (a dictionary with odd ends)")
        result = {}
        for key, value in zip(keys, values):
            name = self.value(key, path)
            if isinstance(name, str):
                result[name] = self.value(value, path)
        return result


# --- The document ------------------------------------------------------------

class Document:
    """The fields of a document file. Raises Failure for what is none, and for newer files."""

    def __init__(self, data):
        root = KeyedArchive(data).root()
        if not isinstance(root, dict):
            raise Failure(UNREADABLE, "a keyed archive, but not of a dictionary")
        version = root.get("appversion", 0)
        if not isinstance(version, (int, float)) or version != version or abs(version) >= 2 ** 64:
            raise Failure(UNREADABLE, "the version number is not a number")
        self.version = int(version) % 2 ** 64  # an unsigned number: negative ones are huge
        if self.version >= FIRST_NEWER_VERSION:
            raise Failure(NEWER, f"written by a newer version of the program ({self.version})")
        self.fields = root

    @property
    def is_aes(self):
        return self.version >= FIRST_AES_VERSION

    @property
    def note(self):
        note = self.fields.get("publicTextData")
        return note if isinstance(note, str) else ""

    def data(self, key):
        value = self.fields.get(key)
        return value if isinstance(value, bytes) else None

    def body(self, password, salvage=False, use_openssl=True):
        """The decrypted body. With salvage, whatever the password makes of it, without any check."""
        if self.is_aes:
            return self.aes_body(password, salvage, use_openssl)
        return self.blowfish_body(password, salvage)

    def aes_body(self, password, salvage, use_openssl):
        salt, iv = self.data("salt"), (self.data("IV") or b"")[:16]
        if self.version not in AES_VERSIONS and not salvage:
            raise Failure(UNREADABLE, f"no known version of the program wrote this file ({self.version})")
        if salt is None or len(iv) < 16:
            raise Failure(UNREADABLE, "salt or initialisation vector is missing: nothing can decrypt this file")
        secret = key_bytes(password)
        aes = Aes256(hashlib.pbkdf2_hmac("sha1", secret, salt, PBKDF2_ROUNDS, 32))
        if not salvage:
            self.check_password(aes, iv)
        text = self.data("textData") or b""
        if use_openssl:
            body = unpadded(openssl_decrypt(text, secret, salt, iv) or b"", 16)
            if body is not None:
                return body
        # Only our own cipher is believed when something is wrong, so an odd `openssl` does no harm.
        plain = aes.decrypt_cbc(text[:len(text) // 16 * 16], iv)
        body = unpadded(plain, 16) if len(text) % 16 == 0 else None
        if body is None and not salvage:
            raise Failure(UNREADABLE, "the password is right, but the text is damaged; "
                                      "--salvage writes what can be decrypted")
        return plain if body is None else body

    def check_password(self, aes, iv):
        record, digest = self.data("rc"), self.data("sha1-rc")
        if not record or len(record) % 16 or digest is None or len(digest) != 20:
            raise Failure(UNREADABLE, "the password check is damaged; --salvage decrypts without it")
        plain = unpadded(aes.decrypt_cbc(record, iv), 16)
        if plain is None or not hmac.compare_digest(hashlib.sha1(plain).digest(), digest):
            raise Failure(WRONG_PASSWORD, "wrong password")

    def blowfish_body(self, password, salvage):
        text = self.data("textData") or b""
        if not text:
            return b""
        try:
            key = password.encode("mac_roman")[:16].ljust(16, b"\0")
        except UnicodeEncodeError:
            raise Failure(WRONG_PASSWORD, "wrong password: this old document cannot have one with such characters")
        if len(text) % 8 and not salvage:
            raise Failure(UNREADABLE, "the text is damaged; --salvage writes what can be decrypted")
        plain = Blowfish(key).decrypt_cbc(text[:len(text) // 8 * 8], BLOWFISH_IV)
        body = unpadded(plain, 8)
        if body is None and not salvage:
            raise Failure(WRONG_PASSWORD, "wrong password")
        return plain if body is None else body


def key_bytes(password):
    """What of the password reaches the key: as many UTF-8 bytes as it has UTF-16 units."""
    units = len(password.encode("utf-16-le", "surrogatepass")) // 2
    return password.encode("utf-8", "surrogatepass")[:units]


def unpadded(plain, block):
    """The bytes without their PKCS #7 padding, or None where it is not valid."""
    count = plain[-1] if plain else 0
    if not 1 <= count <= block or len(plain) % block or plain[-count:] != bytes([count]) * count:
        return None
    return plain[:-count]


# --- Ciphers -----------------------------------------------------------------

def openssl_decrypt(text, secret, salt, iv):
    """AES-256-CBC by the `openssl` program, padding left in place, or None where it cannot serve.

    The secret goes through a pipe, since the arguments of a program are for everyone to see. `openssl`
    derives the key itself; it expects the salt in front of the ciphertext, and the IV given overrides
    the one it would derive. It reads the secret as one line, so some secrets cannot be handed over.
    """
    program = shutil.which("openssl")
    if program is None or os.name != "posix" or len(salt) != 8 or not 0 < len(secret) < 1000 \
            or any(byte in secret for byte in b"\0\r\n"):
        return None
    command = [program, "enc", "-d", "-aes-256-cbc", "-nopad", "-pbkdf2", "-iter", str(PBKDF2_ROUNDS),
               "-md", "sha1", "-iv", iv.hex()]
    reading, writing = os.pipe()
    try:
        os.write(writing, secret + b"\n")
        os.close(writing)
        done = subprocess.run(command + ["-pass", f"fd:{reading}"], input=b"Salted__" + salt + text,
                              capture_output=True, pass_fds=(reading,), check=False)
    except OSError:
        return None
    finally:
        os.close(reading)
    return done.stdout if done.returncode == 0 and len(done.stdout) == len(text) else None


def xored(left, right):
    return (int.from_bytes(left, "big") ^ int.from_bytes(right, "big")).to_bytes(len(left), "big")


class Aes256:
    """AES with a 256-bit key, decryption only (FIPS 197)."""

    tables = None

    def __init__(self, key):
        if Aes256.tables is None:
            Aes256.tables = self.make_tables()
        sbox, _, inverse_mix = self.tables
        words, constant = list(struct.unpack(">8I", key)), 1
        for i in range(8, 60):
            word = words[-1]
            if i % 8 == 0:
                word = (word << 8 | word >> 24) & 0xFFFFFFFF
            if i % 4 == 0:
                word = int.from_bytes(bytes(sbox[byte] for byte in word.to_bytes(4, "big")), "big")
            if i % 8 == 0:
                word, constant = word ^ constant << 24, constant << 1
            words.append(words[i - 8] ^ word)
        for i in range(4, 56):  # round keys for the equivalent inverse cipher
            parts = [inverse_mix[n][sbox[words[i] >> 24 - 8 * n & 255]] for n in range(4)]
            words[i] = parts[0] ^ parts[1] ^ parts[2] ^ parts[3]
        self.rounds = [words[i:i + 4] for i in range(56, -1, -4)]

    @staticmethod
    def make_tables():
        powers, logs, value = [0] * 256, [0] * 256, 1
        for i in range(255):
            powers[i], logs[value] = value, i
            value ^= value << 1 ^ (0x11B if value & 0x80 else 0)  # times 3

        def times(left, right):
            return powers[(logs[left] + logs[right]) % 255] if left and right else 0

        sbox = []
        for i in range(256):
            inverse = powers[(255 - logs[i]) % 255] if i else 0
            turned = inverse
            for _ in range(4):
                inverse = (inverse << 1 | inverse >> 7) & 255
                turned ^= inverse
            sbox.append(turned ^ 0x63)
        inverse_sbox = [sbox.index(i) for i in range(256)]
        mix = [struct.unpack(">I", bytes(times(b, factor) for factor in (14, 9, 13, 11)))[0] for b in inverse_sbox]
        return sbox, inverse_sbox, [[(w >> 8 * n | w << 32 - 8 * n) & 0xFFFFFFFF for w in mix] for n in range(4)]

    def decrypt_block(self, block):
        _, last, (t0, t1, t2, t3) = self.tables
        first = self.rounds[0]
        a, b, c, d = (word ^ key for word, key in zip(struct.unpack(">4I", block), first))
        for k0, k1, k2, k3 in self.rounds[1:14]:
            a, b, c, d = (t0[a >> 24] ^ t1[d >> 16 & 255] ^ t2[c >> 8 & 255] ^ t3[b & 255] ^ k0,
                          t0[b >> 24] ^ t1[a >> 16 & 255] ^ t2[d >> 8 & 255] ^ t3[c & 255] ^ k1,
                          t0[c >> 24] ^ t1[b >> 16 & 255] ^ t2[a >> 8 & 255] ^ t3[d & 255] ^ k2,
                          t0[d >> 24] ^ t1[c >> 16 & 255] ^ t2[b >> 8 & 255] ^ t3[a & 255] ^ k3)
        columns = ((a, d, c, b), (b, a, d, c), (c, b, a, d), (d, c, b, a))
        return struct.pack(">4I", *(
            (last[w >> 24] << 24 | last[x >> 16 & 255] << 16 | last[y >> 8 & 255] << 8 | last[z & 255]) ^ key
            for (w, x, y, z), key in zip(columns, self.rounds[14])))

    def decrypt_cbc(self, data, iv):
        plain = b"".join(self.decrypt_block(data[i:i + 16]) for i in range(0, len(data), 16))
        return xored(plain, (iv + data)[:len(plain)])


class Blowfish:
    """Blowfish, decryption only. Its tables are the hexadecimal digits of pi."""

    digits = None

    def __init__(self, key):
        if Blowfish.digits is None:
            Blowfish.digits = self.pi_words(18 + 4 * 256)
        self.p, self.s = list(self.digits[:18]), [list(self.digits[18 + 256 * n:274 + 256 * n]) for n in range(4)]
        repeated = struct.unpack(">18I", (key * 72)[:72])
        self.p = [left ^ right for left, right in zip(self.p, repeated)]
        left = right = 0
        for table in [self.p] + self.s:
            for i in range(0, len(table), 2):
                left, right = self.cipher(left, right, self.p)
                table[i], table[i + 1] = left, right

    @staticmethod
    def pi_words(count):
        bits = 32 * count
        one = 1 << bits + 64

        def inverse_tangent(n):
            power, total, odd = one // n, 0, 1
            while power:
                total += power // odd if odd % 4 == 1 else -(power // odd)
                power, odd = power // (n * n), odd + 2
            return total

        fraction = (4 * (4 * inverse_tangent(5) - inverse_tangent(239)) - 3 * one) >> 64
        return struct.unpack(f">{count}I", fraction.to_bytes(bits // 8, "big"))

    def cipher(self, left, right, keys):
        s0, s1, s2, s3 = self.s
        for key in keys[:16]:
            left ^= key
            mixed = (s0[left >> 24] + s1[left >> 16 & 255] ^ s2[left >> 8 & 255]) + s3[left & 255]
            left, right = right ^ mixed & 0xFFFFFFFF, left
        return right ^ keys[17], left ^ keys[16]

    def decrypt_cbc(self, data, iv):
        backwards = self.p[::-1]
        plain = b"".join(struct.pack(">2I", *self.cipher(*struct.unpack(">2I", data[i:i + 8]), backwards))
                         for i in range(0, len(data), 8))
        return xored(plain, (iv + data)[:len(plain)])


# --- Flattened RTFD ----------------------------------------------------------

class FlatRtfd:
    """A folder of files in one byte string: {name: bytes or another such dictionary}."""

    DEEPEST = 32

    def __init__(self, data):
        self.data = data
        self.files = self.node(8, len(data), 0) if data[:4] == b"rtfd" else None
        if not isinstance(self.files, dict):
            raise Failure(UNREADABLE, "the decrypted text is damaged; --body writes it as it is")

    def word(self, at, end):
        if at + 4 > end:
            raise Failure(UNREADABLE, "the decrypted text is cut short; --body writes it as it is")
        return struct.unpack_from("<I", self.data, at)[0]

    def payload(self, at, size, end):
        if size > end - at:
            raise Failure(UNREADABLE, "the decrypted text is cut short; --body writes it as it is")
        return self.data[at:at + size]

    def node(self, at, end, depth):
        kind = self.word(at, end)
        if kind == 1:
            size = self.word(at + 4, end)
            if size == 0x80000000:  # padded, so that the contents start at a multiple of the page size
                return self.payload(at + 16 + self.word(at + 12, end), self.word(at + 8, end), end)
            return self.payload(at + 8, size, end)
        if kind != 3 or depth > self.DEEPEST:
            return None
        count, at, names = self.word(at + 4, end), at + 8, []
        if count > (end - at) // 8:
            raise Failure(UNREADABLE, "the decrypted text is damaged; --body writes it as it is")
        for _ in range(count):
            size = self.word(at, end)
            names.append(self.payload(at + 4, size, end).decode("utf-8", "replace"))
            at += 4 + size
        sizes = [self.word(at + 4 * i, end) for i in range(count)]
        at, files = at + 4 * count, {}
        for name, size in zip(names, sizes):
            self.payload(at, size, end)
            held = self.node(at, at + size, depth + 1)
            while name in files:
                name += "_"
            if held is not None and name != "." and not name.startswith("__@"):
                files[name] = held
            at += size
        return files

    @property
    def rtf(self):
        """The styled text. A single file in this form holds its contents under '..'."""
        for name in ("TXT.rtf", ".."):
            if isinstance(self.files.get(name), bytes):
                return self.files[name]
        raise Failure(UNREADABLE, "the decrypted text is damaged; --body writes it as it is")


# --- RTF to text -------------------------------------------------------------

RTF_TOKEN = re.compile(rb"\\([a-zA-Z]{1,32})(-?\d{1,10})?[ ]?|\\'([0-9a-fA-F]{2})|\\(.)|([{}])|[\r\n]+"
                       rb"|([^\\{}\r\n]+)|.", re.DOTALL)
RTF_SKIPPED = {"colortbl", "stylesheet", "info", "pict", "fldinst", "filetbl", "nonesttables", "fonttbl"}
RTF_WORDS = {"par": "\n", "line": "\n", "sect": "\n", "page": "\n", "row": "\n", "nestrow": "\n", "tab": "\t",
             "cell": "\t", "nestcell": "\t", "emdash": "\u2014", "endash": "\u2013", "bullet": "\u2022",
             "lquote": "\u2018", "rquote": "\u2019", "ldblquote": "\u201c", "rdblquote": "\u201d",
             "emspace": "\u2003", "enspace": "\u2002", "zwj": "\u200d", "zwnj": "\u200c", "ltrmark": "\u200e",
             "rtlmark": "\u200f"}
RTF_SYMBOLS = {b"\n": "\n", b"\r": "\n", b"\t": "\t", b"~": "\u00a0", b"-": "\u00ad", b"_": "\u2011",
               b"{": "{", b"}": "}", b"\\": "\\"}
RTF_CHARSETS = {77: "mac_roman", 78: "shift_jis", 128: "cp932", 129: "cp949", 130: "johab", 134: "gbk", 136: "cp950",
                161: "cp1253", 162: "cp1254", 163: "cp1258", 177: "cp1255", 178: "cp1256", 186: "cp1257",
                204: "cp1251", 222: "cp874", 238: "cp1250"}


class RtfText:
    """The plain text of an RTF document. An attachment stands as its name in brackets."""

    def __init__(self, rtf):
        self.out, self.pending, self.codec = [], b"", "cp1252"
        self.charsets, self.table_font, self.placeholder = {}, 0, False
        self.group = {"skip": False, "uc": 1, "font": None, "table": False, "name": False, "deleted": False}
        self.unit_skip = self.name_start = 0
        stack, at = [], 0
        while at < len(rtf):
            token = RTF_TOKEN.match(rtf, at)
            at = token.end()
            word, number, byte, symbol, brace, run = token.groups()
            if word:
                self.word(word.decode(), None if number is None else int(number))
                if word == b"bin":
                    at += max(0, int(number or 0))
            elif byte:
                self.raw(bytes([int(byte, 16)]))
            elif run:
                self.raw(run)
            elif brace == b"{":
                self.unit_skip = 0
                stack.append(dict(self.group))
            elif brace:
                self.close(stack)
            elif symbol == b"*":
                self.group["skip"] = True  # a destination that may be left out
            elif symbol:
                self.symbol(symbol)
        self.flush()

    @property
    def text(self):
        joined = "".join(self.out)  # halves of surrogate pairs come as two characters
        return joined.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace")

    def close(self, stack):
        self.flush()
        self.unit_skip = 0
        ended = self.group
        self.group = stack.pop() if stack else ended
        if ended["name"] and not self.group["name"] and self.visible():
            name = "".join(self.out[self.name_start:]).strip()
            self.out[self.name_start:] = [f"[{name}]"]
            self.placeholder = True

    def visible(self):
        return not (self.group["skip"] or self.group["deleted"])

    def flush(self):
        if self.pending:
            codec = RTF_CHARSETS.get(self.charsets.get(self.group["font"]), self.codec)
            self.out.append(decoded(self.pending, codec))
            self.pending = b""

    def raw(self, run):
        if self.unit_skip:
            self.unit_skip, run = max(0, self.unit_skip - len(run)), run[self.unit_skip:]
        if self.placeholder and run:  # the one byte that stands for the attachment named before
            run, self.placeholder = run[1:] if run[:1] == b"\xac" else run, False
        if self.visible():
            self.pending += run

    def put(self, text):
        self.placeholder = False
        if self.unit_skip:
            self.unit_skip -= 1
        elif self.visible():
            self.flush()
            self.out.append(text)

    def symbol(self, symbol):
        if symbol in RTF_SYMBOLS:
            self.put(RTF_SYMBOLS[symbol])

    def word(self, word, number):
        group = self.group
        if word in RTF_WORDS:
            self.put(RTF_WORDS[word])
        elif word == "u":
            self.unit_skip = 0
            self.put(chr((number or 0) % 65536))
            self.unit_skip = group["uc"]
        elif word == "uc":
            group["uc"] = max(0, number or 0)
        elif word in RTF_SKIPPED:
            group["skip"], group["table"] = True, word == "fonttbl"
        elif word == "NeXTGraphic":
            self.flush()
            group["name"], self.name_start = True, len(self.out)
        elif word == "width" and group["name"]:
            self.flush()
            group["skip"] = True
        elif word in ("f", "plain", "deff"):
            self.flush()
            group["font"] = self.table_font = number or 0
        elif word == "fcharset" and group["table"]:
            self.charsets[self.table_font] = number
        elif word in ("ansicpg", "mac", "pc", "pca"):
            self.codec = {"mac": "mac_roman", "pc": "cp437", "pca": "cp850"}.get(word) or code_page(number)
        elif word == "deleted":
            self.flush()
            group["deleted"] = number != 0


def code_page(number):
    codec = {10000: "mac_roman", 936: "gbk", 65001: "utf-8"}.get(number, f"cp{number}")
    try:
        return codec if isinstance("".encode(codec), bytes) else "cp1252"
    except LookupError:
        return "cp1252"


def decoded(data, codec):
    """Text of the bytes; where the codec has no character, the byte's own number, so that none is lost."""
    return data.decode(codec, "quorvane-keep")


codecs.register_error("quorvane-keep", lambda error: (error.object[error.start:error.end].decode("latin-1"), error.end))


def text_of(body):
    if body[:4] == b"rtfd":
        return RtfText(FlatRtfd(body).rtf).text
    if body[:5] == b"{\\rtf":
        return RtfText(body).text
    try:
        return body.decode("utf-8")
    except UnicodeDecodeError:
        return decoded(body, "cp1252")


# --- Writing the result ------------------------------------------------------

def safe_name(name, taken):
    """A name that stays in its folder on every system, unlike those already taken in any case of letters."""
    name = re.sub(r'[\x00-\x1f\x7f/\\:*?"<>|]', "_", name).strip(" ").rstrip(".")
    name = re.sub(r"^\.+", "_", name).encode("utf-8", "replace")[:200].decode("utf-8", "ignore") or "unnamed"
    stem, dot, suffix = name.rpartition(".")
    candidate, number = name, 1
    while candidate.casefold() in taken:
        number += 1
        candidate = f"{stem or name} {number}{dot + suffix if stem else ''}"
    taken.add(candidate.casefold())
    return candidate


def write_all(descriptor, data):
    rest = memoryview(data)
    while rest:
        rest = rest[os.write(descriptor, rest):]


def write_new_file(path, data):
    """Writes a file that did not exist before, for the owner's eyes only."""
    flags = os.O_WRONLY | os.O_CREAT | os.O_EXCL | getattr(os, "O_BINARY", 0)
    descriptor = os.open(path, flags, 0o600)
    try:
        write_all(descriptor, data)
        os.close(descriptor)
    except OSError:
        os.unlink(path)
        raise


def write_folder(path, files):
    os.mkdir(path, 0o700)
    taken = set()
    for name in sorted(files, key=lambda entry: (entry != "TXT.rtf", entry)):
        safe = safe_name(name, taken)
        if safe != name:
            print(f"quorvane-decrypt: attachment {name!r} is written as {safe!r}", file=sys.stderr)
        if isinstance(files[name], dict):
            write_folder(os.path.join(path, safe), files[name])
        else:
            write_new_file(os.path.join(path, safe), files[name])


def folder_of(body):
    if body[:4] != b"rtfd":
        return {"TXT.rtf" if body[:5] == b"{\\rtf" else "TXT.txt": body}
    flat = FlatRtfd(body)
    return {**{name: held for name, held in flat.files.items() if name != ".."}, "TXT.rtf": flat.rtf}


# --- The command -------------------------------------------------------------

class Parser(argparse.ArgumentParser):
    def error(self, message):
        self.print_usage(sys.stderr)
        raise Failure(USAGE, message)


def arguments(argv):
    parser = Parser(prog="quorvane-decrypt.py", description=__doc__, allow_abbrev=False,
                    formatter_class=argparse.RawDescriptionHelpFormatter)
    what = parser.add_mutually_exclusive_group()
    what.add_argument("--note", action="store_true", help="write the public note; asks no password")
    what.add_argument("--body", action="store_true", help="write the decrypted bytes as they are")
    what.add_argument("--rtfd", metavar="NEWDIR", help="write TXT.rtf and the attachments into a new folder")
    source = parser.add_mutually_exclusive_group()
    source.add_argument("--password-file", metavar="PATH", help="take the password from this file")
    source.add_argument("--password-fd", metavar="N", type=int, help="take the password from this open descriptor")
    parser.add_argument("-o", "--output", metavar="NEW", help="write into this new file")
    parser.add_argument("--salvage", action="store_true", help="decrypt without any check, for damaged documents")
    parser.add_argument("--no-openssl", action="store_true", help="do not use the openssl program (slower)")
    parser.add_argument("file", help="the document, or - for standard input")
    options = parser.parse_args(argv)
    if options.rtfd and options.output:
        parser.error("--rtfd and --output exclude each other")
    return options


def read_password(options):
    """The password as typed, or the whole file without its last line end."""
    try:
        if options.password_file is None and options.password_fd is None:
            return getpass.getpass("Password: ")
        with open(options.password_file if options.password_fd is None else options.password_fd, "rb") as source:
            return re.sub(r"\r?\n\Z", "", source.read().decode("utf-8"))
    except UnicodeDecodeError:
        raise Failure(USAGE, "the password is not in UTF-8")
    except (OSError, EOFError) as error:
        raise Failure(USAGE, f"no password could be read ({error})")


def run(argv):
    options = arguments(argv)
    try:
        if options.file == "-":
            data = sys.stdin.buffer.read()
        else:
            with open(options.file, "rb") as source:
                data = source.read()
    except OSError as error:
        raise Failure(UNREADABLE, str(error))
    document = Document(data)
    if options.note:
        result = document.note.encode("utf-8", "replace")
    else:
        body = document.body(read_password(options), options.salvage, not options.no_openssl)
        result = body if options.body or options.rtfd else text_of(body).encode("utf-8")
    files = folder_of(body) if options.rtfd else None
    try:
        if files is not None:
            write_folder(options.rtfd, files)
        elif options.output:
            write_new_file(options.output, result)
        else:
            write_all(1, result)
    except OSError as error:
        raise Failure(CANNOT_WRITE, f"could not write: {error}")


def main():
    try:
        run(sys.argv[1:])
    except Failure as failure:
        print(f"quorvane-decrypt: {failure}", file=sys.stderr)
        return failure.code
    except KeyboardInterrupt:
        return USAGE
    return DONE


if __name__ == "__main__":
    sys.exit(main())
