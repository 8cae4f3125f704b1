#!/usr/bin/env python3
"""Runs the benchmarks of a build and prints each figure with its gate and its goal.

usage: report.py BUILD_DIRECTORY [--counts] [--json FILE]

Counts are the same on every machine: one beyond its gate fails. Times are a trend. With --counts only
the counts are taken. The size sweep goes to FILE, for chart.py.
"""

import argparse
import json
import pathlib
import re
import subprocess
import sys
import tempfile


def own_instructions(build):
    """Instructions of the library's own code for one small operation, under callgrind.

    Two runs of different length cancel what happens once. Code that the library calls (the C and
    C++ runtimes, the stand-in) is not its own.
    """

    def collected(operations):
        with tempfile.NamedTemporaryFile() as output:
            subprocess.run(
                ["valgrind", "--tool=callgrind", f"--callgrind-out-file={output.name}", "-q",
                 str(build / "bench/bench_instructions"), "library", str(operations)],
                check=True,
            )  # fmt: skip
            return self_cost(pathlib.Path(output.name).read_text(), "libveltrasdk")

    fewer, more = 1000, 3000
    return (collected(more) - collected(fewer)) / (more - fewer)


def self_cost(profile, object_name):
    """Sums the cost lines of a callgrind profile that lie in one object file."""
    names, inside, total, is_call = {}, False, 0, False
    for line in profile.splitlines():
        if named := re.match(r"c?ob=\((\d+)\)(?: (.+))?$", line):
            number, name = named.groups()
            names.setdefault(number, name or "")
            if line.startswith("ob="):
                inside = object_name in names[number]
        elif line.startswith("calls="):
            is_call = True
        elif cost := re.match(r"[+\-*\d]\S* (\d+)$", line):
            if inside and not is_call:
                total += int(cost.group(1))
            is_call = False
    return total


def counts(build):
    printed = subprocess.run(
        [str(build / "bench/bench_counts")], stdout=subprocess.PIPE, text=True, check=True
    ).stdout
    figures = {name: float(value) for name, value in (line.split() for line in printed.splitlines())}
    small = [v for k, v in figures.items() if k.startswith("allocations_small_operation")]
    beyond = [v for k, v in figures.items() if k.startswith("allocations_beyond_packets")]
    return [
        ("allocations per small operation", max(small), 3, 2),
        ("instructions of its own per small operation", own_instructions(build), 1200, 950),
        ("64 KiB request: allocations beyond one a packet", max(beyond), 3, 1),
        ("read calls a second while unplugged", figures["reads_per_second_unplugged"], 50, 15),
    ]


def times(build, json_file):
    with tempfile.NamedTemporaryFile() as scratch:
        file = json_file or scratch.name
        subprocess.run(
            [str(build / "bench/bench_times"), f"--benchmark_out={file}"],
            stdout=subprocess.DEVNULL, check=True,
        )  # fmt: skip
        runs = json.loads(pathlib.Path(file).read_text())["benchmarks"]
    by_name = {run["name"].split("/")[0]: run for run in runs if "median_us" in run}

    def ratio(name):
        return by_name[name + "Library"]["median_us"] / by_name[name + "Raw"]["median_us"]

    return [
        ("small operation / raw, median, device 250 us", ratio("smallOperation"), 1.10, 1.05),
        ("64 KiB request / raw, median, 125 us a report", ratio("longRequest"), 1.01, 1.005),
        ("disconnect, 99th percentile, ms", by_name["disconnect"]["p99_us"] / 1000, 110, 105),
    ]


def print_table(title, figures):
    print(f"{title:<52}{'figure':>10}{'gate':>10}{'goal':>10}")
    for name, figure, gate, goal in figures:
        mark = "" if figure <= goal else "  over its goal" if figure <= gate else "  OVER ITS GATE"
        print(f"  {name:<50}{figure:>10.4g}{gate:>10g}{goal:>10g}{mark}", flush=True)


parser = argparse.ArgumentParser(description=__doc__)
parser.add_argument("build", type=pathlib.Path)
parser.add_argument("--counts", action="store_true")
parser.add_argument("--json")
arguments = parser.parse_args()

counted = counts(arguments.build)
print_table("Counts", counted)
if not arguments.counts:
    print_table("Times (a trend, never a gate)", times(arguments.build, arguments.json))
sys.exit(any(figure > gate for _, figure, gate, _ in counted))
