#!/usr/bin/env python3
"""Sends the schemas of the W3C XML Schema Test Suite through the generator.

Usage: xsts.py --suite FILE --build FOLDER [--details] [SET ...]

  --suite    the archive of the suite, or the folder that it was unpacked into; it has a tests.tsv
  --build    the build folder, with the program; the suite is unpacked there
  --details  prints the messages for each valid schema that is refused, and the name of each other one that is accepted
  SET        the sets of tests to take; all by default

Every run must end, within a time and a bound of memory, without a crash. A valid schema must give classes, unless it
needs what is not supported. The generator does not validate schemas, so that many invalid ones are accepted; they are
only counted.
"""

import argparse
import collections
import concurrent.futures
import csv
import os
import resource
import subprocess
import sys
import tempfile

SECONDS = 20
BYTES = 1 << 30

# Why a valid schema may be refused: what its errors say. Some tests name files that the suite does not have, which a
# processor may pass over; tests of the attributes that XML Schema 1.1 adds to wildcards are in the suite as well.
FORETOLD = ("xs:redefine is not supported yet", "cannot find", 'no attribute "notNamespace"', 'no attribute "notQName"')


def unpacked(suite, build):
    if os.path.isdir(suite):
        return suite
    folder = os.path.join(build, "xsts")
    if not os.path.exists(os.path.join(folder, "tests.tsv")):
        os.makedirs(folder, exist_ok=True)
        subprocess.run(["tar", "-xf", suite, "-C", folder], check=True)
    return folder


def load_tests(folder, sets):
    with open(os.path.join(folder, "tests.tsv"), encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))
    of_schemas = [row for row in rows if row["instance"] == "-" and (not sets or row["set"] in sets)]
    return [row for row in of_schemas if not row["status"].startswith(("queried", "disputed"))]


def limit():
    resource.setrlimit(resource.RLIMIT_CPU, (SECONDS, SECONDS))
    resource.setrlimit(resource.RLIMIT_AS, (BYTES, BYTES))


def generate(test, folder, program):
    """Return the exit status of the program, negative for a signal, and its messages."""
    schemas = [path for path in test["schemas"].split(";") if path]
    with tempfile.TemporaryDirectory() as output:
        command = [program, "generate", "--namespace", "Bound", "--output", output] + schemas
        result = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                preexec_fn=limit, check=False)
        messages = result.stdout.decode("utf-8", "replace").splitlines()
        written = os.listdir(output)
    errors = [line for line in messages if ": error: " in line]
    if (result.returncode == 0) != bool(written) or (result.returncode == 1) != bool(errors):
        messages.append(f"exit status {result.returncode} with {len(errors)} errors and {len(written)} files")
        return -1, messages
    return result.returncode, messages


def verdict(test, status, messages):
    if status not in (0, 1):
        return "failed"
    if status == 0:
        return "accepted" if test["validity"] == "valid" else "accepted, although invalid"
    if test["validity"] != "valid":
        return "refused"
    errors = [line for line in messages if ": error: " in line]
    if any(reason in line for reason in FORETOLD for line in errors):
        return "refused, as foretold"
    return "refused, although valid"


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--suite", required=True)
    parser.add_argument("--build", required=True)
    parser.add_argument("--details", action="store_true")
    parser.add_argument("sets", nargs="*")
    arguments = parser.parse_args()
    folder = unpacked(arguments.suite, arguments.build)
    program = os.path.abspath(os.path.join(arguments.build, "tools", "quillon9"))
    tests = load_tests(folder, arguments.sets)
    if not tests:
        parser.error("there are no such tests")
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda test: generate(test, folder, program), tests))
    counts = collections.Counter()
    for test, (status, messages) in zip(tests, results):
        found = verdict(test, status, messages)
        counts[found] += 1
        is_fault = found in ("failed", "refused, although valid")
        if is_fault or (arguments.details and found in ("refused, as foretold", "accepted, although invalid")):
            print("\n  ".join([f"{test['set']} {test['group']}: {found}", test["schemas"], *messages]))
    for found, count in sorted(counts.items()):
        print(f"{count:6} {found}")
    return 1 if counts["failed"] or counts["refused, although valid"] else 0


if __name__ == "__main__":
    sys.exit(main())
