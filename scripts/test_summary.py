#!/usr/bin/env python3
"""Adds up the test reports of several build folders and closes with the line "N passed, M failed".

usage: test_summary.py PART=FOLDER...

FOLDER/reports holds ctest.xml, written by ctest, and one NAME.xml a Google Test program NAME, whose cases are counted
one by one. A program that left no report of its own counts as one failure when ctest saw it fail. A part without
ctest.xml did not come as far as its tests and counts as one failure. Skipped cases are listed and not counted.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

# Set-up and tear-down steps are no tests.
FIXTURES = {"wine_up", "wine_down", "install_prefix"}


def parse(path):
    try:
        return ElementTree.parse(path).getroot()
    except (OSError, ElementTree.ParseError):
        return None


def count_cases(root):
    """Yields (name, state) for each case of a Google Test report."""
    for suite in root.iter("testsuite"):
        for case in suite.findall("testcase"):
            name = f"{suite.get('name')}.{case.get('name')}"
            if case.get("status") == "notrun":
                continue  # disabled
            if case.find("failure") is not None or case.find("error") is not None:
                yield name, "failed"
            elif case.find("skipped") is not None or case.get("result") == "skipped":
                yield name, "skipped"
            else:
                yield name, "passed"


def count_part(folder):
    """Yields (name, state) for everything a part ran."""
    ctest = parse(folder / "reports/ctest.xml")
    if ctest is None:
        yield "the build or the start of the tests", "failed"
        return
    for test in ctest.iter("testcase"):
        name = test.get("name")
        failed = test.get("status") == "fail" or test.find("failure") is not None
        if name in FIXTURES:
            if failed:
                yield name, "failed"
            continue
        report = parse(folder / f"reports/{name}.xml")
        if report is not None:
            states = list(count_cases(report))
            yield from ((f"{name}: {case}", state) for case, state in states)
            if failed and not any(state == "failed" for _, state in states):
                yield f"{name}: ended badly after its cases", "failed"
        elif failed:
            yield name, "failed"
        elif test.get("status") == "run" and test.find("skipped") is None:
            yield name, "passed"
        else:
            yield name, "skipped"


def main():
    totals = {"passed": 0, "failed": 0, "skipped": 0}
    failures, skips = [], []
    for argument in sys.argv[1:]:
        part, folder = argument.split("=", 1)
        counts = {"passed": 0, "failed": 0, "skipped": 0}
        for name, state in count_part(Path(folder)):
            counts[state] += 1
            if state == "failed":
                failures.append(f"{part}: {name}")
            elif state == "skipped":
                skips.append(f"{part}: {name}")
        print(f"{part}: {counts['passed']} passed, {counts['failed']} failed, {counts['skipped']} skipped")
        for state, count in counts.items():
            totals[state] += count
    for name in skips:
        print(f"SKIPPED {name}")
    for name in failures:
        print(f"FAILED  {name}")
    print(f"{totals['passed']} passed, {totals['failed']} failed")
    return 1 if totals["failed"] or not totals["passed"] else 0


if __name__ == "__main__":
    sys.exit(main())
