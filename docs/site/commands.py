# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What a program says of itself, command by command.

`commands.py PROGRAM...` asks the programs for their help and that of each of their commands, and prints what they
say as JSON. In the site, `.. commands:: NAME` shows it from the file that VELTRASDK_COMMANDS names.
"""

import json
import os
import pathlib
import re
import subprocess
import sys

COMMANDS = re.compile(r"^(?:Subcommands|Commands):\n((?:  .*\n?)+)", re.MULTILINE)
COMMAND = re.compile(r"^  (\S+)  ", re.MULTILINE)
USAGE = re.compile(r"^Usage: .*$", re.MULTILINE)


def asked(program, words):
    """Yields the words of a command and its help, then those of the commands below it."""
    answer = subprocess.run([program, *words, "--help"], check=True, stdout=subprocess.PIPE, text=True).stdout
    yield " ".join([pathlib.Path(program).name, *words]), answer
    listed = COMMANDS.search(answer)
    for command in COMMAND.findall(listed[1]) if listed else ():
        yield from asked(program, [*words, command])


def shown(command, answer, below):
    """A section: what the command is for, how it is called, its options, and the sections below it."""
    from docutils import nodes

    section = nodes.section(ids=[nodes.make_id(command)], names=[nodes.fully_normalize_name(command)])
    section += nodes.title("", "", nodes.literal("", command))
    purpose, usage, rest = USAGE.split(answer)[0], USAGE.search(answer)[0], USAGE.split(answer, maxsplit=1)[1]
    section += nodes.paragraph("", " ".join(purpose.split()) + ".")
    text = usage.removeprefix("Usage: ") + rest
    section += nodes.literal_block(text, text.strip("\n"), language="text")
    section += below
    return section


def sections(answers, parent):
    depth = len(parent.split()) + 1
    for command, answer in answers.items():
        if command.startswith(f"{parent} ") and len(command.split()) == depth:
            yield shown(command, answer, list(sections(answers, command)))


def setup(app):
    from sphinx.util.docutils import SphinxDirective

    class Commands(SphinxDirective):
        required_arguments = 1

        def run(self):
            answers = json.loads(pathlib.Path(os.environ["VELTRASDK_COMMANDS"]).read_text())
            name = self.arguments[0]
            own = shown(name, answers[name], [])
            return [*own.children[1:], *sections(answers, name)]

    app.add_directive("commands", Commands)
    return {"parallel_read_safe": True, "parallel_write_safe": True}


if __name__ == "__main__":
    found = dict(answer for program in sys.argv[1:] for answer in asked(program, []))
    if len(found) <= len(sys.argv[1:]):
        sys.exit("commands.py: no commands in what the programs say of themselves")
    json.dump(found, sys.stdout, indent=1)
