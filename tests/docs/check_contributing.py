#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that every path named in CONTRIBUTING.md exists, and that its layout names every room.

usage: check_contributing.py ROOT

A path stands between backticks and has a slash or a document's suffix. A word in capitals is a
placeholder: some file must fit it.
"""

import pathlib
import re
import sys

LAYOUT = re.compile(r"^## The layout\n\n```text\n(.*?)^```$", re.MULTILINE | re.DOTALL)
BLOCK = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
PATH = re.compile(r"(?:\./)?((?:[\w.-]+/)+[\w.-]*|[\w-]+\.(?:md|txt))")
PLACEHOLDER = re.compile(r"\b[A-Z]+(?=[/_.])")
# Directories whose rooms the layout names one by one.
HOUSES = ("include", "src", "virtual-adapter")


def named_paths(text):
    for code in re.findall(r"`([^`\n]+)`", BLOCK.sub("", text)):
        for word in code.split():
            # What a build makes is not there before it.
            if (match := PATH.fullmatch(word)) and not match[1].startswith("build/"):
                yield match[1]


def exists(root, path):
    if (root / path).exists():
        return True
    pattern = PLACEHOLDER.sub("*", path)
    return pattern != path and any(root.glob(pattern))


def rooms(root):
    """Every directory at the top, or one below in a house."""

    def directories(parent):
        return [path for path in parent.iterdir() if path.is_dir() and not path.name.startswith((".", "_", "build"))]

    for top in directories(root):
        if top.name in HOUSES:
            yield from (f"{top.name}/{room.name}/" for room in directories(top))
        else:
            yield f"{top.name}/"


def main(root):
    text = (root / "CONTRIBUTING.md").read_text()
    layout = [line.split()[0] for line in LAYOUT.search(text)[1].splitlines()]
    paths = {*named_paths(text), *layout}
    problems = [f"CONTRIBUTING.md: there is no {path}" for path in sorted(paths) if not exists(root, path)]
    missing = sorted(set(rooms(root)) - set(layout))
    problems += [f"CONTRIBUTING.md: the layout does not name {room}" for room in missing]
    print(f"{len(paths)} paths")
    print("\n".join(problems))
    return bool(problems)


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
