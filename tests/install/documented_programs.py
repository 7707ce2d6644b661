#!/usr/bin/env python3
"""usage: documented_programs.py PREFIX ROOT

Builds the programs that README.md and docs/*.md show, against the installed library, and runs them. A C++ block counts
as a program when it has a main function; one whose first line is `// compile only` is not run. Fragments of the guide
are quoted from files that are built elsewhere.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

BLOCK = re.compile(r"^```cpp\n(.*?)^```", re.M | re.S)


def programs(root):
    for page in [root / "README.md", *sorted((root / "docs").rglob("*.md"))]:
        if not page.exists():
            continue
        text = page.read_text()
        for match in BLOCK.finditer(text):
            if re.search(r"^int main\(", match[1], re.M):
                line = text.count("\n", 0, match.start()) + 2
                yield f"{page.relative_to(root)}:{line}", match[1]


def main():
    prefix, root = Path(sys.argv[1]), Path(sys.argv[2])
    work = Path(f"{prefix}-documented")
    work.mkdir(exist_ok=True)
    environment = dict(os.environ, LD_LIBRARY_PATH=str(prefix / "lib"))
    count = failures = 0
    for place, code in programs(root):
        count += 1
        source = work / f"program{count}.cpp"
        program = work / f"program{count}"
        source.write_text(f'#line {place.rsplit(":", 1)[1]} "{place.rsplit(":", 1)[0]}"\n{code}')
        built = subprocess.run(["g++", "-std=c++20", "-Wall", "-Wextra", f"-I{prefix}/include", "-o", program, source,
                                f"-L{prefix}/lib", "-lqlx"], capture_output=True, text=True)
        if built.returncode or built.stderr:
            print(f"{place}: does not build\n{built.stderr}")
            failures += 1
            continue
        if code.startswith("// compile only"):
            continue
        try:
            run = subprocess.run([program], cwd=work, env=environment, capture_output=True, text=True, timeout=60)
        except subprocess.TimeoutExpired:
            print(f"{place}: did not end within a minute")
            failures += 1
            continue
        if run.returncode:
            print(f"{place}: ended with {run.returncode}\n{run.stdout}{run.stderr}")
            failures += 1
    print(f"{count} programs, {failures} failures")
    return 1 if failures or not count else 0


if __name__ == "__main__":
    sys.exit(main())
