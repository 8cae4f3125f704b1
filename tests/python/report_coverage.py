#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Prints the lines and branches that the tests run, and fails where they are too few.

usage: report_coverage.py SETTINGS DATA RUN...

The data of the runs is put together into DATA. What imitates other packages is counted apart.
"""

import subprocess
import sys

MINIMUM = 95

settings, data, *runs = sys.argv[1:]


def coverage(command: str, *arguments: str) -> bool:
    """Whether coverage is content."""
    tool = [sys.executable, "-m", "coverage", command, f"--rcfile={settings}", f"--data-file={data}"]
    return subprocess.run([*tool, *arguments], check=False).returncode == 0


def main() -> int:
    """Puts the runs together and counts both parts."""
    if not coverage("combine", "--quiet", "--keep", *runs):
        return 1
    gate = f"--fail-under={MINIMUM}"
    print("The package without compat:", flush=True)
    good = coverage("report", gate, "--include=*/veltrasdk/*", "--omit=*/veltrasdk/compat/*")
    print("compat:", flush=True)
    return 0 if coverage("report", gate, "--include=*/veltrasdk/compat/*") and good else 1


if __name__ == "__main__":
    sys.exit(main())
