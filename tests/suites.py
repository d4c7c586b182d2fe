#!/usr/bin/env python3
"""Writes ctest's list of a test program's suites: each runs in a process of its own and leaves a record of its tests.

  suites.py PROGRAM FOLDER RECORDS LIST.cmake [--wine SCRIPT]

Tests that measure time ("InTime" in the name) run one by one, with the label in_time. RECORDS is the folder of the
records; tools/checks/test_report.py reads them. A Windows program is run by SCRIPT (scripts/wine).
"""
import argparse
import subprocess
import sys
from pathlib import Path

IN_TIME = "InTime"


def suites(listing):
    """{suite: [test, ...]} of a program's --gtest_list_tests."""
    found = {}
    for line in listing.splitlines():
        name = line.split("#")[0].rstrip()
        if name.endswith(".") and not name.startswith(" "):
            suite = found.setdefault(name[:-1], [])
        elif name.startswith("  "):
            suite.append(name.strip())
    return found


class Program:
    """A test program and how it is run."""

    def __init__(self, path, wine):
        self._command = [wine, "run", path] if wine else [path]
        self._root = "Z:" if wine else ""  # the drive on which Wine's programs find this machine's files
        self._fixture = " FIXTURES_REQUIRED wine" if wine else ""

    def listing(self):
        return subprocess.run([*self._command, "--gtest_list_tests"], check=True, capture_output=True, text=True).stdout

    def entry(self, name, tests, record, labels=""):
        command = " ".join(f'"{word}"' for word in self._command)
        return (f'add_test("{name}" {command} "--gtest_filter={tests}" "--gtest_output=xml:{self._root}{record}")\n'
                f'set_tests_properties("{name}" PROPERTIES TIMEOUT 300{self._fixture}{labels})\n')


def entries(program, folder, records, found):
    for suite, tests in found.items():
        in_time = [test for test in tests if IN_TIME in f"{suite}.{test}"]
        for test in in_time:
            name = f"{folder}.{suite}.{test}"
            yield program.entry(name, f"{suite}.{test}", record(records, name), " LABELS in_time")
        if len(in_time) < len(tests):
            name = f"{folder}.{suite}"
            excepted = "" if not in_time else f"-*{IN_TIME}*"
            yield program.entry(name, f"{suite}.*{excepted}", record(records, name))


def record(records, name):
    return f"{records}/{name.replace('/', '_')}.xml"


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    for name in ("program", "folder", "records", "output"):
        parser.add_argument(name)
    parser.add_argument("--wine")
    given = parser.parse_args()
    program = Program(given.program, given.wine)
    found = suites(program.listing())
    if not found:
        sys.exit(f"{given.program} has no tests")
    Path(given.output).write_text("".join(entries(program, given.folder, given.records, found)))


if __name__ == "__main__":
    main()
