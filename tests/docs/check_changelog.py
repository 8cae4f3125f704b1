#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that the newest version of CHANGELOG.md is that of the project, with the date of the packages.

usage: check_changelog.py ROOT
"""

import datetime
import pathlib
import re
import sys


def main(root):
    project = re.search(r"^project\(veltrasdk VERSION ([\d.]+)", (root / "CMakeLists.txt").read_text(), re.MULTILINE)[1]
    version, date = re.search(r"^## \[([\d.]+)\] - (.*)$", (root / "CHANGELOG.md").read_text(), re.MULTILINE).groups()
    entry = re.search(r"^ -- .*>?@?  (.*)$", (root / "packaging/debian/changelog.in").read_text(), re.MULTILINE)[1]
    packaged = datetime.datetime.strptime(entry, "%a, %d %b %Y %H:%M:%S %z").date().isoformat()
    told = {"CMakeLists.txt": (project, packaged), "CHANGELOG.md": (version, date)}
    print(*(f"{file}: {version} of {date}" for file, (version, date) in told.items()), sep="\n")
    return len(set(told.values())) > 1


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
