#!/usr/bin/env python3
"""Tests compare_documents.py: what counts as a difference, and what does not."""

import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import compare_documents

SCHEMA_INSTANCE = "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"

# first document, second document, the kinds of the differences
CASES = [
    ("<a/>", "<a></a>", []),
    ("<a><b/> <c/></a>", "<a>\n\t<b/><!-- c --><c/></a>", []),
    ("<p:a xmlns:p='u'><p:b/></p:a>", "<a xmlns='u'><b/></a>", []),
    ("<a xmlns='u'/>", "<a/>", ["name"]),
    ("<a><b/></a>", "<a><b xmlns='u'/></a>", ["element lost", "element added"]),
    ("<a><b/><c/></a>", "<a><c/><b/></a>", ["order"]),
    ("<a><b/><b/></a>", "<a><b/></a>", ["element lost"]),
    ("<a x='1' y='2'/>", "<a y='2' x='1'/>", []),
    ("<a x='1'/>", "<a y='1'/>", ["attribute lost", "attribute added"]),
    ("<a>1.50</a>", "<a>1.5</a>", ["lexical"]),
    ("<a>1.50</a>", "<a>1.51</a>", ["value"]),
    ("<a>1E2</a>", "<a>100.0</a>", ["lexical"]),
    ("<a>0.1</a>", "<a>0.10000000000000001</a>", ["value"]),
    ("<a>true</a>", "<a>1</a>", ["lexical"]),
    ("<a>true</a>", "<a>false</a>", ["value"]),
    ("<a> x </a>", "<a>x</a>", ["lexical"]),
    ("<a>x y</a>", "<a>xy</a>", ["value"]),
    ("<a>2001-01-01T00:00:00+00:00</a>", "<a>2001-01-01T00:00:00Z</a>", ["lexical"]),
    ("<a>2001-01-01T01:00:00.50+01:00</a>", "<a>2001-01-01T00:00:00.5Z</a>", ["lexical"]),
    ("<a>2001-01-01T01:00:00</a>", "<a>2001-01-01T01:00:00Z</a>", ["value"]),
    ("<a>P1Y</a>", "<a>P12M</a>", ["lexical"]),
    ("<a>PT90S</a>", "<a>PT1M31S</a>", ["value"]),
    ("<a>AAECAwQF BgcICQ==</a>", "<a>AAECAwQFBgcICQ==</a>", ["lexical"]),
    ("<a>0a1B</a>", "<a>0A1B</a>", ["lexical"]),
    ("<a>1.0 2.50</a>", "<a>1 2.5</a>", ["lexical"]),
    ("<a xmlns:p='u'>p:b p:c</a>", "<a xmlns:q='u'>q:b q:c</a>", ["lexical"]),
    ("<a xmlns:p='u'>p:b</a>", "<a xmlns:q='v'>q:b</a>", ["value"]),
    ("<a x='p:b'/>", "<a xmlns:q='v' x='q:b'/>", ["value"]),
    ("<a xmlns='u'>b</a>", "<q:a xmlns:q='u'>q:b</q:a>", ["lexical"]),
    ("<a>t<b/>u</a>", "<a>t<b/>u</a>", []),
    ("<a>t<b/>u</a>", "<a><b/>tu</a>", ["mixed text"]),
    ("<a><b/></a>", "<a><b/>t</a>", ["text added"]),
    (f"<a {SCHEMA_INSTANCE} xsi:type='p:T' xmlns:p='u'/>", f"<a {SCHEMA_INSTANCE} xsi:type='q:T' xmlns:q='u'/>", []),
    (f"<a {SCHEMA_INSTANCE} xsi:type='T'/>", "<a/>", ["xsi:type lost"]),
    (f"<a {SCHEMA_INSTANCE} xsi:nil='1'/>", f"<a {SCHEMA_INSTANCE} xsi:nil='true'/>", []),
    (f"<a {SCHEMA_INSTANCE} xsi:schemaLocation='u v'/>", "<a/>", []),
    ("<?xml version='1.0' encoding='windows-1251'?><a>\u041f</a>", "<a>\u041f</a>", []),
]


class CompareDocuments(unittest.TestCase):
    def write(self, folder, name, text):
        path = os.path.join(folder, name)
        with open(path, "wb") as file:
            file.write(text.encode("windows-1251" if "windows-1251" in text else "utf-8"))
        return path

    def test_cases(self):
        with tempfile.TemporaryDirectory() as folder:
            for first, second, kinds in CASES:
                with self.subTest(first=first, second=second):
                    paths = self.write(folder, "first.xml", first), self.write(folder, "second.xml", second)
                    found = compare_documents.compare(*paths)
                    self.assertEqual([kind for kind, _, _ in found], kinds, found)


if __name__ == "__main__":
    unittest.main()
