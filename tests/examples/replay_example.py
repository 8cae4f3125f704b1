#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Captures an example on the virtual adapter and plays the capture back to it without one.

usage: replay_example.py EXPECTED MODEL VIRTUAL_ADAPTER PRELOADED PROGRAM [ARGUMENT...]

PRELOADED is what LD_PRELOAD holds while it is captured: a sanitizer's runtime, if any, and the capture library. Or it
is a capture, which is played back as it is.

Both times it prints what EXPECTED holds, in which {model} stands for the model's name and TIME for that of an event.
"""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

expected_file, model, virtual_adapter, preloaded, *program = sys.argv[1:]
expected = pathlib.Path(expected_file).read_text().replace("{model}", model)
failed = False


def check(command, environment):
    global failed
    ran = subprocess.run([*command, "--", *program], env={**os.environ, **environment}, stdout=subprocess.PIPE,
                         text=True, timeout=120, check=False)
    printed = re.sub(r"^\d+\.\d{6} ", "TIME ", ran.stdout, flags=re.MULTILINE)
    sys.stdout.writelines(difflib.unified_diff(
        expected.splitlines(True), printed.splitlines(True), "expected", command[1]))
    if ran.returncode != 0 or printed != expected:
        print(f"{command[1]}: exit status {ran.returncode}")
        failed = True


with tempfile.TemporaryDirectory() as directory:
    capture = f"{directory}/example.pcapng"
    if preloaded.endswith(".pcapng"):
        capture = preloaded
    else:
        check([virtual_adapter, "run", "--model", model], {"LD_PRELOAD": preloaded, "VELTRA_CAPTURE": capture})
    check([virtual_adapter, "replay", capture], {})
sys.exit(failed)
