#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs the commands of a transcript and compares all that they print.

usage: run_transcript.py [--update] TRANSCRIPT VELTRA VIRTUAL_ADAPTER SCHEMA

A transcript is what a terminal would show: a command behind "$ ", its standard output, its standard error
output behind "! ", and "[N]" where it exits with another status than 0. Behind "# adapter:" stand options for
the virtual adapter under which each veltra runs from there on, or "none" for no adapter at all. Each object
printed as JSON must fit the schema. Commands start in a directory of their own, one for the transcript.
"""

import json
import os
import pathlib
import re
import shlex
import stat
import subprocess
import sys
import tempfile

import jsonschema

LIMIT = 60  # seconds; a loaded machine stays far below


def steps(lines):
    """Yields (kept, None) for lines to keep, ("$ command", [expected lines]) for commands."""
    command, expected = None, []
    for line in lines:
        if line.startswith("$ ") or line.startswith("#") or not line.strip():
            if command:
                yield command, expected
            command, expected = (line, []) if line.startswith("$ ") else (None, [])
            if not command:
                yield line, None
        elif command:
            expected.append(line)
        else:
            sys.exit(f"no command in front of: {line}")
    if command:
        yield command, expected


class Terminal:
    def __init__(self, directory, veltra, virtual_adapter, schema):
        self.directory = pathlib.Path(directory)
        self.veltra = veltra
        self.virtual_adapter = virtual_adapter
        self.validator = jsonschema.Draft7Validator(json.loads(pathlib.Path(schema).read_text()))
        self.unfit = []
        self.plug("")

    def plug(self, options):
        """From now on `veltra` is the program under a virtual adapter with these options."""
        command = [self.veltra]
        if options != "none":
            command = [self.virtual_adapter, "run", *shlex.split(options), "--", *command]
        wrapper = self.directory / "bin" / "veltra"
        wrapper.parent.mkdir(exist_ok=True)
        wrapper.write_text(f'#!/bin/sh\nexec {shlex.join(command)} "$@"\n')
        wrapper.chmod(wrapper.stat().st_mode | stat.S_IXUSR)

    def check_json(self, command, text):
        for line in text.splitlines():
            if line.startswith("{"):
                self.unfit += [f"{command}: {line}: {error.message}"
                               for error in self.validator.iter_errors(json.loads(line))]

    def run(self, command):
        variables = {name: value for name, value in os.environ.items() if not name.startswith("VELTRA")}
        variables["PATH"] = os.pathsep.join([str(self.directory / "bin"),
                                             str(pathlib.Path(self.virtual_adapter).parent), os.environ["PATH"]])
        here = pathlib.Path(__file__).resolve().parent
        variables["EXAMPLES"] = str(here.parents[1] / "examples" / "veltra")
        variables["PROGRAMS"] = str(here / "programs")
        variables["BOARDS"] = str(here / "boards")
        work = self.directory / "work"
        work.mkdir(exist_ok=True)
        done = subprocess.run(["sh", "-c", command], cwd=work, env=variables, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=LIMIT)
        out, error = (stream.decode(errors="backslashreplace") for stream in (done.stdout, done.stderr))
        # A transcript holds wherever the examples are.
        out, error = (text.replace(variables["EXAMPLES"], "$EXAMPLES") for text in (out, error))
        if "--json" in command:
            self.check_json(command, out + error)
        shown = out.splitlines() + ["! " + line for line in error.splitlines()]
        return shown + ([f"[{done.returncode}]"] if done.returncode else [])


def main(update, transcript, veltra, virtual_adapter, schema):
    transcript = pathlib.Path(transcript)
    seen, differences = [], 0
    with tempfile.TemporaryDirectory(prefix="veltra-") as directory:
        terminal = Terminal(directory, veltra, virtual_adapter, schema)
        for line, expected in steps(transcript.read_text().splitlines()):
            seen.append(line)
            if expected is None:
                if match := re.match(r"# adapter: *(.*)", line):
                    terminal.plug(match[1])
                continue
            shown = terminal.run(line[2:])
            seen += shown
            if shown != expected and not update:
                differences += 1
                print(line, *(f"  expected: {text}" for text in expected),
                      *(f"  printed:  {text}" for text in shown), sep="\n")
        print(*terminal.unfit, sep="\n")
        if update:
            transcript.write_text("\n".join(seen) + "\n")
    return bool(differences or terminal.unfit)


if __name__ == "__main__":
    arguments = sys.argv[1:]
    updating = arguments[0] == "--update"
    sys.exit(main(updating, *arguments[updating:]))
