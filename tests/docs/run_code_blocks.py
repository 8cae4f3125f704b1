#!/usr/bin/env python3
"""Compiles and runs every C, C++ and Python block of a Markdown file against the virtual adapter.

usage: run_code_blocks.py FILE.md VIRTUAL_ADAPTER C_COMPILER CXX_COMPILER PYTHON_PATH [FLAG...]

Each block is a whole program; the flags compile and link it. Blocks in other languages (shell, text)
are not programs. A file without a program fails: then it should not be listed as one with some.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

document, virtual_adapter, c_compiler, cxx_compiler, python_path, *flags = sys.argv[1:]

FENCED_BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def build(language, source, directory):
    """Returns the command that runs the block."""
    if language == "python":
        script = directory / "block.py"
        script.write_text(source)
        return [sys.executable, str(script)]
    compiler, suffix, standard = {
        "c": (c_compiler, ".c", "c11"),
        "cpp": (cxx_compiler, ".cpp", "c++17"),
    }[language]
    file = directory / ("block" + suffix)
    file.write_text(source)
    program = directory / "block"
    subprocess.run(
        [compiler, f"-std={standard}", "-Wall", "-Wextra", "-Werror", "-D_GNU_SOURCE", "-pthread", str(file), "-o", str(program)]
        + flags,
        check=True,
    )
    return [str(program)]


text = pathlib.Path(document).read_text()
programs = 0
for block in FENCED_BLOCK.finditer(text):
    language, source = block.groups()
    if language not in ("c", "cpp", "python"):
        continue
    programs += 1
    line = text.count("\n", 0, block.start()) + 1
    print(f"{document}:{line}: a program in {language}", flush=True)
    with tempfile.TemporaryDirectory() as name:
        command = build(language, source, pathlib.Path(name))
        environment = dict(os.environ, PYTHONPATH=python_path)
        if language == "python":
            # The interpreter itself leaves memory behind; C and C++ keep the leak check.
            environment["ASAN_OPTIONS"] = "detect_leaks=0"
        subprocess.run(
            [virtual_adapter, "run", "--", *command], check=True, env=environment, timeout=120
        )
sys.exit("no program found" if programs == 0 else 0)
