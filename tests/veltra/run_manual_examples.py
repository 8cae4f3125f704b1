#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs every example of veltra's manual pages: run_manual_examples.py VELTRA VIRTUAL_ADAPTER PAGE.h2m..."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

LIMIT = 60  # seconds; a loaded machine stays far below


def examples(page):
    """The commands of the section EXAMPLES, as a reader of the page sees them."""
    section = re.search(r"^\[EXAMPLES\]\n(.*?)(?=^\[|\Z)", page.read_text(), re.MULTILINE | re.DOTALL)
    for line in re.findall(r"^\.TP\n(.*)$", section[1] if section else "", re.MULTILINE):
        yield line.replace("\\-", "-")


def main(veltra, virtual_adapter, *pages):
    directories = [str(pathlib.Path(program).parent) for program in (veltra, virtual_adapter)]
    environment = {**os.environ, "PATH": os.pathsep.join([*directories, os.environ["PATH"]])}
    failures, count = [], 0
    with tempfile.TemporaryDirectory(prefix="veltra-") as directory:
        for page in map(pathlib.Path, pages):
            commands = list(examples(page))
            count += len(commands)
            if not commands:
                failures.append(f"{page.name}: no examples")
            for example in commands:
                done = subprocess.run(example, shell=True, cwd=directory, env=environment, stdin=subprocess.DEVNULL,
                                      capture_output=True, text=True, timeout=LIMIT)
                if done.returncode != 0 or done.stderr:
                    failures.append(f"{page.name}: {example}: exit status {done.returncode}\n"
                                    f"{done.stdout}{done.stderr}")
    print(f"{count} examples of {len(pages)} pages")
    print(*failures, sep="\n")
    return bool(failures)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
