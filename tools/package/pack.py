#!/usr/bin/env python3
"""Packs the DLL that ships into a zip: pack.py BUILD_FOLDER OUTPUT_FOLDER

The zip depends on nothing but what goes into it: sorted names, one fixed time, one mode, no compression (so that no
version of a compressor matters). Prints the size and the SHA-256 of the DLL and of the zip.
"""
import argparse
import hashlib
import re
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
NOTES = Path(__file__).with_name("README.txt.in")
EARLIEST = (1980, 1, 1, 0, 0, 0)  # of the times that a zip can hold
REGULAR_FILE = 0o100644 << 16
UNIX = 3


def setting(cache, name):
    match = re.search(rf"^{name}:\w+=(.+)$", cache, re.MULTILINE)
    if match is None:
        raise SystemExit(f"the build folder has no {name}")
    return match.group(1)


def contents(build):
    """The version, and the files of the package: name -> bytes."""
    cache = (build / "CMakeCache.txt").read_text()
    values = {"VERSION": setting(cache, "CMAKE_PROJECT_VERSION"),
              "BATTERY_QUERY_ORDINAL": setting(cache, "QX_DEVICE_BATTERY_QUERY_ORDINAL"),
              "BATTERY_EVENT_MASK": setting(cache, "QX_DEVICE_BATTERY_EVENT_MASK")}
    notes = re.sub(r"@(\w+)@", lambda match: values[match.group(1)], NOTES.read_text())
    files = {name: (build / "device" / name).read_bytes() for name in ("QXCommMgr.dll", "libQXCommMgr.dll.a")}
    files["QXCommMgr.h"] = (ROOT / "include" / "QXCommMgr.h").read_bytes()
    files["README.txt"] = notes.encode("ascii")
    sums = [f"{hashlib.sha256(data).hexdigest()}  {name}\n" for name, data in sorted(files.items())]
    files["SHA256SUMS"] = "".join(sums).encode("ascii")
    return values["VERSION"], files


def write_zip(path, folder, files):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_STORED) as package:
        for name, data in sorted(files.items()):
            entry = zipfile.ZipInfo(f"{folder}/{name}", EARLIEST)
            entry.create_system, entry.external_attr = UNIX, REGULAR_FILE
            package.writestr(entry, data)


def describe(path, data):
    return f"{path.name}: {len(data)} bytes, sha256 {hashlib.sha256(data).hexdigest()}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=Path)
    parser.add_argument("output", type=Path)
    options = parser.parse_args()
    version, files = contents(options.build)
    options.output.mkdir(parents=True, exist_ok=True)
    package = options.output / f"QXCommMgr-{version}.zip"
    write_zip(package, package.stem, files)
    print(describe(Path("QXCommMgr.dll"), files["QXCommMgr.dll"]))
    print(describe(package, package.read_bytes()))


if __name__ == "__main__":
    main()
