#!/usr/bin/env python3
"""Checks the .def files of the Windows host's libraries, which hand their calls on to QXHost.dll.

COREDLL.def: only names that Windows CE offers, each handed on to the row of host/common/coredll that bears its name (or,
for the last error, to KERNEL32); every such row has its export; and so has every call that src/ makes, since the linker
takes one that is missing from the desktop without a word. ParamBlk.def and OPVLIB.def: the calls by name of src/platform.
"""
import re

import ce_names
import tree

FOLDER = "host/windows/libraries"
ROWS = "host/common/coredll"
CALLS_BY_NAME = "src/platform/instrument_libraries.h"
SYSTEMS_OWN = {"GetLastError", "SetLastError"}


def definitions(root, name):
    """Export -> what it is handed on to."""
    rows = re.findall(r"^\s+(\w+)\s*=\s*([\w.]+)\s*$", (root / FOLDER / name).read_text(), re.MULTILINE)
    return dict(rows)


def coredll_rows(root):
    text = "\n".join(tree.code_only((root / file).read_text()) for file in tree.files(root, ROWS, suffixes=tree.CPP))
    return set(re.findall(r"\bCOREDLL\((\w+)\)", text))


def calls_made(root):
    """The platform's calls that src/ makes, without those of the instrument's own libraries."""
    declared = ce_names.declared_calls(root)
    made = set()
    for file in tree.files(root, "src", suffixes=tree.CPP):
        made |= set(re.findall(r"\b([A-Za-z_]\w*)\s*\(", tree.code_only((root / file).read_text(errors="replace"))))
    return made & declared


def calls_by_name(root):
    return set(re.findall(r"\bDECLSPEC_IMPORT \w+ WINAPI (\w+)\(", tree.code_only((root / CALLS_BY_NAME).read_text())))


def coredll_problems(root):
    exports, rows, made = definitions(root, "COREDLL.def"), coredll_rows(root), calls_made(root)
    on_offer = set(ce_names.EXPORTS.read_text().split()) | set(ce_names.INLINE_ON_CE)
    for name, target in sorted(exports.items()):
        if name not in on_offer:
            yield f"COREDLL.def: {name} is not on offer"
        expected = f"KERNEL32.{name}" if name in SYSTEMS_OWN else f"QXHost.CoreDll{name}"
        if target != expected:
            yield f"COREDLL.def: {name} is handed on to {target}, not to {expected}"
        elif name not in SYSTEMS_OWN and name not in rows:
            yield f"COREDLL.def: {name} has no row in {ROWS}"
    yield from (f"COREDLL.def: {name} is missing, which {ROWS} has" for name in sorted(rows - set(exports)))
    yield from (f"COREDLL.def: {name} is missing, which src/ calls" for name in sorted(made - set(exports) - rows))


def instrument_problems(root):
    expected = calls_by_name(root)
    exports = {**definitions(root, "ParamBlk.def"), **definitions(root, "OPVLIB.def")}
    for name in sorted(expected ^ set(exports)):
        yield f"{name} is " + ("not exported" if name in expected else f"no call of {CALLS_BY_NAME}")
    yield from (f"{name} is handed on to {target}" for name, target in exports.items() if target != f"QXHost.{name}")


def check(root):
    problems = list(coredll_problems(root)) + list(instrument_problems(root))
    return problems, f"forwarders: {len(definitions(root, 'COREDLL.def'))} exports of COREDLL, {len(problems)} problems"


if __name__ == "__main__":
    tree.report(check)
