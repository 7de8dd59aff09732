#!/usr/bin/env python3
"""Compares two XML documents by content: elements, attributes, their values, and the order of elements and text.

Usage: compare_documents.py FIRST SECOND

Comments, processing instructions, prefixes and white space between elements do not count, nor do the attributes that
name schema documents. Two texts that differ are the same value if both are forms of one number, truth value, date,
time, duration or octet sequence, or differ in white space at their ends; the comparison reports them as "lexical".
Names with a prefix that is declared in both documents are the same value if their namespaces and local names are. The
first document is the original.

The exit status is 0 if the documents have the same content, 1 if not, 2 if one of them cannot be read. Each line of the
output is a difference: its kind, the place, and what was found.
"""

import base64
import binascii
import re
import sys
import xml.parsers.expat
from collections import Counter
from datetime import datetime, timedelta, timezone
from decimal import Decimal

XSI = "http://www.w3.org/2001/XMLSchema-instance"
IGNORED = {XSI + "|schemaLocation", XSI + "|noNamespaceSchemaLocation"}


class Element:
    """An element: its expanded name, attributes, and content, which is a list of texts and elements."""

    def __init__(self, name, attributes, scope):
        self.name = name
        self.attributes = attributes
        self.scope = scope  # the namespace of each prefix
        self.content = []

    def children(self):
        return [part for part in self.content if isinstance(part, Element)]

    def text(self):
        return "".join(part for part in self.content if isinstance(part, str))

    def is_mixed(self):
        return bool(self.children()) and bool(self.text().strip())


class Reader:
    """Builds the tree of a document. The namespaces in scope are needed for the names in xsi:type."""

    def __init__(self):
        self.parser = xml.parsers.expat.ParserCreate(namespace_separator="|")
        self.parser.buffer_text = True
        self.parser.StartElementHandler = self.start
        self.parser.EndElementHandler = self.end
        self.parser.CharacterDataHandler = self.characters
        self.parser.StartNamespaceDeclHandler = self.declare
        self.parser.EndNamespaceDeclHandler = self.undeclare
        self.scopes = {}
        self.scope = {}
        self.changed = False
        self.open = []
        self.root = None

    def declare(self, prefix, uri):
        self.scopes.setdefault(prefix or "", []).append(uri or "")
        self.changed = True

    def undeclare(self, prefix):
        self.scopes[prefix or ""].pop()
        self.changed = True

    def expand(self, name):
        prefix, colon, local = name.strip().partition(":")
        if not colon:
            prefix, local = "", prefix
        uris = self.scopes.get(prefix) or [""]
        return uris[-1] + "|" + local

    def start(self, name, attributes):
        kept = {key: value for key, value in attributes.items() if key not in IGNORED}
        if XSI + "|type" in kept:
            kept[XSI + "|type"] = self.expand(kept[XSI + "|type"])
        if self.changed:
            self.scope = {prefix: uris[-1] for prefix, uris in self.scopes.items() if uris}
            self.changed = False
        element = Element(name, kept, self.scope)
        if self.open:
            self.open[-1].content.append(element)
        else:
            self.root = element
        self.open.append(element)

    def end(self, _name):
        self.open.pop()

    def characters(self, text):
        content = self.open[-1].content
        if content and isinstance(content[-1], str):
            content[-1] += text
        else:
            content.append(text)


def read(path):
    reader = Reader()
    with open(path, "rb") as file:
        reader.parser.ParseFile(file)  # Python's parser knows all encodings of one byte a character
    return reader.root


# ---- Values


def as_number(text):
    if re.fullmatch(r"[+-]?(\d+(\.\d*)?|\.\d+)", text):
        return Decimal(text)
    if re.fullmatch(r"[+-]?(\d+(\.\d*)?|\.\d+)[eE][+-]?\d{1,3}", text):
        return float(text)
    return {"INF": float("inf"), "-INF": float("-inf")}.get(text)


def as_moment(text):
    """A date, time or both, with and without zone, as a comparable value."""
    form = r"(?:(-?\d{4,})-(\d\d)-(\d\d))?(T)?(?:(\d\d):(\d\d):(\d\d)(?:\.(\d+))?)?(Z|[+-]\d\d:\d\d)?"
    found = re.fullmatch(form, text)
    if not found or not (found.group(1) or found.group(5)):
        return None
    year, month, day, _, hour, minute, second, fraction, zone = found.groups()
    fraction = (fraction or "").rstrip("0")
    if zone is None or year is None or hour is None or not 1 < int(year) < 9998:
        return (year, month, day, hour, minute, second, fraction, {"+00:00": "Z", "-00:00": "Z"}.get(zone, zone))
    offset = timedelta(0)
    if zone != "Z":
        sign = -1 if zone[0] == "-" else 1
        offset = sign * timedelta(hours=int(zone[1:3]), minutes=int(zone[4:6]))
    days = 0
    if hour == "24":
        hour, days = "00", 1
    moment = datetime(int(year), int(month), int(day), int(hour), int(minute), int(second), tzinfo=timezone.utc)
    return (moment + timedelta(days=days) - offset, fraction)


def as_duration(text):
    form = r"(-?)P(?:(\d+)Y)?(?:(\d+)M)?(?:(\d+)D)?(?:T(?:(\d+)H)?(?:(\d+)M)?(?:(\d+)(?:\.(\d+))?S)?)?"
    found = re.fullmatch(form, text)
    if not found or not any(found.groups()[1:]):
        return None
    sign, years, months, days, hours, minutes, seconds, fraction = found.groups()
    number = lambda digits: int(digits or 0)
    return (
        sign,
        12 * number(years) + number(months),
        86400 * number(days) + 3600 * number(hours) + 60 * number(minutes) + number(seconds),
        (fraction or "").rstrip("0"),
    )


def as_octets(text):
    packed = "".join(text.split())
    if re.fullmatch(r"([0-9A-Fa-f]{2})+", packed):
        return packed.upper()
    if re.fullmatch(r"[A-Za-z0-9+/]+={0,2}", packed) and (len(packed) > 8 or packed != text):
        try:
            return base64.b64decode(packed + "=" * (-len(packed) % 4))
        except binascii.Error:
            return None
    return None


def as_truth(text):
    return {"true": True, "1": True, "false": False, "0": False}.get(text)


def same_value(first, second):
    first, second = " ".join(first.split()), " ".join(second.split())
    if first == second:
        return True
    for form in (as_number, as_truth, as_moment, as_duration, as_octets):
        one, other = form(first), form(second)
        if one is not None and other is not None:
            if type(one) is not type(other):
                one, other = float(one), float(other)
            if one == other:
                return True
    ones, others = first.split(" "), second.split(" ")
    return len(ones) == len(others) > 1 and all(same_value(one, other) for one, other in zip(ones, others))


def expanded(name, scope):
    """The namespace and local name of a name; None where its prefix is not declared."""
    prefix, colon, local = name.partition(":")
    if not colon:
        prefix, local = "", name
    return (scope.get(prefix, "" if not prefix else None), local)


def same_names(first, second):
    """Whether two values, each with its scope, are the same list of names, one of them with a prefix."""
    ones, others = first[0].split(), second[0].split()
    if len(ones) != len(others) or not ones:
        return False
    for one, other in zip(ones, others):
        form = r"([^\W\d][\w.-]*:)?[^\W\d][\w.-]*"
        if not re.fullmatch(form, one) or not re.fullmatch(form, other):
            return False
        name = expanded(one, first[1])
        if name[0] is None or name != expanded(other, second[1]):
            return False
    return True


# ---- Comparison


class Comparison:
    def __init__(self):
        self.differences = []  # (kind, place, what was found)

    def note(self, kind, place, found):
        self.differences.append((kind, place, found))

    def text(self, place, first, second, scopes):
        if first == second:
            return
        same = same_value(first, second) or same_names((first, scopes[0]), (second, scopes[1]))
        self.note("lexical" if same else "value", place, f"{first[:60]!r} -> {second[:60]!r}")

    def attributes(self, place, first, second):
        for name, value in first.attributes.items():
            where = f"{place}/@{name}"
            if name not in second.attributes:
                self.note("xsi:type lost" if name == XSI + "|type" else "attribute lost", where, value[:60])
            elif name == XSI + "|nil":
                if as_truth(value.strip()) != as_truth(second.attributes[name].strip()):
                    self.note("nil", where, value)
            else:
                self.text(where, value, second.attributes[name], (first.scope, second.scope))
        for name, value in second.attributes.items():
            if name not in first.attributes and not (name == XSI + "|nil" and value == "false"):
                self.note("attribute added", f"{place}/@{name}", value[:60])

    def children(self, place, first, second):
        ones, others = first.children(), second.children()
        names, other_names = [one.name for one in ones], [other.name for other in others]
        if names == other_names:
            seen = Counter()
            for one, other in zip(ones, others):
                seen[one.name] += 1
                self.elements(f"{place}/{one.name.rpartition('|')[2]}[{seen[one.name]}]", one, other)
            return
        lost, added = Counter(names) - Counter(other_names), Counter(other_names) - Counter(names)
        for name, count in lost.items():
            self.note("element lost", f"{place}/{name}", str(count))
        for name, count in added.items():
            self.note("element added", f"{place}/{name}", str(count))
        if not lost and not added:
            self.note("order", place, "the children are in another order")

    def elements(self, place, first, second):
        if first.name != second.name:
            return self.note("name", place, f"{first.name} -> {second.name}")
        self.attributes(place, first, second)
        if first.is_mixed():
            split = lambda element: [
                " ".join(part.split()) if isinstance(part, str) else part.name
                for part in element.content
                if not isinstance(part, str) or part.strip()
            ]
            if split(first) != split(second):
                self.note("mixed text", place, first.text().strip()[:60])
        elif not first.children() and not second.children():
            self.text(place, first.text(), second.text(), (first.scope, second.scope))
        elif second.is_mixed():
            self.note("text added", place, second.text().strip()[:60])
        self.children(place, first, second)


def compare(first, second):
    """Return the differences between two documents as (kind, place, what was found)."""
    comparison = Comparison()
    one, other = read(first), read(second)
    comparison.elements("/" + one.name.rpartition("|")[2], one, other)
    return comparison.differences


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    try:
        differences = compare(sys.argv[1], sys.argv[2])
    except (OSError, xml.parsers.expat.ExpatError, LookupError, UnicodeError) as failure:
        print(f"compare_documents.py: {failure}", file=sys.stderr)
        return 2
    for difference in differences:
        print("%s: %s: %s" % difference)
    return 1 if any(kind != "lexical" for kind, _, _ in differences) else 0


if __name__ == "__main__":
    sys.setrecursionlimit(20000)
    sys.exit(main())
