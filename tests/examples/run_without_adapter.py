#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs an example where no adapter can be opened, and checks that it says what to do and fails.

usage: run_without_adapter.py SAID VIRTUAL_ADAPTER PROGRAM [ARGUMENT...]

SAID is a regular expression for what stands on the standard error output.
"""

import re
import subprocess
import sys

said, virtual_adapter, *program = sys.argv[1:]

run = subprocess.run(
    [virtual_adapter, "run", "--fault", "no-permission", "--", *program],
    stderr=subprocess.PIPE,
    text=True,
    timeout=120,
    check=False,
)
print(run.stderr, f"exit status {run.returncode}", sep="")
sys.exit(run.returncode != 1 or not re.search(said, run.stderr))
