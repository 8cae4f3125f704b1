#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs an example against the virtual adapter and compares what it prints.

usage: run_example.py EXPECTED MODEL VIRTUAL_ADAPTER PROGRAM [ARGUMENT...]

EXPECTED is a file with the whole output, in which {model} stands for the model's name.
"""

import difflib
import pathlib
import subprocess
import sys

expected_file, model, virtual_adapter, *program = sys.argv[1:]

expected = pathlib.Path(expected_file).read_text().replace("{model}", model)
run = subprocess.run(
    [virtual_adapter, "run", "--model", model, "--", *program],
    stdout=subprocess.PIPE,
    text=True,
    timeout=120,
    check=False,
)
sys.stdout.writelines(
    difflib.unified_diff(
        expected.splitlines(True), run.stdout.splitlines(True), "expected", "printed"
    )
)
if run.returncode != 0:
    print(f"exit status {run.returncode}")
sys.exit(run.returncode != 0 or run.stdout != expected)
