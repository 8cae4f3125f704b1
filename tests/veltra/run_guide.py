#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs the commands of a guide in one shell under a virtual adapter, and compares what they print.

usage: run_guide.py LABEL GUIDE.md VELTRA VIRTUAL_ADAPTER

Behind each block of the label stands a text block: all that it prints, errors too. Each `veltra ...` between
backticks in a table is a command that the program understands, too: it is rehearsed.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

LIMIT = 120  # seconds; a loaded machine stays far below
END = "--- end of block ---"


def session(label, text):
    """The commands of each block, and what they print."""
    block = rf"^<!-- run: {label} -->\n```sh\n(.*?)^```\n+```text\n(.*?)^```$"
    return re.findall(block, text, re.MULTILINE | re.DOTALL)


def run(script, veltra, virtual_adapter):
    environment = {name: value for name, value in os.environ.items() if not name.startswith("VELTRA")}
    # Debian keeps some programs where an ordinary user's shell does not look.
    environment["PATH"] = os.pathsep.join([str(pathlib.Path(veltra).parent), environment["PATH"], "/usr/sbin"])
    with tempfile.TemporaryDirectory(prefix="veltra-") as directory:
        return subprocess.run([virtual_adapter, "run", "--", "bash", "-c", script], cwd=directory, env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              timeout=LIMIT)


def main(label, guide, veltra, virtual_adapter):
    text = pathlib.Path(guide).read_text()
    blocks = session(label, text)
    problems = []
    printed = run("".join(f"{commands}echo '{END}'\n" for commands, _ in blocks), veltra, virtual_adapter).stdout
    marked = text.count(f"<!-- run: {label} -->")
    if (marked, len(blocks)) != (len(blocks), printed.count(END)):
        problems.append(f"{marked} blocks are marked, {len(blocks)} say what they print, {printed.count(END)} ended")
    for (commands, expected), seen in zip(blocks, printed.split(END + "\n")):
        if seen != expected:
            problems.append(f"{commands}expected:\n{expected}printed:\n{seen}")
    rows = "\n".join(re.findall(r"^\|.*", text, re.MULTILINE))
    habits = [command for command in re.findall(r"`(veltra [^`]*)`", rows)]
    for command in habits:
        options = "-q" if " flash " in command else "--dry-run"
        done = run("touch flash.bin\n" + command.replace("veltra", f"veltra {options}", 1), veltra, virtual_adapter)
        if done.returncode == 2 and "overwritten" not in done.stdout and "erased" not in done.stdout:
            problems.append(f"{command}: {done.stdout}")
    print(f"{len(blocks)} blocks, {len(habits)} commands in tables", *problems, sep="\n")
    return bool(problems) or not blocks + habits


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
