#!/usr/bin/env python3
"""Compares the classes that this program and CodeSynthesis XSD generate for real schemas.

Usage: bench_schemas.py --schemas FOLDER --build FOLDER --source FOLDER [--work FOLDER] [--compiler COMMAND] [SET ...]

The arguments are those of check_schemas.py. For each set and each generator, the table shows the seconds to generate,
the lines of the generated files, the seconds of processor time to compile them without optimisation, the octets of text
and data of their objects, how many of the valid documents are read and written, and the milliseconds of processor time
that this takes for all of them, in memory, by optimised code. Neither side checks more than reading needs: the peer reads with
dont_validate.

CodeSynthesis XSD is the program xsdcxx with libxerces-c-dev (the names of the Debian packages). A "-" stands where they
are not installed, or do not get that far.
"""

import argparse
import glob
import os
import re
import resource
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

import check_schemas

HEAD = ("set", "generator", "s", "lines", "compile s", "octets", "read", "of", "ms")
FORM = "{:12} {:10} {:>6} {:>8} {:>9} {:>10} {:>5} {:>4} {:>8}"
CATALOG = "{urn:oasis:names:tc:entity:xmlns:xml:catalog}"


class Failed(Exception):
    """A step of one side does not succeed; what the columns have until then is shown."""


def run(command, **options):
    """Run a command, and return its output and the seconds of processor time that it took."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False, **options)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if result.returncode != 0:
        sys.stderr.write(f"{' '.join(command)[:200]}\n{result.stderr.decode('utf-8', 'replace')[:2000]}\n")
        raise Failed()
    return result.stdout.decode("utf-8", "replace"), \
        after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


class Side:
    """What the sides have in common: how their sources are compiled and measured."""

    def __init__(self, arguments, schema_set):
        self.arguments = arguments
        self.set = schema_set
        self.folder = os.path.join(arguments.work, "bench", schema_set.name, self.name)
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(self.folder)
        self.columns = {}

    def catalog(self):
        path = os.path.join(self.set.folder, "catalog.xml")
        return path if os.path.exists(path) else None

    def compile(self, sources, level, flags):
        """Compile the sources, and return the objects and the seconds."""
        objects = []
        total = 0
        for number, source in enumerate(sources):
            target = os.path.join(self.folder, f"{number}{level}.o")
            command = self.arguments.compiler.split() + ["-std=c++17", level, "-w", "-I", self.folder, *flags]
            total += run(command + ["-c", source, "-o", target])[1]
            objects.append(target)
        return objects, total

    def measure(self):
        self.columns["s"] = f"{self.generate():.2f}"
        sources = sorted(glob.glob(os.path.join(self.folder, self.sources)))
        files = sources + glob.glob(os.path.join(self.folder, self.headers))
        self.columns["lines"] = 0
        for path in files:
            with open(path, "rb") as file:
                self.columns["lines"] += sum(1 for _ in file)
        objects, seconds = self.compile(sources, "-O0", self.flags)
        self.columns["compile s"] = f"{seconds:.1f}"
        sizes = run(["size", *objects])[0].splitlines()[1:]
        self.columns["octets"] = sum(int(line.split()[0]) + int(line.split()[1]) for line in sizes)
        self.send_documents(sources)

    def send_documents(self, sources):
        copy = os.path.join(self.folder, "copy_documents.cc")
        with open(copy, "w", encoding="utf-8") as file:
            file.write(self.copy_function())
        driver = os.path.join(check_schemas.HERE, "bench_driver.cpp")
        objects, _ = self.compile([*sources, copy, driver], "-O2", self.flags)
        program = os.path.join(self.folder, "driver")
        run(self.arguments.compiler.split() + objects + [*self.libraries, "-o", program])
        lines = "".join(f"{root}\t{document}\n" for root, document in self.set.roots)
        read, milliseconds = run([program], input=lines.encode())[0].split()
        self.columns["read"] = read
        self.columns["ms"] = f"{float(milliseconds):.1f}"

    def row(self):
        try:
            self.measure()
        except Failed:
            pass
        self.columns.update({"set": self.set.name, "generator": self.name, "of": len(self.set.valid)})
        return [self.columns.get(name, "-") for name in HEAD]


class Ours(Side):
    name = "quillon9"
    sources = "*.cpp"
    headers = "*.h"

    def __init__(self, arguments, schema_set):
        super().__init__(arguments, schema_set)
        self.flags = ["-I", os.path.join(arguments.source, "include")]
        self.libraries = ["-L", arguments.build, "-lquillon9", "-Wl,-rpath," + os.path.abspath(arguments.build)]

    def generate(self):
        command = [os.path.join(self.arguments.build, "tools", "quillon9"), "generate", "--namespace", "Bound"]
        command += ["--output", self.folder, "--dependency-file", os.path.join(self.folder, "inputs")]
        if self.catalog():
            command += ["--catalog", self.catalog()]
        return run(command + self.set.schemas)[1]

    def inputs(self):
        with open(os.path.join(self.folder, "inputs"), encoding="utf-8") as file:
            paths = [line[:-2].replace("\\ ", " ") for line in file if line.endswith(":\n") and not line.startswith(" ")]
        return [path for path in paths if path.endswith(".xsd")]

    def copy_function(self):
        return ('#include <ostream>\n#include <string>\n#include "bound.h"\n'
                "void Copy(std::string const&, std::string const& text, std::ostream& out) {\n"
                "  out << Bound::ReadRoot(Quillon9::XmlText(text))->ToXml();\n}\n")


class Peer(Side):
    name = "xsdcxx"
    sources = "*.cxx"
    headers = "*.hxx"
    flags = []
    libraries = ["-lxerces-c"]

    def __init__(self, arguments, schema_set, inputs):
        super().__init__(arguments, schema_set)
        self.inputs = inputs
        self.namespaces = {}

    def generate(self):
        if shutil.which("xsdcxx") is None:
            raise Failed()
        command = ["xsdcxx", "cxx-tree", "--std", "c++11", "--generate-serialization", "--generate-polymorphic"]
        command += ["--output-dir", self.folder, "--include-regex", "%.*/([^/]+)%$1%"]  # all files are in one folder
        for path in self.inputs:
            uri = ElementTree.parse(path).getroot().get("targetNamespace", "")
            if uri not in self.namespaces:
                self.namespaces[uri] = f"n{len(self.namespaces)}"
                command += ["--namespace-map", f"{uri}={self.namespaces[uri]}"]
        if self.catalog():
            for entry in ElementTree.parse(self.catalog()).getroot().iter():
                name = entry.get("name") if entry.tag == CATALOG + "uri" else entry.get("systemId")
                if name and entry.get("uri"):
                    command += ["--location-map", f"{name}={os.path.join(self.set.folder, entry.get('uri'))}"]
        return run(command + self.inputs)[1]

    def function_for(self, root, headers):
        """The function for a document element. It has a `_` at its end where a type has its name."""
        uri, local = root[1:].split("}") if root.startswith("{") else ("", root)
        wanted = re.sub("[^A-Za-z0-9_]", "_", local)
        found = re.search(rf"^ +({wanted}_*) \(::std::istream& is,$", headers, re.MULTILINE)
        return f"{self.namespaces.get(uri, '')}::{found.group(1) if found else wanted}"

    def copy_function(self):
        headers = ""
        for path in glob.glob(os.path.join(self.folder, self.headers)):
            with open(path, encoding="utf-8") as file:
                headers += file.read()
        stems = [os.path.splitext(os.path.basename(path))[0] for path in self.inputs]
        includes = "".join(f'#include "{stem}.hxx"\n' for stem in stems)
        branches = ""
        for root in sorted({root for root, _ in self.set.roots}):
            function = self.function_for(root, headers)
            branches += (f'  if (root == "{root}") {{\n    auto const object = {function}(in, kFlags);\n'
                         f'    return {function}(out, *object, {{}}, "UTF-8", kFlags);\n  }}\n')
        return (f"#include <sstream>\n#include <stdexcept>\n#include <xercesc/util/PlatformUtils.hpp>\n{includes}\n"
                "void Copy(std::string const& root, std::string const& text, std::ostream& out) {\n"
                "  static bool const kStarted = (xercesc::XMLPlatformUtils::Initialize(), true);\n"
                "  static_cast<void>(kStarted);\n"
                "  xml_schema::flags const kFlags =\n"
                "      xml_schema::flags::dont_validate | xml_schema::flags::dont_initialize;\n"
                "  std::istringstream in(text);\n" + branches + "  throw std::runtime_error(root);\n}\n")


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    for option in ("--schemas", "--build", "--source"):
        parser.add_argument(option, required=True)
    parser.add_argument("--work")
    parser.add_argument("--compiler", default="g++")
    parser.add_argument("sets", nargs="*")
    arguments = parser.parse_args()
    arguments.work = arguments.work or os.path.join(arguments.build, "schemas")
    sets = check_schemas.load_sets(arguments.schemas)
    unknown = set(arguments.sets) - {found.name for found in sets}
    if unknown:
        parser.error("there is no set " + ", ".join(sorted(unknown)))
    print(FORM.format(*HEAD))
    for schema_set in sets:
        if arguments.sets and schema_set.name not in arguments.sets:
            continue
        ours = Ours(arguments, schema_set)
        print(FORM.format(*ours.row()), flush=True)
        print(FORM.format(*Peer(arguments, schema_set, ours.inputs()).row()), flush=True)


if __name__ == "__main__":
    main()
