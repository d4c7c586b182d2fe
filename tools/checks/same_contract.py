#!/usr/bin/env python3
"""Compares the tests of the platform's contract that ran on both hosts.

  same_contract.py TESTS LINUX.rows WINDOWS.rows

TESTS is the folder of the tests; the others are result files of scripts/test. A test may be missing on one side only
when it lies in a file of the other host alone: those are named, with what their file says of itself. Exit status 0: so
it is.
"""
import re
import sys
from pathlib import Path

PROGRAM = ".platform."
ONE_HOST = {"host_": "Linux", "win32_": "Windows"}
TEST = re.compile(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", re.MULTILINE)


def places(folder):
    """{(suite, test): {file, ...}} of the sources."""
    found = {}
    for file in sorted(Path(folder).glob("*.cpp")):
        for key in TEST.findall(file.read_text()):
            found.setdefault(key, set()).add(file)
    return found


def ran(rows):
    """The (suite, test) pairs in a result file; parameters are left out."""
    names = [line.split("\t")[1] for line in Path(rows).read_text().splitlines()]
    tests = [name.split(PROGRAM, 1)[1].rsplit(".", 1) for name in names if PROGRAM in name]
    return {(suite.split("/")[-1], test.split("/")[0]) for suite, test in (test for test in tests if len(test) == 2)}


def one_host_file(files, host):
    """The file of this host alone that has the test, if there is one."""
    for file in files:
        if any(file.name.startswith(prefix) and of == host for prefix, of in ONE_HOST.items()):
            return file
    return None


def differences(only, host, found):
    """{file: count} of the tests on one side, and those that no file of this host alone has."""
    counts, unexplained = {}, []
    for key in sorted(only):
        file = one_host_file(found.get(key, ()), host)
        if file is None:
            unexplained.append(".".join(key))
        else:
            counts[file] = counts.get(file, 0) + 1
    return counts, unexplained


def about(file):
    return file.read_text().split("\n", 1)[0].removeprefix("// ")


def main(folder, linux_rows, windows_rows):
    found, linux, windows = places(folder), ran(linux_rows), ran(windows_rows)
    both, problems = linux & windows, [] if linux & windows else ["no test has run on both hosts"]
    print(f"platform contract: {len(both)} tests on both hosts, "
          f"{len(linux - both)} on Linux alone, {len(windows - both)} on Windows alone")
    for host, only in (("Linux", linux - both), ("Windows", windows - both)):
        counts, unexplained = differences(only, host, found)
        for file, count in counts.items():
            print(f"  {host} {count:3} {file.name}: {about(file)}")
        problems += [f"{test} ran on {host} alone" for test in unexplained]
    print("\n".join(problems) if problems else "platform contract: 0 problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
