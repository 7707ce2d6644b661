#!/usr/bin/env python3
"""Writes the tables of docs/performance.md from the results that ./dev bench left.

usage: bench_table.py BUILD_FOLDER PAGE

BUILD_FOLDER/results/PROGRAM.json is Google Benchmark's output. A benchmark's name is Subject_Operation with an optional
variant and numbers behind slashes; bench/peers.txt says which variants are peers. Every cell below a peer is our time
divided by the peer's in the same run: below 1 we are faster. The section of a program opens with the comment at the
head of its source; bench/PROGRAM.md, where there is one, closes it. Programs without results keep the section that the
page has, or are named as not measured.
"""

import json
import os
import re
import subprocess
import sys
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
MODIFIER = re.compile(r"^(real_time|process_time|manual_time|(min_time|iterations|repeats|threads|min_warmup_time):.*)$")
# Headings of the sections whose programs' names do not say enough.
TITLES = {
    "event": "Events and commands",
    "numericentry": "Numeric entry fields",
    "persistence": "Properties and descriptions",
    "region": "Regions",
    "startup": "Start of a program",
    "timecode": "Time code",
    "uclassdesc": "Object model and containers",
    "view": "The view tree",
}
OWN_COUNTERS = {"items_per_second", "bytes_per_second"}


def read_peers():
    peers = {}
    for line in (ROOT / "bench/peers.txt").read_text().splitlines():
        words = line.split()
        if len(words) == 3 and not line.startswith("#"):
            peers[words[0]] = (words[1].replace("_", " "), words[2])
    return peers


def split_name(name, peers):
    """(row, peer or None) of a benchmark's name."""
    pieces = [piece for piece in name.split("/") if not MODIFIER.match(piece)]
    peer = None
    kept = []
    for piece in pieces:
        if piece.lower() in peers and len(kept) > 0 and peer is None:
            peer = piece.lower()
        elif piece.lower() != "qlx":
            kept.append(piece)
    return "/".join(kept), peer


def nanoseconds(result):
    # The processor's time, which other programs on the machine disturb less, unless the benchmark asks for the clock's.
    asks_for_clock = re.search(r"/(real|manual)_time\b", result["name"])
    return result["real_time" if asks_for_clock else "cpu_time"] * {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[result["time_unit"]]


def format_time(ns):
    for limit, unit, factor in ((1e3, "ns", 1), (1e6, "µs", 1e3), (1e9, "ms", 1e6)):
        if ns < limit:
            return f"{ns / factor:.3g} {unit}"
    return f"{ns / 1e9:.3g} s"


def format_ratio(ratio):
    return f"{ratio:.2f}" if ratio < 10 else f"{ratio:.0f}"


def counters_of(result):
    """Counters that the benchmark itself reports, as text."""
    standard = {"name", "family_index", "per_family_instance_index", "run_name", "run_type", "repetitions",
                "repetition_index", "threads", "iterations", "real_time", "cpu_time", "time_unit", "label",
                "error_occurred", "error_message"} | OWN_COUNTERS
    parts = [f"{key} {value:.4g}" for key, value in result.items()
             if key not in standard and isinstance(value, (int, float))]
    if result.get("label"):
        parts.append(result["label"])
    return ", ".join(parts)


def table_of(program, data, peers):
    rows, columns, notes = {}, [], []
    # Repetitions are measured in random order; the table is in that of the source.
    for result in sorted(data["benchmarks"],
                         key=lambda each: (each.get("family_index", 0), each.get("per_family_instance_index", 0))):
        if result.get("run_type") == "aggregate":
            continue
        row, peer = split_name(result["name"], peers)
        if result.get("error_occurred"):
            notes.append(f"`{result['name']}` failed: {result.get('error_message')}")
            continue
        cells = rows.setdefault(row, {})
        # Of repetitions the fastest counts: what disturbs a run only makes it slower.
        if peer not in cells or nanoseconds(result) < nanoseconds(cells[peer]):
            cells[peer] = result
        if peer and peer not in columns:
            columns.append(peer)
    columns.sort(key=list(peers).index)
    ours = [row for row, cells in rows.items() if None in cells]
    # Rows of one operation stand together, operations in the order in which they were measured.
    operations = list(dict.fromkeys(row.split("/")[0] for row in ours))
    ours.sort(key=lambda row: operations.index(row.split("/")[0]))
    counted = any(counters_of(rows[row][None]) for row in ours)
    lines = ["| operation | " + "".join(f"to {peers[peer][0]} | " for peer in columns) + "our time |"
             + (" counted |" if counted else ""),
             "| --- | " + "---: | " * len(columns) + "---: |" + (" --- |" if counted else "")]
    for row in ours:
        time = nanoseconds(rows[row][None])
        line = f"| `{row}` | "
        for peer in columns:
            # A peer's time serves every variant of ours with the same operation and numbers.
            theirs = rows[row].get(peer) or peer_without_variant(rows, row, peer)
            line += (format_ratio(time / nanoseconds(theirs)) if theirs else "") + " | "
        line += format_time(time) + " |"
        lines.append(line + (f" {counters_of(rows[row][None])} |" if counted else ""))
    source = (ROOT / f"bench/{program}.cpp").read_text()
    source += (ROOT / f"bench/{program}.cmake").read_text() if (ROOT / f"bench/{program}.cmake").exists() else ""
    absent = [f"{label} (`{package}`)" for name, (label, package) in peers.items()
              if package != "-" and name not in columns and re.search(rf"/{name}\b", source, re.I)]
    if absent:
        notes.append("Not installed where this was measured: " + ", ".join(absent) + ".")
    return lines, notes


def peer_without_variant(rows, row, peer):
    """The peer's result for the row's operation and numbers, whatever the variant of ours is called."""
    pieces = row.split("/")
    plain = "/".join([pieces[0]] + [piece for piece in pieces[1:] if re.match(r"^-?[0-9]", piece)])
    return rows.get(plain, {}).get(peer)


def title_of(program):
    name = program.removesuffix("_bench")
    return TITLES.get(name, name.replace("_", " ").capitalize())


def heading_comment(source):
    lines = []
    for line in source.splitlines():
        if not line.startswith("//"):
            break
        lines.append(line[2:].strip())
    return re.sub(" +", " ", " ".join(lines)).replace("<", "&lt;")


def machine(context):
    """The machine in words."""
    model, system, memory = "an unnamed processor", "", 0
    try:
        model = re.search(r"^model name\s*: (.*)$", Path("/proc/cpuinfo").read_text(), re.M)[1]
        model = re.sub(r"\((R|TM)\)|CPU|Processor|@.*", "", model).strip()
        memory = round(int(re.search(r"MemTotal:\s*(\d+)", Path("/proc/meminfo").read_text())[1]) / 2**20)
        system = re.search(r'^PRETTY_NAME="(.*)"$', Path("/etc/os-release").read_text(), re.M)[1]
    except (OSError, TypeError):
        pass
    compiler = subprocess.run(["g++", "-dumpfullversion"], capture_output=True, text=True).stdout.strip()
    return (f"{context.get('num_cpus', os.cpu_count())} cores of {re.sub(' +', ' ', model)}, {memory} GB of memory, "
            f"{system}, g++ {compiler} with -O2")


def old_sections(page):
    """The sections of the page as it stands, by program."""
    if not page.exists():
        return {}
    pieces = re.split(r"^<!-- (\w+_bench) -->\n", page.read_text(), flags=re.M)
    return dict(zip(pieces[1::2], pieces[2::2]))


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    build, page = Path(sys.argv[1]), Path(sys.argv[2])
    peers = read_peers()
    sections = old_sections(page)
    context = {}
    for source in sorted((ROOT / "bench").glob("*_bench.cpp")):
        program = source.stem
        try:
            data = json.loads((build / f"results/{program}.json").read_text())
        except (OSError, ValueError):
            # Nothing is left out in silence.
            sections.setdefault(program, f"## {title_of(program)}\n\n" + textwrap.fill(
                heading_comment(source.read_text()), 120) + "\n\nNot measured on this machine.\n\n")
            continue
        context = data["context"]
        lines, notes = table_of(program, data, peers)
        text = [f"## {title_of(program)}", "", textwrap.fill(heading_comment(source.read_text()), 120), "", *lines, ""]
        for note in notes:
            text += [textwrap.fill(note, 120), ""]
        remarks = ROOT / f"bench/{program}.md"
        if remarks.exists():
            text += [remarks.read_text().strip(), ""]
        sections[program] = "\n".join(text) + "\n"
    wanted = {source.stem for source in (ROOT / "bench").glob("*_bench.cpp")}
    contents = "".join(f"- [{title_of(program)}](#{title_of(program).lower().replace(' ', '-')})\n"
                       for program in sorted(sections) if program in wanted)
    body = "".join(f"<!-- {program} -->\n{text}" for program, text in sorted(sections.items()) if program in wanted)
    head = ("# How fast it is\n\n"
            "Written by `./dev bench`; change bench/ and not this page.\n\n"
            "A number below \"to X\" is our time divided by X's in the same run: below 1 we are faster. Ratios are what\n"
            "counts; times are for orientation only. Of five repetitions, all in random order, the fastest counts. A cell\n"
            "is empty where X has no such operation.\n\n"
            + textwrap.fill(f"Measured on {machine(context)}.", 120) + f"\n\n{contents}\n")
    page.parent.mkdir(exist_ok=True)
    page.write_text(head + body.rstrip("\n") + "\n")
    print(f"{page}: {len(sections)} sections")
    return 0


if __name__ == "__main__":
    sys.exit(main())
