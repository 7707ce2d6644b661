#!/usr/bin/env python3
"""Checks that nothing includes upward, and that system headers stay behind their walls.

The floors are those of cmake/floors.txt: a file may include headers of its own floor and of lower ones. Floor 10, the
platform sides, is included only by itself and by programs, tests and benchmarks. Prints FILE:LINE: reason for each
violation and exits with 1 when there is one.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LIBRARY = ("basekit/", "mediakit/", "newfilelibs/", "qlx/", "app/")
EXPORT_MACROS = ("basekit/cmn/cmn_types.h", "basekit/cmn/cmn_internal.h")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')

# What may be included only in folders of these names.
WALLS = [
    (re.compile(r"^(windows|windowsx|windef|winuser|wingdi|d2d1.*|dwrite.*|wincodec|commdlg|shlobj|imm)\.h$", re.I),
     ("win32",), "Windows headers stand only in folders named win32"),
    (re.compile(r"^SDL"), ("sdl",), "SDL stands only in qlx/platform/sdl"),
    (re.compile(r"^(cairo|pango|freetype|ft2build|fontconfig)"), ("cairo",),
     "Cairo and Pango stand only in qlx/imaging/cairo"),
    (re.compile(r"^(unistd\.h|dirent\.h|pthread\.h|fcntl\.h|poll\.h|dlfcn\.h|sys/|mach/)"), ("posix", "sdl", "cairo"),
     "POSIX headers stand only in folders named posix"),
]


def read_floors():
    floors = []
    for line in (ROOT / "cmake/floors.txt").read_text().splitlines():
        match = re.match(r"([0-9]+) (.*)$", line)
        if match:
            pattern = ".*".join(re.escape(piece) for piece in match[2].strip().split("*"))
            floors.append((int(match[1]), re.compile(pattern + "$")))
    return floors


def floor_of(path, floors):
    stem = re.sub(r"\.[a-z]+$", "", path)
    for number, pattern in floors:
        if pattern.match(stem):
            return number
    return None


def check_file(path, floors, headers):
    floor = floor_of(path, floors)
    if floor is None:
        yield 1, "stands on no floor: add a line to cmake/floors.txt"
        return
    folders = path.split("/")[:-1]
    for number, line in enumerate((ROOT / path).read_text(errors="replace").splitlines(), 1):
        if re.search(r"\b_WIN32\b", line) and "win32" not in folders and path not in EXPORT_MACROS:
            yield number, "_WIN32 is asked only in folders named win32 and in the export macros"
        match = INCLUDE.match(line)
        if not match:
            continue
        name = match[2]
        for wall, allowed, reason in WALLS:
            if match[1] == "<" and wall.match(name) and not set(allowed) & set(folders):
                yield number, f"<{name}>: {reason}"
        if match[1] != '"':
            continue
        if name not in headers:
            yield number, f'"{name}" is not a header of the library'
            continue
        target = floor_of(name, floors)
        if target is not None and target > floor:
            yield number, f'"{name}" stands on floor {target}, above this file\'s floor {floor}'


def main():
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout.split("\n")
    files = [f for f in listed if f.startswith(LIBRARY) and f.endswith((".h", ".cpp")) and (ROOT / f).exists()]
    headers = {f for f in files if f.endswith(".h")}
    floors = read_floors()
    violations = 0
    for path in files:
        for number, reason in check_file(path, floors, headers):
            print(f"{path}:{number}: {reason}")
            violations += 1
    print(f"{len(files)} files, {violations} violations")
    return 1 if violations else 0


if __name__ == "__main__":
    sys.exit(main())
