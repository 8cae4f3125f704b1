# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What the tests of `veltra expose` share: the command under a virtual adapter, and other people's programs."""

import contextlib
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

LIMIT = 120  # seconds; a loaded machine stays far below

VELTRA = VIRTUAL_ADAPTER = None
SEARCHED = os.pathsep.join([os.environ["PATH"], "/usr/sbin"])  # where Debian has flashrom


def environment():
    kept = {name: value for name, value in os.environ.items() if not name.startswith("VELTRA")}
    return {**kept, "LC_ALL": "C.UTF-8", "PATH": os.pathsep.join(
        [str(pathlib.Path(VELTRA).parent), str(pathlib.Path(VIRTUAL_ADAPTER).parent), SEARCHED])}


def until(condition):
    """Waits for a condition; false when a loaded machine would long have met it."""
    for _ in range(LIMIT * 20):
        if condition():
            return True
        time.sleep(0.05)
    return False


class Exposed:
    """A running `veltra expose ...`, and the first line that it printed."""

    def __init__(self, *words, adapter=(), directory=None):
        command = [VIRTUAL_ADAPTER, "run", *adapter, "--", VELTRA, *words]
        self.errors = tempfile.TemporaryFile(mode="w+")
        self.program = subprocess.Popen(command, env=environment(), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        stderr=self.errors, text=True, cwd=directory)
        self.first_line = self.program.stdout.readline().rstrip("\n")

    def complaints(self):
        """What it has complained of so far."""
        return os.pread(self.errors.fileno(), 1 << 20, 0).decode()

    def wait(self):
        """The exit status, what else was printed, and what was complained of."""
        rest = self.program.communicate(timeout=LIMIT)[0]
        complaints = self.complaints()
        self.errors.close()
        return self.program.returncode, rest, complaints

    def end(self, signal_number=signal.SIGTERM):
        self.program.send_signal(signal_number)
        return self.wait()


@contextlib.contextmanager
def exposed(*words, **settings):
    """Ends what still runs when the test is over."""
    started = Exposed(*words, **settings)
    try:
        yield started
    finally:
        if not started.errors.closed:
            started.end()


class ExposedTest(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="veltra-")
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def run_program(self, *command, **settings):
        return subprocess.run(command, env=environment(), cwd=self.directory, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=LIMIT,
                              check=False, **settings)


def main():
    global VELTRA, VIRTUAL_ADAPTER
    VELTRA, VIRTUAL_ADAPTER, *rest = sys.argv[1:]
    unittest.main(module="__main__", argv=[sys.argv[0], *rest])
