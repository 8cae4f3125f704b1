#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks the table of the guide to tools: check_tools.py GUIDE.md SOURCE_DIRECTORY TEST...

Each row names a test or a script that is there, and each test of other people's programs has a row.
"""

import pathlib
import re
import sys

# What programs meet besides, whichever they are.
OF_NO_TOOL = {"veltra.runs.devices"}

guide, source, *tests = sys.argv[1:]
rows = re.findall(r"^\| *([^|]*?) *\|(?:[^|]*\|){4} *([^|]*?) *\|$", pathlib.Path(guide).read_text(), re.MULTILINE)
named = {tool: name.strip("`") for tool, name in rows if tool != "Tool" and tool.strip("-")}
problems = [f"{tool}: there is no test {name}" for tool, name in named.items()
            if name not in tests and not (name.startswith("scripts/") and pathlib.Path(source, name).is_file())]
problems += [f"no row names {test}" for test in sorted(set(tests) - set(named.values()) - OF_NO_TOOL)]
print(f"{len(named)} rows", *problems, sep="\n")
sys.exit(bool(problems) or not named)
