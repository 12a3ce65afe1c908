"""Compares what the program makes of layouts files with what another reader makes of them.

layouts-differential.py REWRITER [DOCUMENTS [SEED]]

Generates documents with every kind of character and number, in every form that JSON has for them,
and spoils some. The program has to accept the very ones that Python's own reader of JSON accepts,
and what the program writes of one has to hold the very values that were in it, to the last bit.

Where JSON leaves the choice, both are held to the same one: the last of equal keys counts, a byte
order mark before the document is passed over, halves of surrogate pairs are characters like any
other, a number is the nearest double, and one that is too small is 0. These are refused although
Python would read them: numbers too large for a double, the words NaN and Infinity, and arrays and
objects more than 1,024 deep.
"""

import json
import math
import random
import re
import struct
import subprocess
import sys

BATCH = 2000
REFUSED = 0xFFFFFFFF
DEEPEST = 1024
UUID = re.compile(r"[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}")

# Characters by kind, so that each kind is met often.
KINDS = [
    lambda r: chr(r.randrange(0x20, 0x7F)),
    lambda r: chr(r.randrange(0x20)),
    lambda r: r.choice('"\\/\x7f\x80\x9f\u2028\u2029'),
    lambda r: "\ufeff",
    lambda r: chr(r.randrange(0xD800, 0xE000)),
    lambda r: chr(r.randrange(0xD800, 0xDC00)) + chr(r.randrange(0xDC00, 0xE000)),
    lambda r: chr(r.randrange(0xFDD0, 0xFDF0)),
    lambda r: chr(r.randrange(17) * 0x10000 + r.choice((0xFFFE, 0xFFFF))),
    lambda r: chr(r.randrange(0x80, 0x800)),
    lambda r: chr(r.randrange(0x800, 0xD800)),
    lambda r: chr(r.randrange(0x10000, 0x110000)),
]
SHORT_ESCAPES = {'"': '"', "\\": "\\", "/": "/", "\b": "b", "\f": "f", "\n": "n", "\r": "r", "\t": "t"}
NUMBERS = ["0", "-0", "0.0", "-0e5", "1", "1e-400", "-1e-400", "3e-324", "2e-324", "5e-324", "2.2250738585072011e-308",
           "1.7976931348623157e308", "0.1", "1E+2", "9007199254740993", "1e0000000000000000001", "0e999999999999"]
TOO_LARGE = ["1e309", "-1.8e308", "9" * 400, "1e99999999999999999999"]
WRONG_NUMBERS = ["1.", ".5", "01", "-", "+1", "1e", "1e+", "0x1", "NaN", "Infinity", "-Infinity", "1_0", "--1", "٣"]
SPOILS = [b"", b"\0", b'"', b"\\", b"{", b"}", b"[", b"]", b",", b":", b"1", b"-", b"e", b".", b"\x80", b"\xff", b"\xc0\x80",
          b"\xed\xa0\x80", b"\xf4\x90\x80\x80", b"\xef\xbb\xbf", b"\n", b"\v", b"\x1f", b"null", b"true", b"\\u", b"\\v"]


class Generator:
    def __init__(self, seed):
        self.random = random.Random(seed)

    def blank(self):
        return "" if self.random.random() < 0.8 else self.random.choice((" ", "\n", "\t", "\r\n  "))

    def escape(self, unit):
        digits = f"{unit:04x}"
        return "\\u" + "".join(self.random.choice((d, d.upper())) for d in digits)

    def spelled(self, character):
        code = ord(character)
        choice = self.random.random()
        if character in SHORT_ESCAPES and choice < 0.5:
            return "\\" + SHORT_ESCAPES[character]
        if code < 0x20 or character in '"\\' or 0xD800 <= code < 0xE000 or choice < 0.6:
            if code < 0x10000:
                return self.escape(code)
            if choice < 0.6:
                return self.escape(0xD7C0 + (code >> 10)) + self.escape(0xDC00 + (code & 0x3FF))
        return character

    def characters(self):
        count = self.random.randrange(6)
        return "".join(self.random.choice(KINDS)(self.random) for _ in range(count))

    def text(self, value):
        return '"' + "".join(self.spelled(character) for character in value) + '"'

    def key(self, name):
        return self.text(name) if self.random.random() < 0.05 else f'"{name}"'

    def number(self):
        choice = self.random.random()
        if choice < 0.3:
            return self.random.choice(NUMBERS)
        if choice < 0.31:
            return self.random.choice(TOO_LARGE)
        if choice < 0.32:
            return self.random.choice(WRONG_NUMBERS)
        if choice < 0.5:
            return repr(self.random.random())
        if choice < 0.7:
            value = struct.unpack("d", self.random.randbytes(8))[0]
            return repr(value) if math.isfinite(value) else "1"
        digits = "".join(self.random.choice("0123456789") for _ in range(self.random.randrange(1, 40)))
        return f"{self.random.choice(('', '-'))}{self.random.randrange(10)}.{digits}e{self.random.randrange(-330, 300)}"

    def uuid(self):
        text = f"{self.random.getrandbits(128):032x}"
        text = "-".join((text[:8], text[8:12], text[12:16], text[16:20], text[20:]))
        choice = self.random.random()
        if choice < 0.01:
            text = self.random.choice((text[1:], "{" + text + "}", text.replace("-", "_"), "", text + "\0"))
        return self.text(text if choice < 0.5 else text.upper()) if choice < 0.05 else f'"{text.upper()}"'

    def anything(self, depth=0):
        choice = self.random.randrange(8 if depth < 3 else 6)
        if choice == 6:
            return "[" + ",".join(self.anything(depth + 1) for _ in range(self.random.randrange(3))) + "]"
        if choice == 7:
            return self.object([(self.characters(), self.anything(depth + 1)) for _ in range(self.random.randrange(3))])
        return (self.number(), self.text(self.characters()), "true", "false", "null", self.uuid())[choice]

    def object(self, members):
        if self.random.random() < 0.3:
            self.random.shuffle(members)
        if self.random.random() < 0.03:
            members.insert(self.random.randrange(len(members) + 1), (self.characters(), self.anything(1)))
        if members and self.random.random() < 0.02:
            members.insert(self.random.randrange(len(members) + 1), (self.random.choice(members)[0], self.anything(1)))
        if members and self.random.random() < 0.004:
            members.pop()
        if members and self.random.random() < 0.004:
            members[0] = (members[0][0], self.anything(1))
        return "{" + ",".join(
            f"{self.blank()}{self.key(name)}{self.blank()}:{self.blank()}{value}{self.blank()}" for name, value in members
        ) + "}"

    def zone(self):
        return self.object([("id", self.uuid()), ("name", self.text(self.characters())), ("x", self.number()),
                            ("y", self.number()), ("width", self.number()), ("height", self.number())])

    def layout(self):
        zones = "[" + ",".join(self.zone() for _ in range(self.random.randrange(3))) + "]"
        return self.object([("id", self.uuid()), ("name", self.text(self.characters())),
                            ("systemImage", self.text(self.characters())),
                            ("isBuiltIn", self.random.choice(("true", "false"))), ("zones", zones)])

    def document(self):
        """A document; spoilt in one place or another four times in ten."""
        layouts = "[" + ("," + self.blank()).join(self.layout() for _ in range(self.random.randrange(3))) + "]"
        assignments = self.object([(self.characters(), self.uuid()) for _ in range(self.random.randrange(3))])
        members = [("customLayouts", layouts), ("assignments", assignments)]
        if self.random.random() < 0.01:
            depth = self.random.choice((3, DEEPEST - 2, DEEPEST - 1, DEEPEST, DEEPEST + 1, 2000))
            members.append(("deep", "[" * depth + "]" * depth if self.random.random() < 0.5
                            else '{"":' * depth + "0" + "}" * depth))
        document = (self.blank() + self.object(members) + self.blank()).encode("utf-8", "surrogatepass")
        if self.random.random() < 0.02:
            document = b"\xef\xbb\xbf" + document
        if self.random.random() < 0.4:
            start = self.random.randrange(len(document) + 1)
            end = start + self.random.choice((0, 0, 1, 1, 2, len(document)))
            document = document[:start] + self.random.choice(SPOILS) + document[end:]
        return document


class Refusal(Exception):
    """The document is no layouts file."""


def demand(condition):
    if not condition:
        raise Refusal


def refuse(_word):
    raise Refusal


def is_deeper(value, deepest):
    level = [value]
    for _ in range(deepest):
        level = [inner for outer in level if isinstance(outer, (list, Members))
                 for inner in (outer if isinstance(outer, list) else outer.every)]
    return any(isinstance(inner, (list, Members)) for inner in level)


class Members(dict):
    """An object's members, the last of equal keys; and every value that is written in it."""

    def __init__(self, pairs):
        super().__init__(pairs)
        self.every = [value for _, value in pairs]


def text(value):
    demand(isinstance(value, str))
    return value


def uuid(value):
    demand(isinstance(value, str) and UUID.fullmatch(value))
    return value.upper()


def number(value):
    demand(isinstance(value, float) and math.isfinite(value))
    return struct.pack("d", value)


def record(value, fields):
    demand(isinstance(value, Members))
    for key in fields:
        demand(key in value)
    return tuple(read(value[key]) for key, read in fields.items())


def boolean(value):
    demand(isinstance(value, bool))
    return value


def list_of(read):
    def read_list(value):
        demand(isinstance(value, list))
        return [read(element) for element in value]

    return read_list


def assignments(value):
    demand(isinstance(value, Members))
    return {key: uuid(member) for key, member in value.items()}


ZONE = {"id": uuid, "name": text, "x": number, "y": number, "width": number, "height": number}
LAYOUT = {"id": uuid, "name": text, "systemImage": text, "isBuiltIn": boolean,
          "zones": list_of(lambda zone: record(zone, ZONE))}
DOCUMENT = {"customLayouts": list_of(lambda layout: record(layout, LAYOUT)), "assignments": assignments}


def understood(document):
    """What a document holds, numbers as their bytes; none for one that is no layouts file."""
    try:
        characters = document.removeprefix(b"\xef\xbb\xbf").decode("utf-8")
        value = json.loads(characters, parse_int=float, parse_constant=refuse, object_pairs_hook=Members)
        demand(not is_deeper(value, DEEPEST))
        return record(value, DOCUMENT)
    except (ValueError, Refusal):
        return None


def exchange(rewriter, documents):
    """What the program writes of each document; none for one that it refuses."""
    request = b"".join(struct.pack("=I", len(document)) + document for document in documents)
    answer = subprocess.run([rewriter], input=request, stdout=subprocess.PIPE, check=True).stdout
    written = []
    at = 0
    while at < len(answer):
        (length,) = struct.unpack_from("=I", answer, at)
        at += 4
        written.append(None if length == REFUSED else answer[at : at + length])
        at += 0 if length == REFUSED else length
    if len(written) != len(documents):
        sys.exit(f"{len(documents)} documents, {len(written)} answers")
    return written


def main():
    rewriter = sys.argv[1]
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 20_000
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 20260101
    sys.setrecursionlimit(20_000)
    generator = Generator(seed)
    valid = differences = done = 0
    while done < count:
        documents = [generator.document() for _ in range(min(BATCH, count - done))]
        for document, written in zip(documents, exchange(rewriter, documents)):
            expected = understood(document)
            valid += expected is not None
            if (written is None) == (expected is None) and (written is None or understood(written) == expected):
                continue
            differences += 1
            if differences <= 10:
                verdict = "refuses" if written is None else "takes" if expected is None else "changes"
                print(f"the program {verdict}: {document!r}\n  and writes {written!r}")
        done += len(documents)
    print(f"seed {seed}: {done} documents, {valid} of them layouts files; {differences} differences")
    # A generator that no longer generates either kind shows nothing.
    sys.exit(0 if differences == 0 and 0.2 < valid / done < 0.8 else 1)


if __name__ == "__main__":
    main()
