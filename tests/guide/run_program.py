#!/usr/bin/env python3
"""usage: run_program.py PROGRAM

Runs a program, or a script of shell commands, of a page in the page's folder and compares what it prints with what the
page says, where it does.
"""

import difflib
import subprocess
import sys
from pathlib import Path


def main():
    program = sys.argv[1]
    command = ["sh", "-e", program] if program.endswith(".sh") else [f"./{program}"]
    run = subprocess.run(command, capture_output=True, text=True)
    sys.stderr.write(run.stderr)
    expected = Path(f"{program}.expected")
    if expected.exists() and run.stdout != expected.read_text():
        sys.stdout.writelines(difflib.unified_diff(expected.read_text().splitlines(True), run.stdout.splitlines(True),
                                                   "what the page says", "what was printed"))
        return 1
    if run.returncode:
        sys.stdout.write(run.stdout)
        print(f"{program} ended with {run.returncode}")
    return run.returncode


if __name__ == "__main__":
    sys.exit(main())
