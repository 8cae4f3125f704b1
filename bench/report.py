#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs the benchmarks of a build and prints each figure with its goal.

usage: report.py BUILD_DIRECTORY [--counts] [--json FILE] [--update DOCUMENT]

A count hardly depends on the machine: one that stays over its goal fails. Times are a trend.
With --counts only the counts are taken. The size sweep goes to FILE, for chart.py. What is printed
replaces the figures of DOCUMENT, which stand between two comments.
"""

import argparse
import json
import math
import os
import pathlib
import platform
import re
import subprocess
import sys
import tempfile

REPORT_SIZES = (64, 1024)
# How the machine runs the two threads decides whether a caller finds its answer or waits for it, which takes more:
# a figure over its goal is counted again, and the lowest holds.
MAX_COUNTINGS = 5
# A request of 64 KiB in 64-byte reports.
PACKETS_OF_LONG_REQUEST = (65535 + 6 + 61) // 62

def run(*command):
    return subprocess.run(
        [str(word) for word in command], stdout=subprocess.PIPE, text=True, check=True
    ).stdout


def instructions(build, operation, report_size, goal, fewer, more, is_counted, *mode):
    """Instructions for one operation, under callgrind, in the object files that are counted.

    Two runs of different length cancel what happens once.
    """

    def collected(count):
        with tempfile.NamedTemporaryFile() as output:
            run("valgrind", "--tool=callgrind", f"--callgrind-out-file={output.name}", "-q",
                build / "bench/bench_instructions", operation, report_size, count, *mode)  # fmt: skip
            return self_cost(pathlib.Path(output.name).read_text(), is_counted)

    lowest = {fewer: math.inf, more: math.inf}
    for _ in range(MAX_COUNTINGS):
        lowest = {count: min(lowest[count], collected(count)) for count in lowest}
        figure = (lowest[more] - lowest[fewer]) / (more - fewer)
        if figure <= goal:
            break
    return figure


def self_cost(profile, is_counted):
    """Sums the cost lines of a callgrind profile that lie in the object files that are counted."""
    names, inside, total, is_call = {}, False, 0, False
    for line in profile.splitlines():
        if named := re.match(r"c?ob=\((\d+)\)(?: (.+))?$", line):
            number, name = named.groups()
            names.setdefault(number, name or "")
            if line.startswith("ob="):
                inside = is_counted(names[number])
        elif line.startswith("calls="):
            is_call = True
        elif cost := re.match(r"[+\-*\d]\S* (\d+)$", line):
            if inside and not is_call:
                total += int(cost.group(1))
            is_call = False
    return total


def is_own(name):
    return "libveltrasdk" in name


def is_own_or_runtime(name):
    """All but the program that measures, which holds the stand-in for hidapi."""
    return "bench_instructions" not in name


def worst(figure):
    return max(figure(report_size) for report_size in REPORT_SIZES)


def counts(build):
    printed = run(build / "bench/bench_counts")
    figures = {name: float(value) for name, value in (line.split() for line in printed.splitlines())}

    def allocations(operation):
        return worst(lambda report_size: figures[f"allocations_{operation}_{report_size}"])

    def own(title, operation, goal, *mode):
        return title, worst(lambda size: instructions(build, operation, size, goal, 500, 2000, is_own, *mode)), goal

    def notification(title, operation, goal):
        title = f"own and runtime instructions: {title}"
        return title, instructions(build, operation, 64, goal, 1000, 5000, is_own_or_runtime), goal

    operations = ("getUsbString", "i2cRead", "spiTransfer", "i3cSdrWrite", "i3cSdrRead", "i3cCccGETPID")
    in_c = tuple(name[0].upper() + name[1:] for name in operations[1:])
    for title, names in (("", operations), (", in C", in_c)):
        for name in names:
            yield f"allocations: {name}{title}", allocations(name), 0
    yield "allocations: request of 64 KiB", allocations("longRequest"), 1
    yield "allocations: notification, queued and taken", allocations("queuedNotification"), 0
    yield own("own instructions: getUsbString", "getUsbString", 520)
    for name in operations[1:]:
        yield own(f"own instructions: {name}, 16 bytes", name, 750)
    for name in in_c:
        yield own(f"own instructions: {name}, 16 bytes, in C", name, 850)
    for name in (*operations, *in_c):
        yield f"allocations: {name}, strict mode", allocations(f"strict_{name}"), 0
    for name in (*operations, *in_c):
        goal = 850 if name in in_c else 520 if name == "getUsbString" else 750
        yield own(f"own instructions, strict mode: {name}", name, 1.15 * goal, "strict")
    goal = 200 * PACKETS_OF_LONG_REQUEST
    long_request = instructions(build, "longRequest", 64, goal, 5, 25, is_own_or_runtime)
    per_report = long_request / PACKETS_OF_LONG_REQUEST
    yield "own and runtime instructions per 64-byte report, 64 KiB", per_report, 200
    yield notification("notification", "notification", 400)
    yield notification("notification, in C", "Notification", 500)
    yield notification("the same, queued and taken", "queuedNotification", 1100)
    yield "read calls a second while unplugged", figures["reads_per_second_unplugged"], 15
    yield from footprint(build / "src/libveltrasdk.so")


def footprint(library):
    with tempfile.NamedTemporaryFile() as stripped:
        run("strip", "--strip-unneeded", "-o", stripped.name, library)
        yield "library, stripped, kB", pathlib.Path(stripped.name).stat().st_size / 1000, 120
        relocations = re.findall(r" R_\w+ ", run("readelf", "--relocs", "--wide", stripped.name))
        yield "library, relocations", len(relocations), 250


def times(build, json_file):
    with tempfile.NamedTemporaryFile() as scratch:
        file = json_file or scratch.name
        run(build / "bench/bench_times", f"--benchmark_out={file}")
        runs = json.loads(pathlib.Path(file).read_text())["benchmarks"]
    by_name = {figure["name"].split("/iterations")[0]: figure for figure in runs}
    for report_size in REPORT_SIZES:
        ratio = by_name[f"smallOperation/{report_size}"]["ratio"]
        yield f"small operation / raw, medians, {report_size}-byte reports, 250 us", ratio, 1.03
    speed_up = by_name["overlap/1"]["real_time"] / by_name["overlap/2"]["real_time"]
    yield "time of an operation, overlap 2 / 1, 1 ms frames", 1 / speed_up, 1 / 1.9
    for name, title in (("outOfStep", ""), ("outOfStepInC", ", in C")):
        behind = [by_name[f"{name}/{report_size}"] for report_size in REPORT_SIZES]
        wrong = max(run["wrong"] + abs(run["dropped"] - 1) for run in behind)
        yield f"wrong of 2,000 reads behind a late response, 1 ms{title}", wrong, 0
    for timeout, title in ((5000, "5 s"), (-1, "none")):
        yield f"unplug to the end of an operation, time-out {title}, ms", by_name[f"unplug/{timeout}"]["max_us"] / 1000, 250
    capture = build / "bench/bench_capture"
    if capture.exists():  # not in a build without the programs around the library
        for line in run(capture).splitlines():
            name, value = line.split()
            yield f"capturing, us per {name.rpartition('_')[2]}-byte report", float(value), 5
    yield "disconnect, 99th percentile, ms", by_name["disconnect"]["p99_us"] / 1000, 105


def table(title, figures):
    lines = [f"{title:<60}{'figure':>10}{'goal':>8}"]
    for name, figure, goal in figures:
        mark = "" if figure <= goal else "  OVER ITS GOAL"
        lines.append(f"  {name:<58}{figure:>10.4g}{goal:>8g}{mark}")
    return lines


def environment(build):
    cache = (build / "CMakeCache.txt").read_text()

    def cached(name):
        return re.search(rf"^{name}:\w+=(.*)$", cache, re.MULTILINE).group(1)

    flags = f"{cached('CMAKE_CXX_FLAGS')} {cached('CMAKE_CXX_FLAGS_RELWITHDEBINFO')}".split()
    flags = [flag for flag in dict.fromkeys(flags) if not flag.startswith("-ffile-prefix-map")]
    compiler = run(cached("CMAKE_CXX_COMPILER"), "--version").splitlines()[0]
    processors = pathlib.Path("/proc/cpuinfo").read_text()
    processor = re.search(r"^model name\s*: (.*)$", processors, re.MULTILINE)
    machine = processor.group(1) if processor else platform.machine()
    return [
        f"compiler: {compiler}, {' '.join(flags)}",
        f"machine: {machine}, {os.cpu_count()} processors, Linux {platform.release()}",
    ]


def update(document, lines):
    begin, end = "<!-- figures: begin -->\n", "<!-- figures: end -->\n"
    text = document.read_text()
    if begin not in text or end not in text:
        sys.exit(f"{document}: nothing stands between '{begin.strip()}' and '{end.strip()}'")
    before, rest = text.split(begin)
    block = "\n".join(["```text", *lines, "```", ""])
    document.write_text(f"{before}{begin}\n{block}\n{end}{rest.split(end)[1]}")


parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
parser.add_argument("build", type=pathlib.Path)
parser.add_argument("--counts", action="store_true")
parser.add_argument("--json")
parser.add_argument("--update", type=pathlib.Path)
arguments = parser.parse_args()

counted = list(counts(arguments.build))
printed = table("Counts", counted)
if not arguments.counts:
    printed += ["", *table("Times (a trend)", times(arguments.build, arguments.json))]
    printed += ["", *environment(arguments.build)]
print("\n".join(printed))
if arguments.update:
    update(arguments.update, printed)
sys.exit(any(figure > goal for _, figure, goal in counted))
