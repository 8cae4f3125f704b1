#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Compiles and runs every C, C++ and Python block of a Markdown file against the virtual adapter.

usage: run_code_blocks.py FILE.md VIRTUAL_ADAPTER C_COMPILER CXX_COMPILER PYTHON_PATH [FLAG...]

Each block is a whole program; the flags compile and link it. Blocks in other languages (shell, text)
are not programs. A file without a program fails: then it should not be listed as one with some.

A text block that follows a program in the same section, commands that build it aside, is what the
program prints, to the letter. In a guide every program is followed by one. Tests in Python are run by pytest, without
anything around it but the boards that the document saves, and print how many have passed, which are all unless the text
block says otherwise; of tests in GoogleTest the last line counts. A part of a board is
run by the commands that follow it.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

document, virtual_adapter, c_compiler, cxx_compiler, python_path, *flags = sys.argv[1:]

FENCED_BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
SAVED_BLOCK = re.compile(r"^<!-- save: ([\w.-]+) -->\n```\w+\n(.*?)^```$", re.MULTILINE | re.DOTALL)
TESTS = re.compile("^def test_", re.MULTILINE)
ALL_PASSED = re.compile(r"\d+ passed\n")
PART = "from veltrasdk.parts import"
GOOGLE_TEST = "#include <gtest/gtest.h>"
SYSTEM_PYTHON = "/usr/bin/python3"  # which has pytest
# What a sanitizer watches in the library it watches in C and C++ too.
SANITIZED = any(flag.startswith("-fsanitize=") for flag in flags)
IN_GUIDE = pathlib.Path(document).parent.name == "guides"


def build(language, source, directory):
    """Returns the command that runs the block."""
    if language == "python":
        script = directory / "block.py"
        script.write_text(source)
        return [virtual_adapter, "run", "--", SYSTEM_PYTHON, str(script)]
    compiler, suffix, standard = {
        "c": (c_compiler, ".c", "c11"),
        "cpp": (cxx_compiler, ".cpp", "c++17"),
    }[language]
    file = directory / ("block" + suffix)
    file.write_text(source)
    program = directory / "block"
    subprocess.run(
        [compiler, f"-std={standard}", "-Wall", "-Wextra", "-Werror", "-D_GNU_SOURCE", "-pthread", str(file), "-o", str(program)]
        + (["-lgtest", "-lgtest_main"] if GOOGLE_TEST in source else [])
        + flags,
        check=True,
    )
    return [virtual_adapter, "run", "--", str(program)]


def shown_output(text, position):
    """What the document says that the program which ends at the position prints, or None."""
    for block in FENCED_BLOCK.finditer(text, position):
        if re.search("^#", text[position : block.start()], re.MULTILINE):
            return None
        if block[1] == "text":
            return block[2]
        if block[1] != "sh":
            return None
        position = block.end()
    return None


def run_tests(source, directory, environment):
    """Returns pytest's closing line, without the time."""
    for name, saved in SAVED_BLOCK.findall(text):
        if name.endswith(".toml"):  # a board
            (directory / name).write_text(saved)
    (directory / "block_test.py").write_text(source)
    environment |= {"VELTRA_VIRTUAL_ADAPTER": virtual_adapter, "PYTEST_DISABLE_PLUGIN_AUTOLOAD": "1"}
    command = [SYSTEM_PYTHON, "-m", "pytest", "-q", "-p", "veltrasdk.pytest_plugin", "-p", "no:cacheprovider", "."]
    printed = subprocess.run(
        command, cwd=directory, env=environment, timeout=120, stdout=subprocess.PIPE, text=True, check=False
    ).stdout
    print(printed, flush=True)
    return printed.splitlines()[-1].split(" in ")[0] + "\n"


def run(language, source):
    """Returns what the program prints on standard output."""
    environment = dict(os.environ, PYTHONPATH=python_path, PYTHONDONTWRITEBYTECODE="1")
    with tempfile.TemporaryDirectory() as name:
        if language == "python" and TESTS.search(source):
            return run_tests(source, pathlib.Path(name), environment)
        command = build(language, source, pathlib.Path(name))
        printed = subprocess.run(
            command, check=True, env=environment, timeout=120, stdout=subprocess.PIPE, text=True
        ).stdout
        return printed.splitlines(keepends=True)[-1] if GOOGLE_TEST in source else printed


text = pathlib.Path(document).read_text()
programs = 0
problems = []
for block in FENCED_BLOCK.finditer(text):
    language, source = block.groups()
    if language not in ("c", "cpp", "python"):
        continue
    programs += 1
    if PART in source or (language == "python" and SANITIZED):
        continue
    line = text.count("\n", 0, block.start()) + 1
    where = f"{document}:{line}: a program in {language}"
    print(where, flush=True)
    printed = run(language, source)
    print(printed, flush=True)
    shown = shown_output(text, block.end())
    if shown is None and IN_GUIDE:
        problems.append(f"{where}: no text block shows what it prints")
    elif shown is None and TESTS.search(source) and not ALL_PASSED.fullmatch(printed):
        problems.append(f"{where}: not all of its tests pass")
    elif shown is not None and shown != printed:
        problems.append(f"{where}: the text block that follows it shows something else than it prints:\n{shown}")
if programs == 0:
    problems.append("no program found")
sys.exit("\n".join(problems) or 0)
