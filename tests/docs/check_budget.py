#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that the budget of a notification handler is told alike wherever it is told:
check_budget.py CONTRACT FILE...

The contract's section gives the limits of one call and of one stall, at both speeds, and the reports that
hidapi keeps. No other document and no header says anything else.
"""

import pathlib
import re
import sys

LIMITS = r"([\d.]+ ms) at full speed,? (?:and )?([\d.]+ ms) at high speed"
UNREAD = r"(\d+) (?:unread reports|reports that nobody has read)"


def read(name):
    """The text without its line breaks and the marks of a comment."""
    return " ".join(re.sub(r"^ *\* ", "", pathlib.Path(name).read_text(), flags=re.M).split())


contract = re.search(r"## The notification budget (.*?) ## ", read(sys.argv[1]))[1]
limits = set(re.findall(LIMITS, contract))
unread = set(re.findall(UNREAD, contract))
failures = []
told = 0
for name in sys.argv[1:]:
    text = read(name)
    for pattern, agreed in ((LIMITS, limits), (UNREAD, unread)):
        for match in re.finditer(pattern, text):
            told += 1
            entry = match.groups() if pattern is LIMITS else match[1]
            if entry not in agreed:
                failures.append(f"{name}: the contract does not say: {match[0]}")

print("\n".join(failures) or f"told {told} times")
sys.exit(bool(failures) or len(limits) != 2 or len(unread) != 1)
