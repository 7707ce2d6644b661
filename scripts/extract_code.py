#!/usr/bin/env python3
"""Takes the programs and files out of the pages of the documentation.

usage: extract_code.py OUT PAGE...

A fenced block whose first line is a comment that holds nothing but a file name belongs to that file:

    ```cpp                  ```xml                         ```sh
    // meter.cpp            <!-- meter.xml -->             # meter.sh

Blocks of one name on one page follow each other in the file. A block opened with "```text NAME" is what the program NAME
prints, word for word. A C++ block without a name that has a main function is a program, too. The files of a page go to
OUT/PAGE-STEM; those that have not changed are not touched, those that are in no page any more are removed. Prints the
files, one a line.
"""

import re
import sys
from pathlib import Path

FENCE = re.compile(r"^```(\w*)[ \t]*([^\n]*)\n(.*?)^```[ \t]*$", re.M | re.S)
NAME = re.compile(r"^(?://|#|<!--)\s*([\w.-]+\.\w+)\s*(?:-->)?\s*\n")


def files_of(page):
    """Name and text of each file on a page, in their order."""
    text = page.read_text()
    files, programs = {}, 0
    for match in FENCE.finditer(text):
        language, info, body = match.groups()
        line = text.count("\n", 0, match.start(3)) + 1
        named = NAME.match(body)
        if language == "text" and info:
            name = f"{info}.expected"
        elif named:
            name = named[1]
        elif language == "cpp" and re.search(r"^int main\(", body, re.M):
            programs += 1
            name = f"program{programs}.cpp"
        else:
            continue
        if language == "cpp":
            body = f'#line {line} "{page}"\n{body}'
        files[name] = files.get(name, "") + body
    return files


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    out = Path(sys.argv[1])
    written = set()
    for argument in sys.argv[2:]:
        page = Path(argument).resolve()
        for name, body in files_of(page).items():
            path = out / page.stem / name
            path.parent.mkdir(parents=True, exist_ok=True)
            if not path.exists() or path.read_text() != body:
                path.write_text(body)
            written.add(path)
            print(path)
    for path in out.rglob("*"):
        if path.is_file() and path not in written:
            path.unlink()
    return 0


if __name__ == "__main__":
    sys.exit(main())
