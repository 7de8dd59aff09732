#!/usr/bin/env python3
"""Generates classes for real schemas, compiles them, and sends the schemas' real documents through them.

Usage: check_schemas.py --schemas FOLDER --build FOLDER --source FOLDER [--work FOLDER] [--compiler COMMAND]
                        [--details] [--update] [SET ...]

  --schemas   the folder with the schema sets, which has a manifest.tsv
  --build     the build folder, with the library and the program
  --source    the root of the repository
  --work      where generated code and written documents go; SCHEMAS in the build folder by default
  --compiler  g++ by default
  --details   prints each difference and each failure
  --update    writes the results into expected.tsv instead of comparing them with it
  SET         the sets to check; all by default

For each set: the program generates the classes, the compiler compiles them with warnings as errors, and each document
is read, written, read and written again. What is written must have the content of the document (see
compare_documents.py), also after it has been read again. A document that is not valid should be refused.

expected.tsv says how many documents of a set are read, how many come back with their content, and why not all do. The
check fails for a set that does worse, and for a set without a row that does not bring everything back.
"""

import argparse
import collections
import concurrent.futures
import csv
import os
import resource
import subprocess
import sys
import time

import compare_documents

HERE = os.path.dirname(os.path.abspath(__file__))
WARNINGS = "-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror".split()


class Set:
    """One set of schemas with its documents and what was found."""

    def __init__(self, name, folder, rows):
        self.name = name
        self.folder = folder
        self.schemas = [os.path.join(folder, path) for path in rows[0]["main schema file"].split(",")]
        documents = [row for row in rows if row["document"] != "-"]
        self.valid = [os.path.join(folder, row["document"]) for row in documents if row["valid"] == "yes"]
        self.roots = [(row["root element"], os.path.join(folder, row["document"])) for row in documents
                      if row["valid"] == "yes"]
        self.invalid = [os.path.join(folder, row["document"]) for row in documents if row["valid"] != "yes"]
        self.failure = ""
        self.seconds = self.megabytes = self.lines = self.compile_seconds = self.object_kilobytes = 0
        self.read = self.equal = self.refused = 0
        self.causes = collections.Counter()
        self.details = []

    def documents(self):
        return self.valid + self.invalid


def load_sets(folder):
    rows = collections.OrderedDict()
    with open(os.path.join(folder, "manifest.tsv"), encoding="utf-8", newline="") as file:
        for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            rows.setdefault(row["set"], []).append(row)
    return [Set(name, os.path.join(folder, name), group) for name, group in rows.items()]


def run(command, **options):
    """Run a command, and return its result, the seconds, and its peak memory in megabytes."""
    start = time.monotonic()
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options) as process:
        output = process.stdout.read().decode("utf-8", "replace")
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, output, time.monotonic() - start, usage.ru_maxrss / 1024


def generate(schema_set, arguments, folder):
    command = [os.path.join(arguments.build, "tools", "quillon9"), "generate", "--namespace", "Bound"]
    command += ["--output", folder]
    catalog = os.path.join(schema_set.folder, "catalog.xml")
    if os.path.exists(catalog):
        command += ["--catalog", catalog]
    status, output, schema_set.seconds, schema_set.megabytes = run(command + schema_set.schemas)
    schema_set.details += output.splitlines()
    if status != 0:
        schema_set.failure = "generate"
        return []
    files = sorted(entry.path for entry in os.scandir(folder) if entry.is_file())
    for path in files:
        with open(path, encoding="utf-8") as file:
            schema_set.lines += sum(1 for _ in file)
    return [path for path in files if path.endswith(".cpp")]


def compile_sources(schema_set, arguments, folder, sources, driver="driver.cpp"):
    """Compile the sources and the driver, and link them. Return the path of the program."""
    objects = []
    for source in sources + [os.path.join(HERE, driver)]:
        target = os.path.join(folder, os.path.basename(source) + ".o")
        command = arguments.compiler.split() + ["-std=c++17", "-O0", *WARNINGS, "-I", folder]
        command += ["-I", os.path.join(arguments.source, "include"), "-c", source, "-o", target]
        status, output, seconds, _ = run(command)
        schema_set.compile_seconds += seconds
        schema_set.details += output.splitlines()[:40]
        if status != 0:
            schema_set.failure = "compile"
            return None
        objects.append(target)
    schema_set.object_kilobytes = sum(os.path.getsize(path) for path in objects[:-1]) // 1024
    program = os.path.join(folder, "driver")
    command = arguments.compiler.split() + objects + ["-L", arguments.build, "-lquillon9", "-o", program]
    status, output, _, _ = run(command + ["-Wl,-rpath," + os.path.abspath(arguments.build)])
    if status != 0:
        schema_set.failure = "link"
        schema_set.details += output.splitlines()[:40]
        return None
    return program


def send_documents(schema_set, program, folder):
    os.makedirs(os.path.join(folder, "written"), exist_ok=True)
    paths = {}
    for number, document in enumerate(schema_set.documents()):
        stem = os.path.join(folder, "written", f"{number:03}")
        paths[document] = (stem + ".xml", stem + ".again.xml")
    lines = "".join(f"{document}\t{written}\t{again}\n" for document, (written, again) in paths.items())
    environment = dict(os.environ, LC_ALL="C")  # generated classes keep all characters in any locale
    limit = lambda: resource.setrlimit(resource.RLIMIT_CPU, (600, 600))
    result = subprocess.run([program], input=lines.encode(), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            env=environment, preexec_fn=limit, check=False)
    verdicts = dict(line.split("\t", 1) for line in result.stdout.decode("utf-8", "replace").splitlines() if "\t" in line)
    for document in schema_set.documents():
        judge(schema_set, document, verdicts.get(document, f"crash: exit status {result.returncode}"), *paths[document])


def judge(schema_set, document, verdict, written, again):
    is_valid = document in schema_set.valid
    if verdict.startswith("read:"):
        if is_valid:
            schema_set.causes["refused"] += 1
            schema_set.details.append(f"{document}: {verdict}")
        else:
            schema_set.refused += 1
        return
    if not is_valid:
        schema_set.details.append(f"{document}: accepted, although it is not valid")
        return
    if verdict == "read and written":
        schema_set.read += 1
    else:
        schema_set.causes[verdict.partition(":")[0]] += 1
        schema_set.details.append(f"{document}: {verdict}")
        return
    differences = compare_documents.compare(document, written)
    differences += [("unstable", *rest) for _, *rest in compare_documents.compare(written, again)]
    differences = [found for found in differences if found[0] != "lexical"]
    schema_set.equal += not differences
    for kind in {found[0] for found in differences}:
        schema_set.causes[kind] += 1
    schema_set.details += [f"{document}: %s: %s: %s" % found for found in differences[:10]]


def empty_folder(schema_set, arguments):
    """The folder for what is made from a set, without the files of an earlier run."""
    folder = os.path.join(arguments.work, schema_set.name)
    os.makedirs(folder, exist_ok=True)
    for name in os.listdir(folder):
        if os.path.isfile(os.path.join(folder, name)):
            os.remove(os.path.join(folder, name))
    return folder


def check(schema_set, arguments):
    folder = empty_folder(schema_set, arguments)
    sources = generate(schema_set, arguments, folder)
    program = compile_sources(schema_set, arguments, folder, sources) if sources else None
    if program:
        send_documents(schema_set, program, folder)
    return schema_set


def report(results):
    head = ("set", "s", "MB", "lines", "compile s", "object kB", "read", "equal", "of", "refused", "of", "what differs")
    form = "{:15} {:>6} {:>5} {:>7} {:>9} {:>9} {:>5} {:>5} {:>5} {:>7} {:>3}  {}"
    print(form.format(*head))
    for found in results:
        causes = found.failure or ", ".join(f"{kind} {count}" for kind, count in sorted(found.causes.items()))
        print(form.format(found.name, f"{found.seconds:.2f}", f"{found.megabytes:.0f}", found.lines,
                          f"{found.compile_seconds:.1f}", found.object_kilobytes, found.read, found.equal,
                          len(found.valid), found.refused, len(found.invalid), causes))
    print(f"{len(results)} sets, {sum(not found.failure for found in results)} compiled; "
          f"{sum(len(found.valid) for found in results)} valid documents, {sum(found.read for found in results)} read, "
          f"{sum(found.equal for found in results)} come back with their content; "
          f"{sum(found.refused for found in results)} of {sum(len(found.invalid) for found in results)} others refused")


def load_expected():
    path = os.path.join(HERE, "expected.tsv")
    if not os.path.exists(path):
        return {}
    with open(path, encoding="utf-8", newline="") as file:
        return {row["set"]: row for row in csv.DictReader(file, delimiter="\t")}


def write_expected(results, expected):
    for found in results:
        row = expected.setdefault(found.name, {"set": found.name, "reason": ""})
        row["read"], row["equal"], row["documents"] = found.read, found.equal, len(found.valid)
        if found.equal == len(found.valid):
            row["reason"] = ""
    with open(os.path.join(HERE, "expected.tsv"), "w", encoding="utf-8", newline="") as file:
        writer = csv.DictWriter(file, ["set", "documents", "read", "equal", "reason"], delimiter="\t",
                                lineterminator="\n", extrasaction="ignore")
        writer.writeheader()
        writer.writerows(expected[name] for name in sorted(expected))


def is_worse(found, expected):
    row = expected.get(found.name)
    if row is None:
        return bool(found.failure) or found.equal < len(found.valid)
    return found.read < int(row["read"]) or found.equal < int(row["equal"])


def make_parser(usage):
    """Return a parser of the arguments that all tools for the sets of schemas take."""
    parser = argparse.ArgumentParser(usage=usage)
    for option in ("--schemas", "--build", "--source"):
        parser.add_argument(option, required=True)
    parser.add_argument("--work")
    parser.add_argument("--compiler", default="g++")
    parser.add_argument("sets", nargs="*")
    return parser


def main():
    parser = make_parser(__doc__)
    parser.add_argument("--details", action="store_true")
    parser.add_argument("--update", action="store_true")
    arguments = parser.parse_args()
    arguments.work = arguments.work or os.path.join(arguments.build, "schemas")
    sets = load_sets(arguments.schemas)
    unknown = set(arguments.sets) - {found.name for found in sets}
    if unknown:
        parser.error("there is no set " + ", ".join(sorted(unknown)))
    chosen = [found for found in sets if not arguments.sets or found.name in arguments.sets]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda found: check(found, arguments), chosen))
    if arguments.details:
        for found in results:
            for line in found.details:
                print(f"{found.name}: {line}")
    report(results)
    expected = load_expected()
    if arguments.update:
        write_expected(results, expected)
        return 0
    worse = [found.name for found in results if is_worse(found, expected)]
    if worse:
        print("worse than expected: " + ", ".join(worse), file=sys.stderr)
    return 1 if worse else 0


if __name__ == "__main__":
    sys.setrecursionlimit(20000)
    sys.exit(main())
