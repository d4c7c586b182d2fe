#!/usr/bin/env python3
"""Checks the export and the import table of the built DLL, as objdump prints them, and its size.

Exports: what the public header declares, with the ordinals of the .def, and nothing else. Imports: COREDLL.dll by names
that Windows CE offers, the instrument's libraries as src/platform declares them (by ordinal or by name), and from the
desktop only what runtime_imports.txt lists: no call that the library itself makes. Size: at most LARGEST bytes.
"""
import argparse
import re
import subprocess
import sys
from pathlib import Path

import ce_names
import tree

RUNTIME = Path(__file__).with_name("runtime_imports.txt")
HEADER = "include/QXCommMgr.h"
DEFINITION = "src/api/QXCommMgr.def"
TABLES_BY_ORDINAL = {"QxSystem.dll": "src/platform/qxsystem_calls.h", "BTHUTIL.dll": "src/platform/bthutil_calls.h"}
CALLS_BY_NAME = "src/platform/instrument_libraries.h"
LARGEST = 300_000  # bytes of the stripped file, the runtime included


class Tables:
    """exports: name -> ordinal; imports: library -> names and ordinals; odd: rows that neither table should hold."""

    def __init__(self, text):
        self.exports, self.imports, self.odd = {}, {}, []
        self._read_exports(text)
        self._read_imports(text)

    def _read_exports(self, text):
        base = re.search(r"^Ordinal Base\s+(\d+)$", text, re.MULTILINE)
        base = int(base.group(1)) if base else 0
        nameless = set()
        for index, what in re.findall(r"^\t\[ *(\d+)\] \+base\[ *\d+\] [0-9a-f]+ (.*)$", text, re.MULTILINE):
            nameless.add(int(index) + base)
            if not what.startswith("Export RVA"):
                self.odd.append(f"export @{int(index) + base} is passed on: {what}")
        for index, name in re.findall(r"^\t\[ *(\d+)\] (\w+)$", text, re.MULTILINE):
            self.exports[name] = int(index) + base
            nameless.discard(int(index) + base)
        self.odd += [f"export @{ordinal} has no name" for ordinal in sorted(nameless)]

    def _read_imports(self, text):
        for library, rows in re.findall(r"^\tDLL Name: (\S+)\n\tvma:.*\n((?:\t[0-9a-f]+\t.*\n)*)", text, re.MULTILINE):
            members = self.imports.setdefault(library, [])
            for address, name in re.findall(r"^\t([0-9a-f]+)\t *[0-9a-f]+  (\S+)", rows, re.MULTILINE):
                members.append(int(address, 16) & 0xFFFF if name == "<none>" else name)


def header_names(root):
    return set(re.findall(r"\b(QCM\w+)\(", tree.code_only((root / HEADER).read_text())))


def definition_rows(root):
    """The rows of the .def: name -> ordinal."""
    rows = re.findall(r"^\s+(\w+)\s+@(\d+)\s*$", (root / DEFINITION).read_text(), re.MULTILINE)
    return {name: int(ordinal) for name, ordinal in rows}


def instrument_libraries(root):
    """What may be imported from the instrument's libraries: library -> ordinals or names."""
    allowed, library = {}, None
    for of, table in TABLES_BY_ORDINAL.items():
        rows = re.findall(r"^[A-Z_]+_CALL\((\d+),", (root / table).read_text(), re.MULTILINE)
        allowed[of] = {int(ordinal) for ordinal in rows}
    for line in (root / CALLS_BY_NAME).read_text().splitlines():
        heading = re.match(r"// (\w+\.dll)\b", line)
        library = heading.group(1) if heading else library
        call = re.match(r"DECLSPEC_IMPORT \w+ WINAPI (\w+)\(", line)
        if call and library not in TABLES_BY_ORDINAL:
            allowed.setdefault(library, set()).add(call.group(1))
    return allowed


def runtime_imports():
    rows = [line.split() for line in RUNTIME.read_text().splitlines()]
    allowed = {}
    for library, name in (row for row in rows if row and row[0] != "#"):
        allowed.setdefault(library, set()).add(name)
    return allowed


def export_problems(root, tables):
    declared, defined = header_names(root), definition_rows(root)
    problems = list(tables.odd)
    problems += [f"{name}: in {HEADER}, not in {DEFINITION}" for name in sorted(declared - defined.keys())]
    problems += [f"{name}: in {DEFINITION}, not in {HEADER}" for name in sorted(defined.keys() - declared)]
    for name in sorted(defined.keys() | tables.exports.keys()):
        wanted, found = defined.get(name), tables.exports.get(name)
        if wanted is None:
            problems.append(f"{name}: exported, but not defined")
        elif found is None:
            problems.append(f"{name}: not exported")
        elif found != wanted:
            problems.append(f"{name}: exported with ordinal {found} instead of {wanted}")
    return problems


def member_text(member):
    return f"ordinal {member}" if isinstance(member, int) else member


def import_problems(root, tables, own_calls):
    """Problems of the import table; own_calls are the undefined symbols of the library's own objects."""
    own = {symbol.removeprefix("__imp_") for symbol in own_calls}
    of_the_platform = {"COREDLL.dll": set(ce_names.EXPORTS.read_text().split()) | ce_names.INLINE_ON_CE.keys(),
                       **instrument_libraries(root)}
    of_the_runtime = runtime_imports()
    problems = []
    for library, allowed in sorted(of_the_platform.items()):
        if not tables.imports.get(library):
            problems.append(f"{library}: nothing is imported from it")
    for library, members in sorted(tables.imports.items()):
        allowed = of_the_platform.get(library) or of_the_runtime.get(library, set())
        for member in members:
            if member not in allowed:
                problems.append(f"{library}: {member_text(member)} is imported, but not allowed")
            elif library == "KERNEL32.dll" and member in own:
                problems.append(f"{library}: {member} is called by the library itself, which COREDLL.dll shall serve")
    return problems


def size_problems(size):
    return [f"{size} bytes are {size - LARGEST} too many"] if size > LARGEST else []


def summary(dll, size, tables, problems):
    libraries = ", ".join(f"{library} {len(members)}" for library, members in sorted(tables.imports.items()))
    return (f"dll tables: {dll}: {size} bytes; {len(tables.exports)} exports; imports: {libraries}; "
            f"{len(problems)} problems")


def check(root, dll, objects, prefix="x86_64-w64-mingw32-"):
    text = subprocess.run([prefix + "objdump", "-p", str(dll)], check=True, capture_output=True, text=True).stdout
    tables, size = Tables(text), dll.stat().st_size
    problems = export_problems(root, tables) + import_problems(root, tables, ce_names.undefined_symbols(objects))
    problems += size_problems(size)
    return problems, summary(dll, size, tables, problems)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--root", type=Path, default=Path(__file__).resolve().parents[2])
    parser.add_argument("dll", type=Path)
    parser.add_argument("objects", type=Path, nargs="+", help="the library's own objects and archives in it")
    options = parser.parse_args()
    found, last_line = check(options.root, options.dll, options.objects)
    print("\n".join(found + [last_line]))
    sys.exit(1 if found else 0)
