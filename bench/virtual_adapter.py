#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Prints what a program pays for running under the virtual adapter: virtual_adapter.py BUILD_DIRECTORY

Medians of twenty runs. They are a trend, and gate nothing.
"""

import pathlib
import statistics
import subprocess
import sys
import time

RUNS = 20
OPERATIONS = 1000

build = pathlib.Path(sys.argv[1])
run = [build / "virtual-adapter/veltra-virtual-adapter", "run", "--"]
small_operations = build / "bench/bench_small_operations"


def milliseconds(*command):
    def once():
        start = time.perf_counter()
        subprocess.run([str(word) for word in command], check=True)
        return 1000 * (time.perf_counter() - start)

    return statistics.median(once() for _ in range(RUNS))


start_up = milliseconds(*run, "true")
connecting = milliseconds(*run, small_operations, 0)
working = milliseconds(*run, small_operations, OPERATIONS)
print(f"true: {milliseconds('true'):.1f} ms; under run: {start_up:.1f} ms")
print(f"{OPERATIONS} small operations under run: {working - connecting:.0f} ms")
