#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Prints the lines and branches that the tests run, and fails where either are too few.

usage: report_coverage.py SETTINGS DATA RUN...

The data of the runs is put together into DATA. What imitates other packages is counted apart.
"""

import json
import pathlib
import sys
import tempfile

import coverage

MINIMUM = 95

settings, data, *runs = sys.argv[1:]


def is_covered(what: str, measured: coverage.Coverage, **files: list[str]) -> bool:
    """Prints a part's files, and whether enough of it is run."""
    print(f"{what}:", flush=True)
    measured.report(**files)
    with tempfile.TemporaryDirectory() as directory:
        counted = pathlib.Path(directory) / "counted"
        measured.json_report(outfile=str(counted), **files)
        totals = json.loads(counted.read_text())["totals"]
    lines = 100 * totals["covered_lines"] / totals["num_statements"]
    branches = 100 * totals["covered_branches"] / totals["num_branches"]
    print(f"{what}: {lines:.1f} % of the lines, {branches:.1f} % of the branches", flush=True)
    return min(lines, branches) >= MINIMUM


def main() -> int:
    """Puts the runs together and counts both parts."""
    measured = coverage.Coverage(data_file=data, config_file=settings)
    measured.combine(runs, strict=True, keep=True)
    good = is_covered("The package without compat", measured, include=["*/veltrasdk/*"], omit=["*/veltrasdk/compat/*"])
    return 0 if is_covered("compat", measured, include=["*/veltrasdk/compat/*"]) and good else 1


if __name__ == "__main__":
    sys.exit(main())
