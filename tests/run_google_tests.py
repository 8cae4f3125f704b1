#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Runs many tests of GoogleTest in one process, and says as clearly as a process each would which one failed.

usage: run_google_tests.py RESULTS.xml [NAME=VALUE...] [EMULATOR...] PROGRAM

Prints what the failed tests printed, and nothing of the others. A program that crashes or leaves has the
test named that ran; so has one in which a single test does not end within TEST_SECONDS (300).
"""

import os
import re
import signal
import subprocess
import sys
import threading

BEGIN = re.compile(r"^\[ RUN      \] (\S+)$")
END = re.compile(r"\[  (     OK|FAILED |SKIPPED) \] (\S+?),? .*\(\d+ ms\)$")


class Run:
    def __init__(self, results, environment, command):
        self.limit = float(environment.get("TEST_SECONDS", 300))
        self.blocks = []  # what every test printed: (name, verdict, lines)
        self.current = None
        self.rest = []  # what was printed between them
        self.late = False
        self.process = subprocess.Popen(
            [*command, f"--gtest_output=xml:{results}", "--gtest_color=no"],
            env={**os.environ, **environment},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            errors="replace",
            start_new_session=True,
        )

    def end(self):
        self.late = True
        os.killpg(self.process.pid, signal.SIGKILL)

    def watch(self):
        timer = threading.Timer(self.limit, self.end)
        timer.start()
        for line in self.process.stdout:
            if self.take(line.rstrip("\n")):
                timer.cancel()
                timer = threading.Timer(self.limit, self.end)
                timer.start()
        status = self.process.wait()
        timer.cancel()
        return status

    def take(self, line):
        """Sorts a line; true when a test has begun or ended."""
        begin, end = BEGIN.match(line), END.search(line)
        if begin and self.current is None:
            self.current = (begin[1], [])
            return True
        if end and self.current and end[2] == self.current[0]:
            name, lines = self.current
            self.blocks.append((name, end[1].strip(), [*lines, line]))
            self.current = None
            return True
        (self.current[1] if self.current else self.rest).append(line)
        return False

    def report(self, status):
        passed = sum(verdict == "OK" for _, verdict, _ in self.blocks)
        skipped = sum(verdict == "SKIPPED" for _, verdict, _ in self.blocks)
        print(f"{passed} tests passed" + (f", {skipped} were skipped" if skipped else ""))
        if status == 0:
            return 0
        failed = [block for block in self.blocks if block[1] == "FAILED"]
        # A sanitizer may fail the program for what a test printed that GoogleTest has let pass.
        talkative = [block for block in self.blocks if len(block[2]) > 1]
        for name, _, lines in failed or talkative:
            print(f"\n=== {name}", *lines, sep="\n")
        ended = f"ended by signal {signal.Signals(-status).name}" if status < 0 else f"ended with {status}"
        if self.current:
            name, lines = self.current
            print(f"\n=== {name}", *lines, sep="\n")
            print(f"FAILED: {name}: " + (f"not done after {self.limit:g} s" if self.late else f"the program {ended}"))
        else:
            print(*self.rest[-200:], sep="\n")
            print(f"FAILED: the program {ended}", *(name for name, _, _ in failed))
        return 1


def main():
    results, *command = sys.argv[1:]
    environment = {}
    while "=" in command[0]:
        name, value = command.pop(0).split("=", 1)
        environment[name] = value
    run = Run(results, environment, command)
    try:
        sys.exit(run.report(run.watch()))
    except KeyboardInterrupt:
        run.end()


if __name__ == "__main__":
    main()
