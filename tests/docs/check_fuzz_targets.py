#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that every fuzz target has its row in the documents, its seeds and its inputs, and they a target.

usage: check_fuzz_targets.py ROOT
"""

import ast
import pathlib
import re
import sys


def seeded(root):
    """The names in the list of fuzz/seeds.py, which runs only to write files."""
    for statement in ast.parse((root / "fuzz/seeds.py").read_text()).body:
        if isinstance(statement, ast.Assign) and statement.targets[0].id == "TARGETS":
            return {element.id for element in statement.value.elts}
    return set()


def main(root):
    targets = set(re.findall(r"^ *add_fuzzer\((\w+)$", (root / "fuzz/CMakeLists.txt").read_text(), re.MULTILINE))
    table = (root / "docs/reliability.md").read_text().partition("| Target | What it is fed |")[2].partition("\n\n")[0]
    places = {
        "docs/reliability.md": set(re.findall(r"^\| `(\w+)` \| \w", table, re.MULTILINE)),
        "fuzz/seeds.py": seeded(root),
        "fuzz/corpus": {path.name for path in (root / "fuzz/corpus").iterdir()},
    }
    problems = [f"{place}: {target} is missing or none of the targets of fuzz/CMakeLists.txt"
                for place, names in places.items() for target in sorted(names ^ targets)]
    print(f"{len(targets)} fuzz targets")
    print("\n".join(problems))
    return 1 if problems or not targets else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
