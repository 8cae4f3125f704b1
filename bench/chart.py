#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Draws the size sweep as an SVG: chart.py SWEEP.json CHART.svg

The sweep is Google Benchmark's JSON of the programs in this directory: the time of one request by the
size of its message, for the library and for raw hidapi, on both models.
"""

import json
import math
import pathlib
import sys

source, destination = sys.argv[1:]

WIDTH, HEIGHT = 720, 440
LEFT, RIGHT, TOP, BOTTOM = 70, 170, 46, 56
SERIES = {
    ("sweepLibrary", "64"): ("library, 64-byte reports", "#1f6f8b", ""),
    ("sweepRaw", "64"): ("raw hidapi, 64-byte reports", "#1f6f8b", "5 4"),
    ("sweepLibrary", "1024"): ("library, 1024-byte reports", "#c8553d", ""),
    ("sweepRaw", "1024"): ("raw hidapi, 1024-byte reports", "#c8553d", "5 4"),
}

points = {key: [] for key in SERIES}
for run in json.loads(pathlib.Path(source).read_text())["benchmarks"]:
    name, *arguments = run["name"].split("/")
    if name in ("sweepLibrary", "sweepRaw"):
        points[name, arguments[0]].append((int(arguments[1]), run["real_time"] / 1000))

sizes = [size for series in points.values() for size, _ in series]
durations = [duration for series in points.values() for _, duration in series]
lowest = 10 ** math.floor(math.log10(min(durations)))
highest = 10 ** math.ceil(math.log10(max(durations)))


def x(size):
    share = math.log(size / min(sizes)) / math.log(max(sizes) / min(sizes))
    return LEFT + share * (WIDTH - LEFT - RIGHT)


def y(microseconds):
    share = math.log(microseconds / lowest) / math.log(highest / lowest)
    return HEIGHT - BOTTOM - share * (HEIGHT - TOP - BOTTOM)


def text(at_x, at_y, content, anchor="middle", size=12):
    return f'<text x="{at_x:.0f}" y="{at_y:.0f}" text-anchor="{anchor}" font-size="{size}">{content}</text>'


parts = [
    f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
    'font-family="sans-serif" fill="#222">',
    f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>',
    text(LEFT, 24, "One UART message, by its size, over a device that takes no time", "start", 15),
    text((LEFT + WIDTH - RIGHT) / 2, HEIGHT - 14, "bytes"),
    text(8, TOP - 6, "microseconds", "start", 11),
]
decade = lowest
while decade <= highest:
    parts.append(
        f'<line x1="{LEFT}" x2="{WIDTH - RIGHT}" y1="{y(decade):.1f}" y2="{y(decade):.1f}" stroke="#ddd"/>'
    )
    parts.append(text(LEFT - 8, y(decade) + 4, f"{decade:g}", "end"))
    decade *= 10
for size in sorted(set(sizes)):
    parts.append(text(x(size), HEIGHT - BOTTOM + 18, f"{size:,}", size=10))
for row, (key, (label, colour, dashes)) in enumerate(SERIES.items()):
    style = f'fill="none" stroke="{colour}" stroke-width="2" stroke-dasharray="{dashes}"'
    line = " ".join(f"{x(size):.1f},{y(duration):.1f}" for size, duration in sorted(points[key]))
    parts.append(f'<polyline points="{line}" {style}/>')
    legend_y = TOP + 14 + row * 20
    legend_x = WIDTH - RIGHT + 10
    parts.append(f'<polyline points="{legend_x},{legend_y - 4} {legend_x + 20},{legend_y - 4}" {style}/>')
    parts.append(text(legend_x + 25, legend_y, label, "start", 9))
parts.append("</svg>")
pathlib.Path(destination).write_text("\n".join(parts) + "\n")
