#!/usr/bin/env python3
"""Reads documents and classic archives of drawings with nothing but the page that describes their format.

    read_document.py FORMAT_PAGE FILE...

Prints every value with its offset in the content and its place in the tree. Where FILE.dump lies beside a file,
it holds what `zel info --dump` printed for it and must agree value by value; FILE.facts holds lines
`place = value` that must be true. Fails when a byte is left over, a value is not as the page says, or a
comparison does not hold."""

import json
import math
import re
import struct
import sys
import zlib

NUMBERS = {"byte": "<B", "flag": "<B", "word": "<H", "dword": "<I", "qword": "<Q", "int": "<i",
           "float": "<f", "double": "<d"}
MAGIC = bytes.fromhex("89 5A 45 4C 0D 0A 1A 0A")
VERSION = 2
HEADER_SIZE = 40


class Broken(Exception):
    pass


class Field:
    """One line of a layout."""

    PATTERN = re.compile(r"(?P<dialect>[+-]?)(?P<since>\d*)\s*(?P<name>@|\w+)\s+(?P<type>\w+)"
                         r"(?:\s+\[(?P<count>[^]]+)\])?(?:\s+if (?P<condition>\w+))?\s*(?:;.*)?$")

    def __init__(self, line):
        match = self.PATTERN.match(line)
        if not match:
            raise Broken(f"the page has a line that is no field: {line!r}")
        self.__dict__.update(match.groupdict())


def read_layouts(page):
    """The layouts of the page by name."""
    layouts = {}
    with open(page, encoding="utf-8") as file:
        boxes = re.findall(r"^```layout\n(.*?)^```", file.read(), re.M | re.S)
    for line in "".join(boxes).splitlines():
        if not line.strip():
            continue
        if re.match(r"\w", line):
            fields = layouts.setdefault(line.split(";")[0].strip(), [])
        else:
            fields.append(Field(line))
    return layouts


class Value:
    """A value as it was read: bytes [offset, end) of the content. Objects are values of no bytes of their own."""

    def __init__(self, offset, end, place, kind, value):
        self.offset, self.end, self.place, self.kind, self.value = offset, end, place, kind, value

    def shown(self):
        if self.kind == "text":
            return json.dumps(self.value, ensure_ascii=False)
        if self.kind == "bytes":
            return self.value.hex(" ")
        return str(self.value)


class Reader:
    """Reads content into a list of values."""

    def __init__(self, layouts, content, dialect, version=VERSION):
        self.layouts, self.content, self.dialect, self.version = layouts, content, dialect, version
        self.at = 0
        self.values = []
        self.classes = {}
        self.numbered = 0

    def take(self, size, place):
        if size > len(self.content) - self.at:
            raise Broken(f"offset {self.at}: {place} needs {size} bytes, and {len(self.content) - self.at} are left")
        self.at += size
        return self.content[self.at - size:self.at]

    def number(self, kind, place):
        code = NUMBERS[kind]
        return struct.unpack(code, self.take(struct.calcsize(code), place))[0]

    def count(self, place):
        count = self.number("word", place)
        return count if count < 0xFFFF else self.number("dword", place)

    def text(self, place):
        def length():
            short = self.number("byte", place)
            if short < 0xFF:
                return short, False
            middle = self.number("word", place)
            if middle == 0xFFFE:
                return length()[0], True
            return (middle if middle < 0xFFFF else self.number("dword", place)), False
        size, wide = length()
        if wide:
            return self.take(2 * size, place).decode("utf-16-le", "replace")
        return self.take(size, place).decode("utf-8", "surrogateescape")

    def value(self, kind, place, known, count=None):
        """A value of any type; returns it when it is a number."""
        begin = self.at
        if kind == "object":
            return self.object(place)
        if kind == "bytes":
            value = self.take(count, place)
        elif kind == "text":
            value = self.text(place)
        elif kind == "count":
            value = self.count(place)
        elif kind in NUMBERS:
            value = self.number(kind, place)
            if kind == "flag" and value > 1:
                raise Broken(f"offset {begin}: {place} is a flag and has the value {value}")
        elif kind in self.layouts:
            return self.fields(kind, place, known)
        else:
            raise Broken(f"the page has no layout {kind!r}, which {place} is said to be")
        self.values.append(Value(begin, self.at, place, kind, value))
        return value

    def fields(self, layout, place, outer):
        """All fields of a layout. What has been read is known by its name to the layouts inside."""
        known = dict(outer)
        self.fields_into(layout, place, known)

    def fields_into(self, layout, place, known):
        if layout not in self.layouts:
            raise Broken(f"offset {self.at}: the page has no layout {layout!r}, which {place or 'the drawing'} is")
        for field in self.layouts[layout]:
            if field.dialect and field.dialect != self.dialect:
                continue
            if field.since and int(field.since) > self.version:
                continue
            if field.name == "@":
                self.fields_into(field.type, place, known)
            else:
                self.field(field, f"{place}.{field.name}" if place else field.name, known)

    def field(self, field, place, known):
        if field.condition and not known[field.condition]:
            return
        if field.count is None:
            known[field.name] = self.value(field.type, place, known)
            return
        count = math.prod(int(factor) if factor.isdigit() else known[factor]
                          for factor in map(str.strip, field.count.split("*")))
        if field.type == "bytes":
            self.value("bytes", place, known, count)
            return
        for i in range(count):
            self.value(field.type, f"{place}[{i}]", known)

    def object(self, place):
        begin = self.at
        tag = self.number("word", place)
        if tag == 0:
            self.values.append(Value(begin, self.at, place, "nothing", "nothing"))
            return
        new = tag == 0xFFFF
        if new:
            schema, size = self.number("word", place), self.number("word", place)
            name = self.take(size, place).decode("ascii", "replace")
            if schema != 0:
                raise Broken(f"offset {begin}: class {name} has the schema {schema}")
            self.numbered += 1
            self.classes[self.numbered] = name
        else:
            big = tag == 0x7FFF
            index, mark = (self.number("dword", place), 1 << 31) if big else (tag, 1 << 15)
            if not index & mark:
                raise Broken(f"offset {begin}: {place} is object {index} again")
            if index - mark not in self.classes:
                raise Broken(f"offset {begin}: {place} is of class {index - mark}, and there is none of that number")
            name = self.classes[index - mark]
        self.numbered += 1
        self.values.append(Value(begin, self.at, place, "object", f"{name} #{self.numbered}"))
        self.fields(name, place, {})


def read_header(layouts, data):
    """Checks the header of a document and returns its values."""
    header = Reader(layouts, data[:HEADER_SIZE], "+")
    header.fields("DocumentHeader", "header", {})
    if header.at != HEADER_SIZE:
        raise Broken(f"the page describes a header of {header.at} bytes, not of {HEADER_SIZE}")
    found = {value.place.split(".")[1]: value.value for value in header.values}
    expected = {"headerChecksum": zlib.crc32(data[:36]), "contentLength": len(data) - HEADER_SIZE,
                "contentChecksum": zlib.crc32(data[HEADER_SIZE:]), "dialect": 0, "reserved": 0}
    if not 1 <= found["version"] <= VERSION:
        raise Broken(f"header: version {found['version']}, and this reader knows versions up to {VERSION}")
    for name, value in expected.items():
        if found[name] != value:
            raise Broken(f"header: {name} is {found[name]}, and should be {value}")
    if found["rules"] > 1:
        raise Broken(f"header: there are no rules {found['rules']}")
    return header.values


def read_file(layouts, data):
    """The values of the header, none for a classic archive, and of the content."""
    header = []
    if data.startswith(MAGIC):
        header = read_header(layouts, data)
        version = next(value.value for value in header if value.place == "header.version")
        reader = Reader(layouts, data[HEADER_SIZE:], "+", version)
    else:
        reader = Reader(layouts, data, "-")
    if reader.content[:2] == b"\xff\xff":
        reader.object("")
    elif header:
        raise Broken("offset 0: the content of a document begins with a new class")
    else:
        reader.fields("Zel2Main", "", {})
    if reader.at != len(reader.content):
        raise Broken(f"offset {reader.at}: {len(reader.content) - reader.at} bytes follow the drawing")
    return header, reader.values


DUMPED = re.compile(r" *(\d+) +(?:(?P<new>object of (?:the new )?class) (?P<name>\w+), number (?P<number>\d+)"
                    r"|(?P<nothing>no object)|text (?P<text>\".*\")|(?P<size>\d+) bytes:(?P<bytes>[ 0-9a-f]*?)( \.\.\.)?"
                    r"|(?P<kind>int|float)(?P<bits>\d+) (?P<value>\S+))$")


def compare_with_dump(values, content, lines):
    """Goes through what the library read beside what was read here; each must cover the same bytes the same way."""
    values, lines = iter(values), iter(lines)
    at = 0
    for line in lines:
        if line.startswith("document of version"):
            continue
        match = DUMPED.match(line)
        if not match:
            raise Broken(f"the library printed a line that is no value: {line!r}")
        begin = int(match[1])

        def must(holds, value, what):
            if not holds:
                raise Broken(f"offset {begin}: the page says {value.place} = {value.shown()} ({value.kind}), "
                             f"the library {what}: {line.strip()}")

        if match["size"] == "0":
            continue
        value = next(values, None)
        if value is None:
            raise Broken(f"offset {begin}: the page says that nothing follows, the library read {line.strip()}")
        must(value.offset == begin, value, f"reads on at another offset than {value.offset}")
        if match["size"]:
            end = begin + int(match["size"])
            while value.end < end:
                value = next(values, None)
                if value is None:
                    raise Broken(f"offset {begin}: the page ends within what the library read: {line.strip()}")
            must(value.end == end, value, f"read a block up to {end}")
            shown = bytes.fromhex(match["bytes"])
            must(content[begin:begin + len(shown)] == shown, value, "read other bytes")
        elif match["name"]:
            must(value.kind == "object" and value.value == f"{match['name']} #{match['number']}", value, "differs")
        elif match["nothing"]:
            must(value.kind == "nothing", value, "differs")
        elif match["text"]:
            must(value.kind == "text" and value.value == json.loads(match["text"]), value, "differs")
        elif value.kind == "count" and value.end - begin > 2:
            # Read in two steps: the word that announces it, and the number.
            announced = line.split()[-2:] == ["int16", "65535"]
            line = next(lines, "nothing")
            must(announced and line.split() == [str(begin + 2), "int32", str(value.value)], value, "differs")
        else:
            must(value.end - begin == int(match["bits"]) // 8, value, "read another size")
            must((value.kind in ("float", "double")) == (match["kind"] == "float"), value, "read another type")
            same = float(match["value"]) == value.value if match["kind"] == "float" else int(match["value"]) == value.value
            must(same or "nan" in match["value"] and math.isnan(value.value), value, "differs")
        at = value.end
    if at != len(content):
        raise Broken(f"offset {at}: the library read no further, {len(content)} bytes are there")


def compare_with_facts(values, lines):
    """Each line `place = value` must be among the values."""
    found = {value.place: value.shown() for value in values}
    for line in lines:
        place, expected = line.split(" = ", 1)
        if place not in found:
            raise Broken(f"the page has no {place}, whose value is {expected}")
        if found[place] != expected:
            raise Broken(f"the page says {place} = {found[place]}, and it is {expected}")


def lines_beside(path, ending):
    """The lines of the file beside `path`; none when there is no such file."""
    try:
        with open(path + ending, encoding="utf-8", errors="surrogateescape") as file:
            return file.read().split("\n")[:-1]
    except FileNotFoundError:
        return None


def read_and_compare(layouts, path):
    """All values of a file."""
    with open(path, "rb") as file:
        data = file.read()
    header, values = read_file(layouts, data)
    dump, facts = lines_beside(path, ".dump"), lines_beside(path, ".facts")
    if dump is not None:
        compare_with_dump(values, data[HEADER_SIZE if header else 0:], dump)
    if facts is not None:
        compare_with_facts(header + values, facts)
    return header + values


def main():
    if len(sys.argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    sys.stdout.reconfigure(encoding="utf-8", errors="surrogateescape")
    path = sys.argv[1]
    try:
        layouts = read_layouts(path)
        for path in sys.argv[2:]:
            values = read_and_compare(layouts, path)
            print(f"{path}: {len(values)} values")
            for value in values:
                print(f"{value.offset:10}  {value.place or 'drawing'} = {value.shown()}")
    except (Broken, OSError) as error:
        print(f"{path}: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
