#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs the tests of the project discovery/ and compares what becomes of each with what is expected.

usage: check_discovery.py CTEST BUILD_DIRECTORY EXPECTED
"""

import json
import pathlib
import re
import subprocess
import sys

RESULT = re.compile(r"Test +#\d+: (.*?) \.+ *\**(Passed|Failed|Not Run(?: \(Disabled\))?)")


def properties(ctest, directory):
    """Each test's name with its labels and its working directory."""
    listed = subprocess.run(
        [ctest, "--test-dir", directory, "--show-only=json-v1"], check=True, stdout=subprocess.PIPE
    ).stdout
    for test in json.loads(listed)["tests"]:
        values = {each["name"]: each["value"] for each in test["properties"]}
        yield test["name"], values.get("LABELS"), values.get("WORKING_DIRECTORY")


def problems(ctest, directory, expected):
    printed = subprocess.run(
        [ctest, "--test-dir", directory, "--parallel", "4"], stdout=subprocess.PIPE, text=True, check=False
    ).stdout
    seen = sorted(f"{name} {result}" for name, result in RESULT.findall(printed))
    if seen != sorted(expected.read_text().splitlines()):
        yield f"{printed}\nseen:\n" + "\n".join(seen)
    for name, labels, place in properties(ctest, directory):
        if name.startswith("test.") and (labels != ["one", "two"] or place != directory):
            yield f"{name}: the labels are {labels}, the working directory is {place}"
        if name.startswith("suite.") and place != "/":
            yield f"{name}: the working directory is {place}"


sys.exit("\n".join(problems(sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]))) or 0)
