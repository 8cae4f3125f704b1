#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs a program that reads the adapter's strings under valgrind and checks what becomes of them.

usage: check_strings.py FAULT VIRTUAL_ADAPTER VALGRIND PROGRAM [ARGUMENT...]

FAULT is what must be found: none, lost or mismatched. Only what valgrind says about memory that
VeltraSDK_GetDeviceInfo allocated counts, so that an interpreter's own leaks do not matter.
"""

import re
import subprocess
import sys
import tempfile

HEADLINES = {"lost": r"definitely lost", "mismatched": r"Mismatched free\(\)"}

fault, virtual_adapter, valgrind, *program = sys.argv[1:]
if program[0].endswith(".py"):
    program.insert(0, sys.executable)

with tempfile.NamedTemporaryFile("r") as log:
    run = subprocess.run(
        [virtual_adapter, "run", "--", valgrind, "--leak-check=full", f"--log-file={log.name}"]
        + program,
        timeout=240,
        check=False,
    )
    report = re.sub(r"^==\d+== ?", "", log.read(), flags=re.MULTILINE)

if run.returncode != 0 or "LEAK SUMMARY" not in report and "no leaks are possible" not in report:
    sys.exit(f"exit status {run.returncode}\n{report}")

found = [part for part in re.split(r"\n\s*\n", report) if "VeltraSDK_GetDeviceInfo" in part]
if fault == "none":
    sys.exit("\n\n".join(found) or None)
if not any(re.search(HEADLINES[fault], part) for part in found):
    sys.exit(f"nothing {fault} was found in\n{report}")
