#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that whatever a guide shows it shows in every language: check_tabs.py FILE.md...

What stands side by side, up to a heading or the end of the tabs, is C, C++, Python and shell, in this order: who reads
in one of them finds all of it there.
"""

import pathlib
import re
import sys

LANGUAGES = ["C", "C++", "Python", "Shell"]
FENCED_BLOCK = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
LABEL = re.compile(r"\*\*([^*]+)\*\*")
HEADING = re.compile(r"#+ (.*)")
END_OF_TABS = "<!-- end of tabs -->"


def sets_of_tabs(document):
    """Yields the section and the labels of every set."""
    text = FENCED_BLOCK.sub("", pathlib.Path(document).read_text())
    section, labels = "", []
    for line in [*text.splitlines(), END_OF_TABS]:
        label, heading = LABEL.fullmatch(line), HEADING.fullmatch(line)
        if label:
            labels.append(label[1])
        elif (heading or line == END_OF_TABS) and labels:
            yield section, labels
            labels = []
        if heading:
            section = heading[1]


problems = []
for document in sys.argv[1:]:
    found = list(sets_of_tabs(document))
    problems += [f"{document}: {section}: {', '.join(labels)}" for section, labels in found if labels != LANGUAGES]
    problems += [] if found else [f"{document}: no tabs"]
sys.exit("\n".join(problems) or 0)
