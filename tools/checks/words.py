#!/usr/bin/env python3
"""Checks that no file speaks of where a text came from, of one person's machine, or of work left open.

The patterns are spelled so that this file passes its own check.
"""
import re

import tree

NOT_TEXT = ("tests/fuzz/corpus/", "tests/fuzz/seeds/")
PLACES_WITHOUT_HOSTS = ("scripts/", ".ci/", "CMakeLists.txt", "CMakePresets.json")

EVERYWHERE = [
    ("names the document behind the code", re.compile(
        r"\bthe s[p]ec\b|s[p]ecification|\bas s[p]ecified\b|\bs[p]ec\.md\b|\bparts? [1-6]\.[1-6]\b|\bs[e]ed document",
        re.IGNORECASE)),
    ("names the way the work is organised", re.compile(r"\bh[a]ndbook\b|\biss[u]e ?#?[0-9]+\b|\bworking sess[i]on\b",
                                                       re.IGNORECASE)),
    ("is a path of one machine", re.compile(r"(?<![\w.~-])/(w[o]rk|f[a]rm|h[o]me|r[o]ot)/")),
    ("is left open", re.compile(r"\b(TO[D]O|FIX[M]E|X[X]X|HAC[K])\b")),
]
IN_SOURCES = [
    ("skips without saying why", re.compile(r"GTEST_SKI[P]\(\)\s*;")),
    ("is a test that never runs", re.compile(r"\bDISABLE[D]_")),
    ("cannot fail", re.compile(r"\b(EXPECT|ASSERT)_TRUE\(tru[e]\)|\b(EXPECT|ASSERT)_FALSE\(fals[e]\)")),
]
HOST = ("names a host", re.compile(r"\bhttps?://(?!127\.0\.0\.1|localhost|\[::1\])"))


def problems_of(file, text):
    name = file.as_posix()
    patterns = list(EVERYWHERE)
    if file.suffix in tree.CPP:
        patterns += IN_SOURCES
    if name.startswith(PLACES_WITHOUT_HOSTS) or file.name == "CMakeLists.txt":
        patterns.append(HOST)
    for why, pattern in patterns:
        if pattern.search(name):
            yield f"{name}: the name {why}"
        for match in pattern.finditer(text):
            yield f"{name}:{text.count(chr(10), 0, match.start()) + 1}: {match.group().strip()}: {why}"


def check(root):
    problems, count = [], 0
    for file in tree.files(root):
        if file.as_posix().startswith(NOT_TEXT):
            continue
        count += 1
        problems += problems_of(file, (root / file).read_text(errors="replace"))
    if not count:
        problems.append("no file found")
    return problems, f"words: {count} files, {len(problems)} problems"


if __name__ == "__main__":
    tree.report(check)
