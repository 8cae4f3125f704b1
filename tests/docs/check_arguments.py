#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that no program of a document leaves its reader to guess what an argument means: check_arguments.py FILE.md...

An argument that is a bare 0, 1, 2, true or false has a name instead (a constant, a variable, a keyword), or a comment
on its line.
"""

import pathlib
import re
import sys

PROGRAM = re.compile(r"^```(c|cpp|python)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
BARE = re.compile(r"[012]|true|false|True|False")
COMMENT = {"c": re.compile(r"//|/\*"), "cpp": re.compile(r"//|/\*"), "python": re.compile(r"#")}
# Comments and texts, which may hold anything that looks like a call.
NO_CODE = re.compile(r"//.*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])*'(?!\d)", re.DOTALL)
NO_CODE_OF_PYTHON = re.compile(r"#.*|\"\"\".*?\"\"\"|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])*'", re.DOTALL)
NO_CALL = {"if", "for", "while", "switch", "return", "and", "or", "not", "in", "sizeof", "print", "range", "exit"}
TOKEN = re.compile(r"\w+(?:\.\w+)*|\S")


def blank(match):
    return re.sub(r"[^\n]", " ", match[0])


def arguments(code):
    """Yields the position and the text of every argument of every call."""
    # What is open: the bracket, whether a call's, and where the current argument began.
    opened = []
    word = ""
    for token in TOKEN.finditer(code):
        text = token[0]
        if text in "([{":
            opened.append([text, text == "(" and re.match(r"[A-Za-z_]", word) and word not in NO_CALL, token.end()])
        elif text in ")]}" or text == ",":
            bracket = opened[-1] if opened else None
            if bracket and bracket[1]:
                argument = code[bracket[2] : token.start()]
                yield bracket[2] + len(argument) - len(argument.lstrip()), argument.strip()
            if text == "," and bracket:
                bracket[2] = token.end()
            elif opened:
                opened.pop()
        word = text


def complaints(document):
    text = pathlib.Path(document).read_text()
    for program in PROGRAM.finditer(text):
        language, source = program.groups()
        code = (NO_CODE_OF_PYTHON if language == "python" else NO_CODE).sub(blank, source)
        lines = source.splitlines()
        for position, argument in arguments(code):
            number = code.count("\n", 0, position)
            if BARE.fullmatch(argument) and not COMMENT[language].search(lines[number]):
                line = text.count("\n", 0, program.start(2)) + number + 1
                yield f"{document}:{line}: what is {argument}? {lines[number].strip()}"


found = [complaint for document in sys.argv[1:] for complaint in complaints(document)]
print("\n".join(found) or f"{len(sys.argv) - 1} documents")
sys.exit(bool(found))
