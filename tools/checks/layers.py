#!/usr/bin/env python3
"""Checks which folder includes which.

src/: api -> commands -> protocol -> link -> platform, nothing outside but the standard library and QXCommMgr.h;
one file includes <windows.h>, and no other holds a conditional for a host. host/ includes nothing of src/, and
tools/qxctl neither includes nor links src/ or host/.
"""
import re

import tree

LAYERS = ["platform", "link", "protocol", "commands", "api"]  # lowest first
PLATFORM_HEADER = "src/platform/windows_api.h"
PUBLIC_HEADER = "QXCommMgr.h"
# Helpers that every command family shares; they know no family.
SHARED_BY_COMMANDS = ("src/commands/measure/valuetext/", "src/commands/instrument/devices/")

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.MULTILINE)
CONDITIONAL = re.compile(r"^[ \t]*#[ \t]*(?:el)?if(?:n?def)?\b.*$", re.MULTILINE)
HOST_NAME = re.compile(r"\b(_WIN32|_WIN64|WIN32|WINCE|UNDER_CE|_WIN32_WCE|__MINGW\w*|__CYGWIN__|_MSC_VER|"
                       r"__linux\w*|linux|__unix\w*|unix|__APPLE__|__GLIBC__|_POSIX\w*)\b")
STANDARD = set("""algorithm any array atomic bitset cassert cctype cerrno cfloat charconv cinttypes climits cmath
complex csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime deque exception forward_list functional
initializer_list iterator limits list map memory new numeric optional queue random ratio set stack stdexcept string
string_view system_error tuple type_traits typeinfo unordered_map unordered_set utility variant vector""".split())


def line_of(text, offset):
    return text.count("\n", 0, offset) + 1


def resolve(root, file, name):
    """The path of an included file inside the tree, or None: beside the includer, else below an include folder."""
    for base in (file.parent, "src", "include", "host", "host/include", "tools", "tests", "."):
        path = (root / base / name).resolve()
        if path.is_file() and root.resolve() in path.parents:
            return path.relative_to(root.resolve()).as_posix()
    return None


def layer(path):
    part = path.split("/")[1]
    return LAYERS.index(part) if part in LAYERS else None


def source_problem(root, file, quote, name):
    """What is wrong with one include of a file in src/, or None."""
    if quote == "<":
        if name == "windows.h":
            return None if file.as_posix() == PLATFORM_HEADER else "only platform/windows_api.h includes <windows.h>"
        return None if name in STANDARD else "src/ uses the standard library and its own headers only"
    if name == PUBLIC_HEADER:
        return None
    target = resolve(root, file, name)
    if target is None:
        return "no such file"
    if not target.startswith("src/"):
        return "src/ includes nothing outside src/"
    own, other = layer(file.as_posix()), layer(target)
    if own is None or other is None:
        return "not in one of the folders " + ", ".join(LAYERS)
    if other > own:
        return f"{LAYERS[own]} is below {LAYERS[other]}"
    shared = file.as_posix().startswith(SHARED_BY_COMMANDS)
    if shared and other == own and not target.startswith(SHARED_BY_COMMANDS):
        return "the helpers shared by the command families know no family"
    return None


def outside_problem(root, file, name, forbidden):
    target = resolve(root, file, name)
    for folder in forbidden:
        if name.startswith(folder + "/") or "/" + folder + "/" in name or (target or "").startswith(folder + "/"):
            return f"{file.parts[0]}/{file.parts[1]} includes nothing of {folder}/"
    return None


def include_problems(root, file, judge):
    text = tree.without_comments((root / file).read_text(errors="replace"))
    for match in INCLUDE.finditer(text):
        problem = judge(match.group(1), match.group(2))
        if problem:
            yield f"{file}:{line_of(text, match.start())}: #include {match.group(2)}: {problem}"


def conditionals(root, file):
    text = tree.without_comments((root / file).read_text(errors="replace"))
    for match in CONDITIONAL.finditer(text):
        if HOST_NAME.search(match.group()):
            yield f"{file}:{line_of(text, match.start())}: conditional for a host: {match.group().strip()}"


def links(root, folder, libraries):
    """CMake files below a folder that name one of the libraries."""
    for file in tree.files(root, folder):
        if file.name == "CMakeLists.txt" or file.suffix == ".cmake":
            for library in libraries:
                if re.search(rf"\b{library}\b", (root / file).read_text()):
                    yield f"{file}: links {library}"


def check(root):
    problems, host_conditionals = [], []
    sources = tree.files(root, "src", suffixes=tree.CPP)
    if not sources:
        problems.append("src/ holds no source")
    for file in sources:
        problems += include_problems(root, file, lambda quote, name: source_problem(root, file, quote, name))
        host_conditionals += conditionals(root, file)
    problems += [row for row in host_conditionals if not row.startswith(PLATFORM_HEADER + ":")]
    for folder, forbidden in (("host", ["src"]), ("tools/qxctl", ["src", "host"])):
        for file in tree.files(root, folder, suffixes=tree.CPP):
            problems += include_problems(root, file, lambda _, name: outside_problem(root, file, name, forbidden))
    problems += links(root, "tools/qxctl", ["qxcommmgr", "qxhost", "qxinstrument", "qxsim_core", "qxtest_support"])
    return problems, (f"layers: {len(sources)} files of src/, {len(host_conditionals)} conditionals for a host, "
                      f"{len(problems)} problems")


if __name__ == "__main__":
    tree.report(check)
