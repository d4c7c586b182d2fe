#!/usr/bin/env python3
"""Checks that src/ calls nothing that Windows CE does not offer.

Two ways: in the sources, every platform call that src/ makes (any call that the host's <windows.h> or
platform/windows_api.h declares); and, with --objects, every undefined symbol of the library's objects as the Windows
compiler built them. Names on offer are those of coredll_exports.txt and the instrument's own libraries.
"""
import re
import subprocess
import sys
from pathlib import Path

import tree

EXPORTS = Path(__file__).with_name("coredll_exports.txt")
DECLARATIONS = ("host/include/*.h", "src/platform/windows_api.h")

# On offer though COREDLL exports no such name.
INLINE_ON_CE = {
    "GetCurrentProcessId": "an inline read of the kernel's data page",
    "GetCurrentThreadId": "an inline read of the kernel's data page",
}
INSTRUMENT_LIBRARIES = [
    (re.compile(r"QxSystem\w+$"), "QxSystem.dll, by ordinal"),
    (re.compile(r"(GetParameterItem|ReplaceParameterItem)$"), "ParamBlk.dll"),
    (re.compile(r"GetProductOSRevision$"), "OPVLIB.dll"),
    (re.compile(r"Bth\w+$"), "BTHUTIL.dll, by ordinal"),
]

# The library runs on the platform's own threads, locks, files and clock, so that the host stands behind all of them.
FORBIDDEN_IN_SOURCES = [
    ("wide text has 16 bits on every host, wcs* functions have not", re.compile(r"\bw(?:cs|mem)[a-z]\w*")),
    ("the platform's own threads, locks, files and clock are used", re.compile(
        r"\bstd::(?:(?:j?thread|this_thread|async|future|promise|call_once|filesystem|chrono|[io]?fstream|"
        r"(?:timed_|recursive_|recursive_timed_|shared_|shared_timed_)?mutex|condition_variable\w*|lock_guard|"
        r"unique_lock|scoped_lock|shared_lock)\b)")),
]
FORBIDDEN_SYMBOLS = re.compile(r"std::(?:thread|mutex|condition_variable|filesystem|chrono|basic_[io]?fstream|this_thread"
                               r"|__future_base)\b|^pthread_")
# What the compiler's own libraries bring: C++ support, names reserved to the implementation, and what wide
# std::basic_string is made of.
RUNTIME = re.compile(r"_|operator |std::|(?:vtable|typeinfo|VTT) |non-virtual thunk|wcslen$|wmem(?:cpy|move|set|chr|cmp)$")


def on_offer(name, exports):
    return name in exports or name in INLINE_ON_CE or any(pattern.match(name) for pattern, _ in INSTRUMENT_LIBRARIES)


def declared_calls(root):
    names = set()
    for file in (path for pattern in DECLARATIONS for path in root.glob(pattern)):
        names |= set(re.findall(r"\b(?:WINAPI|APIENTRY)\s+(\w+)\s*\(", tree.code_only(file.read_text())))
    return names


def source_problems(root, exports):
    """Problems of the sources, and the number of different platform calls they make."""
    calls, problems = declared_calls(root), []
    if not calls:
        problems.append("no declaration of a platform call found in " + " or ".join(DECLARATIONS))
    made = {}
    for file in tree.files(root, "src", suffixes=tree.CPP):
        for number, line in enumerate(tree.code_only((root / file).read_text(errors="replace")).split("\n"), 1):
            for name in re.findall(r"\b([A-Za-z_]\w*)\s*\(", line):
                if name in calls:
                    made.setdefault(name, f"{file}:{number}")
            for why, pattern in FORBIDDEN_IN_SOURCES:
                for match in pattern.finditer(line):
                    problems.append(f"{file}:{number}: {match.group()}: {why}")
    problems += [f"{place}: {name} is not on offer" for name, place in sorted(made.items())
                 if not on_offer(name, exports)]
    return problems, len(made)


def symbol_problems(symbols, exports):
    """Problems of undefined symbols, given as nm and c++filt print them, and the number of platform imports."""
    problems, imports = [], 0
    for symbol in sorted(symbols):
        if FORBIDDEN_SYMBOLS.search(symbol):
            problems.append(f"{symbol}: the platform's own threads, locks, files and clock are used")
        elif symbol.startswith("__imp_"):
            imports += 1
            if not on_offer(symbol[len("__imp_"):], exports):
                problems.append(f"{symbol[len('__imp_'):]}: imported, but not on offer")
        elif not RUNTIME.match(symbol) and symbol not in exports:
            problems.append(f"{symbol}: neither of the compiler's own libraries nor on offer")
    return problems, imports


def undefined_symbols(objects, prefix="x86_64-w64-mingw32-"):
    """The symbols that these objects and archives need and do not define themselves, readable."""
    listing = subprocess.run([prefix + "nm", "-P", *map(str, objects)], check=True, capture_output=True,
                             text=True).stdout
    rows = [line.split() for line in listing.splitlines()]
    rows = [row for row in rows if len(row) >= 2 and not row[0].endswith("]:")]
    undefined = {row[0] for row in rows if row[1] in "Uwv"} - {row[0] for row in rows if row[1] not in "Uwv"}
    if not rows:
        raise SystemExit("no symbols found in " + " ".join(map(str, objects)))
    names = "\n".join(sorted(undefined))
    return set(subprocess.run([prefix + "c++filt"], input=names, check=True, capture_output=True,
                              text=True).stdout.split("\n")) - {""}


def check(root):
    exports = set(EXPORTS.read_text().split())
    problems, calls = source_problems(root, exports)
    return problems, f"ce names: {calls} platform calls in the sources, {len(problems)} problems"


def check_objects(objects):
    exports = set(EXPORTS.read_text().split())
    problems, imports = symbol_problems(undefined_symbols(objects), exports)
    if not imports:
        problems.append("nothing is imported: are these the library's objects?")
    return problems, f"ce names: {imports} platform imports of the library's objects, {len(problems)} problems"


if __name__ == "__main__":
    if len(sys.argv) >= 3 and sys.argv[1] == "--objects":
        found, summary = check_objects(sys.argv[2:])
        print("\n".join(found + [summary]))
        sys.exit(1 if found else 0)
    tree.report(check)
