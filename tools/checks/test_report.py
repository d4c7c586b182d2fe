#!/usr/bin/env python3
"""Adds up what the stages of a test run have found.

  test_report.py collect STAGE JUNIT.XML RECORDS   result rows of one ctest run, for a stage's result file
  test_report.py program STAGE NAME RECORD         result rows of one test program, from the record it left
  test_report.py summary FILE ...           skipped and failed tests by name; the last line is the sum

RECORDS is the folder where suites that run as one of ctest's tests leave a record of their own (tests/suites.py).
A result row is "passed", "failed" or "skipped", the name, and the reason for skipping, parted by tabs.
"""
import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

KINDS = ("passed", "failed", "skipped")
SKIPPED_BY_ITSELF = re.compile(r"SKIP_(REGULAR_EXPRESSION|RETURN_CODE)")
SKIP_REASON = re.compile(r": Skipped\n(.*?)\n*\[  SKIPPED \]", re.DOTALL)
# A test that says it skipped and then fails all the same (a leak at its end, say) has failed.
FAILED_ALL_THE_SAME = re.compile(r"(Address|Leak|Thread|UndefinedBehavior)Sanitizer|: runtime error: |\[  FAILED  \]")


def judge(testcase):
    """One <testcase> as (kind, reason)."""
    output = testcase.findtext("system-out") or ""
    if testcase.get("status") == "run":
        return "passed", ""
    skipped = testcase.find("skipped")
    if skipped is not None and SKIPPED_BY_ITSELF.search(skipped.get("message") or ""):
        reason = SKIP_REASON.search(output)
        if FAILED_ALL_THE_SAME.search(output):
            return "failed", ""
        return "skipped", " ".join(reason.group(1).split()) if reason else "no reason given"
    if testcase.get("status") == "disabled":
        return "skipped", "disabled"
    return "failed", ""


def judge_recorded(testcase):
    """One <testcase> of a suite's own record as (kind, reason)."""
    if testcase.find("failure") is not None:
        return "failed", ""
    skipped = testcase.find("skipped")
    if skipped is not None:
        text = (skipped.text or skipped.get("message") or "").strip().split("\n", 1)
        return "skipped", " ".join(text[-1].split()) or "no reason given"
    return ("passed", "") if testcase.get("status") == "run" else ("skipped", "disabled")


def recorded(name, record):
    """The tests of one suite as [(name, kind, reason)], from the record it left."""
    folder = name.split(".", 1)[0]
    cases = ElementTree.parse(record).getroot().iter("testcase")
    rows = [(f"{folder}.{case.get('classname')}.{case.get('name')}", case) for case in cases]
    return [(test, *judge_recorded(case)) for test, case in rows if case.get("result") != "suppressed"]


def expand(name, case, records):
    """One of ctest's tests as rows: its suite's tests where it left a record, else itself."""
    kind, reason = judge(case)
    record = Path(records) / (name.replace("/", "_") + ".xml")
    if not record.is_file():
        return [(name, kind, reason)]
    rows = recorded(name, record)
    # What fails without a failed test (a leak at the end, a crash behind the last one) has failed as a whole.
    if kind == "failed" and all(row[1] != "failed" for row in rows):
        rows.append((name, "failed", ""))
    return rows


def collect(stage, junit, records="no/records"):
    """Result rows of one ctest run; a run that left no readable record is one failure."""
    try:
        cases = ElementTree.parse(junit).getroot().findall("testcase")
    except (OSError, ElementTree.ParseError) as error:
        return [("failed", f"{stage}.ctest", str(error))]
    judged = [row for case in cases for row in expand(case.get("name").split("  # GetParam()")[0], case, records)]
    # A program that was not built stands there once for each way its tests are run.
    return list(dict.fromkeys((kind, f"{stage}.{name}", reason) for name, kind, reason in judged))


def program(stage, name, record):
    """Result rows of one test program; one that left no readable record is one failure."""
    try:
        return [(kind, f"{stage}.{test}", reason) for test, kind, reason in recorded(name, record)] or \
            [("failed", f"{stage}.{name}", "no tests")]
    except (OSError, ElementTree.ParseError) as error:
        return [("failed", f"{stage}.{name}", str(error))]


def read(files):
    rows = []
    for file in files:
        for line in Path(file).read_text().splitlines():
            kind, name, reason = (line.split("\t") + ["", ""])[:3]
            rows.append((kind, name, reason))
    return rows


def summary(rows):
    """The closing lines, and whether the run is good: something ran, nothing failed, every row is understood."""
    lines = []
    groups = {kind: [row for row in rows if row[0] == kind] for kind in KINDS}
    groups["failed"] += [row for row in rows if row[0] not in KINDS]
    for kind in ("skipped", "failed"):
        if not groups[kind]:
            lines.append(f"{kind}: none")
        for _, name, reason in groups[kind]:
            lines.append(f"{kind}: {name}" + (f" ({reason})" if reason else ""))
    lines.append(", ".join(f"{len(groups[kind])} {kind}" for kind in KINDS))
    return lines, bool(groups["passed"]) and not groups["failed"]


def main(arguments):
    if len(arguments) == 4 and arguments[0] == "collect":
        for row in collect(*arguments[1:]):
            print("\t".join(row))
        return 0
    if len(arguments) == 4 and arguments[0] == "program":
        for row in program(*arguments[1:]):
            print("\t".join(row))
        return 0
    if len(arguments) >= 2 and arguments[0] == "summary":
        lines, good = summary(read(arguments[1:]))
        print("\n".join(lines))
        return 0 if good else 1
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
