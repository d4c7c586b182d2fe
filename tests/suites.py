#!/usr/bin/env python3
"""Writes ctest's list of a test program's suites: each runs in a process of its own and leaves a record of its tests.

  suites.py PROGRAM FOLDER RECORDS LIST.cmake

Tests that measure time ("InTime" in the name) run one by one, with the label in_time. RECORDS is the folder of the
records; tools/checks/test_report.py reads them.
"""
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


def entry(program, name, tests, record, labels=""):
    properties = f"TIMEOUT 300{labels}"
    return (f'add_test("{name}" "{program}" "--gtest_filter={tests}" "--gtest_output=xml:{record}")\n'
            f'set_tests_properties("{name}" PROPERTIES {properties})\n')


def entries(program, folder, records, found):
    for suite, tests in found.items():
        in_time = [test for test in tests if IN_TIME in f"{suite}.{test}"]
        for test in in_time:
            name = f"{folder}.{suite}.{test}"
            yield entry(program, name, f"{suite}.{test}", record(records, name), " LABELS in_time")
        if len(in_time) < len(tests):
            name = f"{folder}.{suite}"
            excepted = "" if not in_time else f"-*{IN_TIME}*"
            yield entry(program, name, f"{suite}.*{excepted}", record(records, name))


def record(records, name):
    return f"{records}/{name.replace('/', '_')}.xml"


def main(program, folder, records, output):
    listing = subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True, text=True).stdout
    found = suites(listing)
    if not found:
        sys.exit(f"{program} has no tests")
    Path(output).write_text("".join(entries(program, folder, records, found)))


if __name__ == "__main__":
    main(*sys.argv[1:])
