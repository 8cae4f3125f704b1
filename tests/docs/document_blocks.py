#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs what the fenced blocks of Markdown files say, so that no document drifts from the truth.

usage: document_blocks.py run LABEL FILE.md...
       document_blocks.py save NAME FILE.md...
       document_blocks.py check ROOT FILE.md...

A comment in front of a block, <!-- run: LABEL -->, says when it runs: `run` makes one script of all the
blocks of that label, which ends at the first command that fails. A workflow in YAML stands for its steps.
A comment <!-- save: NAME --> in front of a program gives it the name by which shell blocks know it: `save`
writes it into the working directory. A comment <!-- prints: LABEL --> in front of a text says that the block
of that label before it prints this, to the letter. `check` fails on a block that nothing below ROOT runs.
"""

import os
import pathlib
import re
import shlex
import signal
import sys

BLOCK = re.compile(r"^(?:<!-- (run|save|prints): ([\w.-]+) -->\n)?```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PROGRAMS = ("c", "cpp", "python")  # run_code_blocks.py runs all of these
NOT_RUN = ("text",)
SAVED = ("cmake", "toml")  # which commands read


def blocks(documents):
    """Yields (where, mark, name, language, source) for every block."""
    for document in documents:
        text = pathlib.Path(document).read_text()
        for block in BLOCK.finditer(text):
            line = text.count("\n", 0, block.start(3)) + 1
            yield f"{document}:{line}", *block.groups()


def shell(language, source):
    if language != "yaml":
        return source
    import yaml

    jobs = yaml.safe_load(source)["jobs"].values()
    commands = [step["run"] for job in jobs for step in job["steps"] if "run" in step]
    return "".join(f"bash -e -c {shlex.quote(command)}\n" for command in commands)


def compared(commands, expected):
    """The commands, which fail when they print something else."""
    return f"{{\n{commands}}} >.printed || {{ cat .printed; exit 1; }}\ndiff - .printed <<'EOF'\n{expected}EOF\n"


def run(label, *documents):
    scripts = []
    for _, mark, name, language, source in blocks(documents):
        if (mark, name) == ("run", label):
            scripts.append(shell(language, source))
        elif (mark, name) == ("prints", label):
            scripts[-1] = compared(scripts[-1], source)
    script = "".join(scripts)
    if not script:
        sys.exit(f"no block is marked <!-- run: {label} -->")
    # What is started in the background ignores Ctrl-C and hands that down. Here it is to be heard, and by
    # everything that the script has started.
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    os.setpgid(0, 0)
    os.execvp("bash", ["bash", "-euxo", "pipefail", "-c", script])


def save(file, *documents):
    (program,) = [source for _, mark, name, _, source in blocks(documents) if (mark, name) == ("save", file)]
    pathlib.Path(file).write_text(program)


def is_called(function, name, root):
    """Whether a runner calls one of its functions with this name."""
    files = [file for file in root.glob("tests/*/*") if file.is_file() and file.suffix != ".py"]
    runners = [file.read_text(errors="replace") for file in files]  # captures lie beside them
    return any(re.search(rf"\b{function} {re.escape(name)}(?![\w-])", text) for text in runners)


def is_run(label, source, root):
    """Whether a runner runs the blocks of this label, or continuous integration these very commands."""
    if is_called("(run|start)Blocks", label, root):
        return True
    commands = [line.split("#")[0].strip() for line in source.splitlines()]
    return set(commands) <= set((root / ".ci/run").read_text().splitlines())


def overlooked(documents):
    """Yields every line that looks like a block and is in none: other fences, indented commands."""
    for document in documents:
        text = pathlib.Path(document).read_text()
        rest = BLOCK.sub(lambda block: re.sub("[^\n]+", "", block.group()), text)
        for number, line in enumerate(rest.splitlines(), start=1):
            if re.match(r"\s*(```|~~~)|    |\t", line):
                yield f"{document}:{number}: no block that is run: {line.strip()}"


def check(root, *documents):
    problems = list(overlooked(documents))
    for where, mark, name, language, source in blocks(documents):
        if language in PROGRAMS or language in NOT_RUN:
            continue
        if language in SAVED:
            if mark != "save" or not is_called("saveProgram", name, pathlib.Path(root)):
                problems.append(f"{where}: no command reads this block")
        elif language not in ("sh", "yaml"):
            problems.append(f"{where}: nothing runs blocks in {language}")
        elif mark != "run" or not is_run(name, source, pathlib.Path(root)):
            problems.append(f"{where}: nothing runs this block")
    sys.exit("\n".join(problems) or 0)


{"run": run, "save": save, "check": check}[sys.argv[1]](*sys.argv[2:])
