#!/usr/bin/env python3
"""Damages real documents, and checks that the failure of reading each of them names the damaged spot.

Usage: damage.py --schemas FOLDER --build FOLDER --source FOLDER [--work FOLDER] [--compiler COMMAND] [SET ...]

The options are those of check_schemas.py. SET are the sets whose documents are damaged; ten of them by default.

Of each set, one valid document is damaged in twenty ways: values, attributes, additional, missing, repeated, renamed and
exchanged elements, and end tags. A schema does not show every damage; where it does, line, column and path of the
failure must be those of the damage. The table shows how many damages were noticed, how many of these failures have the
right place, and how many failures a sink receives for them. The exit status is 1 if a place is wrong.
"""

import os
import random
import re
import subprocess
import sys
import xml.parsers.expat

import check_schemas

SETS = "bcf camt053 epp gpx11 jpaorm junit maven4 rss20 wsdl11 xliff20".split()
WAYS = 20
TAG = re.compile(rb"""<[^\s/>]+(?:\s+[^\s=]+\s*=\s*(?:"[^"]*"|'[^']*'))*\s*/?>""")
ATTRIBUTE = re.compile(rb"""\s+([^\s=]+)\s*=\s*("[^"]*"|'[^']*')""")
BAD = b"~ bad ~"


class Element:
    def __init__(self, name, parent, start):
        self.name, self.parent, self.start = name, parent, start
        self.children = []
        self.inside = self.end_tag = self.end = -1  # offsets: after the start tag, of the end tag, after it

    def is_leaf(self):
        return not self.children

    def path(self):
        twins = [other for other in self.parent.children if other.name == self.name] if self.parent else [self]
        index = f"[{twins.index(self) + 1}]" if len(twins) > 1 else ""
        return (self.parent.path() if self.parent else "") + "/" + self.name + index


def parse(text):
    """The elements of a document in the order of their start tags, as far as it is well-formed."""
    elements, open_elements = [], []
    parser = xml.parsers.expat.ParserCreate()

    def start(name, _):
        element = Element(name, open_elements[-1] if open_elements else None, parser.CurrentByteIndex)
        if element.parent:
            element.parent.children.append(element)
        element.inside = TAG.match(text, element.start).end()
        elements.append(element)
        open_elements.append(element)

    def end(_):
        element = open_elements.pop()
        is_empty = text[element.inside - 2:element.inside] == b"/>"
        element.end_tag = element.start if is_empty else parser.CurrentByteIndex
        element.end = element.inside if is_empty else text.index(b">", element.end_tag) + 1

    parser.StartElementHandler, parser.EndElementHandler = start, end
    try:
        parser.Parse(text, True)
    except xml.parsers.expat.ExpatError:
        pass
    return elements, open_elements


def attributes(text, element):
    tag = text[element.start:element.inside]
    found = [(element.start + match.start(1), match) for match in ATTRIBUTE.finditer(tag)]
    return [(offset, match) for offset, match in found if not match[1].startswith((b"xmlns", b"xsi:", b"xml:"))]


def line_and_column(text, offset):
    before = text[:offset].decode("utf-8-sig")
    lines = re.split("\r\n|\r|\n", before)
    return len(lines), len(lines[-1]) + 1


class Damage:
    """The damaged text, and the offsets at which a failure may be: of start tags, end tags and attributes."""

    def __init__(self, kind, text, *offsets):
        self.kind, self.text, self.offsets = kind, text, offsets

    def places(self):
        elements, still_open = parse(self.text)
        for offset in self.offsets:
            position = line_and_column(self.text, offset)
            if still_open:  # not well-formed
                yield (*position, still_open[-1].path())
                continue
            for element in elements:
                if offset == element.start or offset == element.end_tag:
                    yield (*position, element.path())
                elif element.start < offset < element.inside:
                    name = re.match(rb"[^\s=]+", self.text[offset:])[0].decode()
                    yield (*position, f"{element.path()}/@{name}")


def damages(text, chance):
    """All kinds of damage in turn, each at a random spot that allows it."""
    elements = parse(text)[0]
    inner = elements[1:]

    def cut(begin, end, replacement=b""):
        return text[:begin] + replacement + text[end:]

    def value():
        leaf = chance.choice([e for e in elements if e.is_leaf() and text[e.inside:e.end_tag].strip()])
        return cut(leaf.inside, leaf.end_tag, BAD), leaf.start

    def attribute_value():
        offset, match = chance.choice([found for e in elements for found in attributes(text, e)])
        begin = offset - match.start(1) + match.start(2)
        return cut(begin + 1, begin + len(match[2]) - 1, BAD), offset

    def new_element():
        element = chance.choice(inner)
        return cut(element.start, element.start, b"<damage/>"), element.start

    def new_attribute():
        element = chance.choice(elements)
        at = element.start + 1 + len(element.name.encode())
        return cut(at, at, b' damage="1"'), at + 1

    def renamed():
        element = chance.choice([e for e in inner if e.is_leaf()])
        name = element.name.encode()
        return cut(element.start, element.end, text[element.start:element.end].replace(name, b"damage")), element.start

    def deleted():
        element = chance.choice(inner)
        siblings = element.parent.children
        rest = siblings[siblings.index(element) + 1:]
        at = rest[0].start if rest else element.parent.end_tag
        return cut(element.start, element.end), at - (element.end - element.start)

    def deleted_attribute():
        element, (offset, match) = chance.choice([(e, found) for e in elements for found in attributes(text, e)])
        begin = offset - match.start(1) + match.start()
        return cut(begin, begin + len(match[0])), element.start

    def repeated():
        element = chance.choice(inner)
        return cut(element.end, element.end, text[element.start:element.end]), element.end

    def exchanged():
        pairs = [(first, second) for e in elements for first, second in zip(e.children, e.children[1:])]
        first, second = chance.choice([pair for pair in pairs if pair[0].name != pair[1].name])
        between = text[first.end:second.start]
        new = text[second.start:second.end] + between + text[first.start:first.end]
        return cut(first.start, second.end, new), first.start, second.end - (first.end - first.start)

    def end_tag():
        element = chance.choice([e for e in inner if e.end_tag != e.start])
        return cut(element.end_tag, element.end, b"</damage>"), element.end_tag + 2

    kinds = [value, attribute_value, new_element, new_attribute, renamed, deleted, deleted_attribute, repeated, exchanged,
             end_tag]
    made = []
    while len(made) < WAYS and kinds:
        for kind in list(kinds):
            try:
                made.append(Damage(kind.__name__, *kind()))
            except IndexError:  # the document has no spot for it
                kinds.remove(kind)
    return made[:WAYS]


def read(program, paths):
    result = subprocess.run([program], input="".join(path + "\n" for path in paths).encode(), stdout=subprocess.PIPE,
                            check=True, env=dict(os.environ, LC_ALL="C"))
    return [line.split("\t")[1:] for line in result.stdout.decode("utf-8", "replace").splitlines()]


def choose(schema_set, program):
    """The largest document of up to 100 kB that is in UTF-8 and that the classes read."""
    for path in sorted(schema_set.valid, key=os.path.getsize, reverse=True):
        with open(path, "rb") as file:
            text = file.read()
        is_plain = len(text) <= 100_000 and b"<!DOCTYPE" not in text and re.match(
            rb"(\xEF\xBB\xBF)?(<\?xml(?![^>]*encoding)|<\?xml[^>]*utf-8|<[^?])", text, re.IGNORECASE)
        if is_plain and read(program, [path])[0][1] == "read":
            return path, text
    raise SystemExit(f"{schema_set.name}: there is no document to damage")


def check(schema_set, arguments):
    folder = check_schemas.empty_folder(schema_set, arguments)
    sources = check_schemas.generate(schema_set, arguments, folder)
    program = check_schemas.compile_sources(schema_set, arguments, folder, sources, "damage_driver.cpp")
    if program is None:
        raise SystemExit(f"{schema_set.name}: {schema_set.failure} failed\n" + "\n".join(schema_set.details))
    path, text = choose(schema_set, program)
    made = damages(text, random.Random(schema_set.name))
    paths = [os.path.join(folder, f"damaged{number:02}.xml") for number in range(len(made))]
    for damage, target in zip(made, paths):
        with open(target, "wb") as file:
            file.write(damage.text)
    noticed = right = told = most = 0
    for damage, target, (count, *verdict) in zip(made, paths, read(program, paths)):
        if verdict[0] == "read":
            continue
        noticed += 1
        told += int(count)
        most = max(most, int(count))
        found = (int(verdict[0]), int(verdict[1]), verdict[2])
        expected = list(damage.places())
        right += found in expected
        if found not in expected:
            print(f"{target}: {damage.kind}: found {found}, expected {expected}: {verdict[3]}")
    print(f"{schema_set.name:12} {os.path.basename(path):40} {len(made):7} {noticed:7} {right:5} {told:8} {most:4}")
    return len(made), noticed, right


def main():
    arguments = check_schemas.make_parser(__doc__).parse_args()
    arguments.work = arguments.work or os.path.join(arguments.build, "damage")
    names = arguments.sets or SETS
    print(f"{'set':12} {'document':40} {'damages':>7} {'noticed':>7} {'right':>5} {'failures':>8} {'most':>4}")
    results = [check(found, arguments) for found in check_schemas.load_sets(arguments.schemas) if found.name in names]
    made, noticed, right = map(sum, zip(*results))
    print(f"{len(results)} documents, {made} damages, {noticed} noticed, {right} of them with the right place")
    return 0 if right == noticed else 1


if __name__ == "__main__":
    sys.exit(main())
