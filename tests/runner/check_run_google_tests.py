# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Holds run_google_tests.py to what it says of tests that go wrong.

usage: check_run_google_tests.py RUNNER PROGRAM
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

RUNNER, PROGRAM = sys.argv[1:3]


class RunGoogleTests(unittest.TestCase):
    def run_tests(self, *names, **environment):
        """Status and output of a run of these tests, in the program's own order."""
        environment["GTEST_FILTER"] = ":".join(f"Misbehaving.{name}" for name in names)
        settings = [f"{name}={value}" for name, value in environment.items()]
        with tempfile.TemporaryDirectory() as directory:
            command = [sys.executable, RUNNER, pathlib.Path(directory, "results.xml"), *settings, PROGRAM]
            run = subprocess.run(command, capture_output=True, text=True)
            self.assertEqual(run.stderr, "")
            return run.returncode, run.stdout

    def test_tests_that_pass_are_counted_and_say_nothing(self):
        self.assertEqual(self.run_tests("Passes", "IsSkipped"), (0, "1 tests passed, 1 were skipped\n"))

    def test_a_failed_test_is_shown_and_named_and_no_other(self):
        status, output = self.run_tests("Passes", "Fails")
        self.assertEqual(status, 1)
        self.assertIn("=== Misbehaving.Fails\n", output)
        self.assertIn("for this reason", output)
        self.assertIn("FAILED: the program ended with 1 Misbehaving.Fails\n", output)
        self.assertNotIn("printed by the one that passes", output)

    def test_a_crash_names_its_test_and_shows_what_failed_before(self):
        status, output = self.run_tests("Passes", "Fails", "Crashes")
        self.assertEqual(status, 1)
        self.assertIn("for this reason", output)
        self.assertIn("last words", output)
        self.assertTrue(output.endswith("FAILED: Misbehaving.Crashes: the program ended by signal SIGABRT\n"))

    def test_a_test_that_hangs_is_ended_and_named(self):
        status, output = self.run_tests("Passes", "Hangs", TEST_SECONDS=1)
        self.assertEqual(status, 1)
        self.assertTrue(output.endswith("FAILED: Misbehaving.Hangs: not done after 1 s\n"))

    def test_a_complaint_that_fails_only_the_program_is_shown(self):
        status, output = self.run_tests("LeavesAComplaint")
        self.assertEqual(status, 1)
        self.assertIn("=== Misbehaving.LeavesAComplaint\n", output)
        self.assertIn("a sanitizer's complaint", output)
        self.assertIn("FAILED: the program ended with 66", output)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
