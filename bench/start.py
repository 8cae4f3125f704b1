#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Measures how long veltra takes to start: start.py BUILD_DIRECTORY

From the start of the program to the first byte that it prints: for --help, and for a read over the virtual
adapter, which is plugged in already. The median of many starts; a trend, not a gate.
"""

import os
import pathlib
import statistics
import subprocess
import sys
import time

STARTS = 50
AIMS = {"--help": 10, "first byte of a read": 30}  # ms


def median_ms(command):
    def once():
        begin = time.perf_counter()
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as program:
            first = program.stdout.read(1)
            end = time.perf_counter()
            program.stdout.read()
        assert first, command
        return (end - begin) * 1000

    return statistics.median(once() for _ in range(STARTS))


def measure(veltra):
    read = [veltra, "-V", "3.3", "i2c", "read", "0x50", "16", "-r", "0", "--pull-up", "4k7"]
    for name, command in (("--help", [veltra, "--help"]), ("first byte of a read", read)):
        print(f"veltra, {name}: {median_ms(command):.1f} ms (aim: {AIMS[name]} ms)")


if __name__ == "__main__":
    if sys.argv[1] == "--measure":
        measure(sys.argv[2])
    else:
        build = pathlib.Path(sys.argv[1]).resolve()
        adapter = build / "virtual-adapter" / "veltra-virtual-adapter"
        os.execv(adapter, [adapter, "run", "--", sys.executable, __file__, "--measure", build / "veltra" / "veltra"])
