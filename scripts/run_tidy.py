#!/usr/bin/env python3
"""Runs clang-tidy over the tree, several files side by side.

usage: run_tidy.py BUILD_FOLDER JOBS [FILE...]

BUILD_FOLDER holds compile_commands.json. A file that passed is remembered with a digest of everything it is made of (the
file, all headers of the tree, .clang-tidy) and not looked at again until one of these changes.
"""

import hashlib
import json
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def digest_of_headers():
    digest = hashlib.sha256((ROOT / ".clang-tidy").read_bytes())
    for folder in ("basekit", "mediakit", "newfilelibs", "qlx", "app", "host", "tools", "tests/support"):
        for header in sorted((ROOT / folder).rglob("*.h")):
            digest.update(header.read_bytes())
    return digest.digest()


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    build, jobs, wanted = Path(sys.argv[1]), int(sys.argv[2]), [Path(name).resolve() for name in sys.argv[3:]]
    commands = json.loads((build / "compile_commands.json").read_text())
    files = sorted({Path(entry["file"]) for entry in commands})
    files = [f for f in files if ROOT in f.parents and ROOT / "build" not in f.parents]
    if wanted:
        files = [f for f in files if f in wanted]
    remembered_path = build / "tidy-passed.json"
    try:
        remembered = set(json.loads(remembered_path.read_text()))
    except (OSError, ValueError):
        remembered = set()
    headers = digest_of_headers()
    keys = {f: hashlib.sha256(headers + str(f).encode() + f.read_bytes()).hexdigest() for f in files}
    todo = [f for f in files if keys[f] not in remembered]

    def check(file):
        run = subprocess.run(["clang-tidy-14", "-p", str(build), "--quiet", str(file)], capture_output=True, text=True)
        return file, run.returncode == 0, run.stdout

    failures = 0
    passed = {keys[f] for f in files} & remembered
    with ThreadPoolExecutor(jobs) as pool:
        for file, good, output in pool.map(check, todo):
            if good:
                passed.add(keys[file])
            else:
                failures += 1
                print(output.replace(str(ROOT) + "/", ""), flush=True)
    remembered_path.write_text(json.dumps(sorted(passed)))
    print(f"clang-tidy: {len(files)} files, {len(todo)} looked at, {failures} with findings")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
