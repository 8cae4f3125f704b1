#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Compares the statuses that the public header names, those that the model of the adapter answers with
and those of the page about it, by name and value: statuses.py ROOT
"""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
LISTS = {
    "include/veltrasdk/status.h": r"^ +VeltraStatus_(\w+) = (0x\w+),",
    "virtual-adapter/model/Status.hpp": r"^ +(\w+) = (0x\w+),",
    "docs/virtual-adapter/index.md": r"^\| (?P<value>0x\w+) \| `(?P<name>\w+)` \| [^|]+ \|$",
}

found = {}
for file, row in LISTS.items():
    rows = [match.groupdict() or dict(zip(("name", "value"), match.groups()))
            for match in re.finditer(row, (root / file).read_text(), re.M)]
    found[file] = {each["name"]: int(each["value"], 0) for each in rows}
# The header has success among the library's own result codes.
found["include/veltrasdk/status.h"]["Success"] = 0

everything = {entry for statuses in found.values() for entry in statuses.items()}
complaints = [
    f"{file} lacks {name} = 0x{value:04X}"
    for file, statuses in found.items()
    for name, value in sorted(everything - set(statuses.items()))
]
print("\n".join(complaints) or f"{len(everything)} statuses")
sys.exit(bool(complaints) or len(everything) < 2)
