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
import threading
import unittest

LIMIT = 120  # seconds; a loaded machine stays far below

VELTRA = VIRTUAL_ADAPTER = None
SEARCHED = os.pathsep.join([os.environ["PATH"], "/usr/sbin"])  # where Debian has flashrom


def environment():
    kept = {name: value for name, value in os.environ.items() if not name.startswith("VELTRA")}
    return {**kept, "LC_ALL": "C.UTF-8", "PATH": os.pathsep.join(
        [str(pathlib.Path(VELTRA).parent), str(pathlib.Path(VIRTUAL_ADAPTER).parent), SEARCHED])}


class Exposed:
    """A running `veltra expose ...`, and the first line that it printed."""

    def __init__(self, *words, adapter=(), directory=None):
        command = [VIRTUAL_ADAPTER, "run", *adapter, "--", VELTRA, *words]
        self.program = subprocess.Popen(command, env=environment(), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True, cwd=directory)
        self.complaints, self.more_complaints, self.ended = "", threading.Condition(), None
        # A pipe that nobody empties would stop what writes to it.
        self.listener = threading.Thread(target=self.listen)
        self.listener.start()
        self.first_line = self.program.stdout.readline().rstrip("\n")

    def listen(self):
        for line in self.program.stderr:
            with self.more_complaints:
                self.complaints += line
                self.more_complaints.notify_all()

    def complains(self, text):
        """Waits until it complains of this; false when a loaded machine would long have done so."""
        with self.more_complaints:
            return self.more_complaints.wait_for(lambda: text in self.complaints, LIMIT)

    def wait(self):
        """The exit status, what else was printed, and what was complained of."""
        if not self.ended:
            rest = self.program.stdout.read()
            self.listener.join(LIMIT)
            self.ended = self.program.wait(LIMIT), rest, self.complaints
            self.program.stdout.close()
            self.program.stderr.close()
        return self.ended

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
        if not started.ended:
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
