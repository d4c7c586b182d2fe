"""Reads the source tree for the checks: its files, and C++ text without comments and literals."""
import argparse
import re
import sys
from pathlib import Path

SKIPPED_FOLDERS = {".git", "build", "__pycache__"}
CPP = {".cpp", ".h", ".c"}


def files(root, *folders, suffixes=None):
    """Every file below the folders (or below the root), sorted; paths are relative to the root."""
    found = []
    for folder in folders or (".",):
        for path in (root / folder).rglob("*"):
            relative = path.relative_to(root)
            if SKIPPED_FOLDERS.isdisjoint(relative.parts) and path.is_file():
                if suffixes is None or path.suffix in suffixes:
                    found.append(relative)
    return sorted(set(found))


# Comments, then string and character literals. A digit separator (1'000) is no literal.
_NOISE = re.compile(r'//[^\n]*|/\*.*?\*/|R"([^(\s]*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Za-z_])\'(?:\\.|[^\'\\\n])*\'',
                    re.DOTALL)


def without_comments(text):
    """The text with its comments blanked; lines keep their numbers, literals stay."""
    return _NOISE.sub(lambda m: _blank(m.group()) if m.group().startswith("/") else m.group(), text)


def code_only(text):
    """The text with comments and literals blanked; lines keep their numbers."""
    return _NOISE.sub(lambda m: _blank(m.group()), text)


def _blank(text):
    return re.sub(r"[^\n]", " ", text)


def report(check):
    """Runs a check as a program: prints what check(root) finds and ends with 1 when that is anything."""
    parser = argparse.ArgumentParser(description=sys.modules[check.__module__].__doc__)
    parser.add_argument("--root", type=Path, default=Path(__file__).resolve().parents[2])
    problems, summary = check(parser.parse_args().root)
    for problem in problems:
        print(problem, file=sys.stderr)
    print(summary)
    sys.exit(1 if problems else 0)
