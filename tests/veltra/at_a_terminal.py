#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What veltra does at a terminal: at_a_terminal.py VELTRA VIRTUAL_ADAPTER COMPLETION

Each test waits for what it expects to see, with a limit that a loaded machine cannot reach.
"""

import os
import pathlib
import pty
import select
import signal
import subprocess
import sys
import tempfile
import unittest

LIMIT = 60  # seconds
CONTROL_C, ESCAPE_KEY = b"\x03", b"\x1d"


class Terminal:
    """A program whose three standard streams are one terminal, or whose output is something else."""

    def __init__(self, *command, stdout=None):
        self.master, slave = pty.openpty()
        environment = {**os.environ, "TERM": "dumb", "PS1": "", "HISTFILE": "", "INPUTRC": "/dev/null"}
        self.program = subprocess.Popen(command, stdin=slave, stdout=stdout or slave, stderr=slave,
                                        env=environment, start_new_session=True,
                                        preexec_fn=lambda: os.close(os.open(os.ttyname(0), os.O_RDWR)))
        os.close(slave)
        self.seen = b""

    def read(self):
        """What the program printed next; nothing once it has ended."""
        ready, _, _ = select.select([self.master], [], [], LIMIT)
        if not ready:
            raise AssertionError(f"nothing more came behind {self.seen!r}")
        try:
            return os.read(self.master, 4096)
        except OSError:  # nobody has the other end open any more
            return b""

    def wait_for(self, text):
        while text not in self.seen:
            more = self.read()
            if not more:
                raise AssertionError(f"{text!r} did not come: {self.seen!r}")
            self.seen += more
        self.seen = self.seen[self.seen.index(text) + len(text):]

    def type(self, text):
        os.write(self.master, text)

    def end(self):
        """The exit status, and what was printed last."""
        while more := self.read():
            self.seen += more
        status = self.program.wait(LIMIT)
        os.close(self.master)
        return status, self.seen.decode()


class AtATerminal(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory(prefix="veltra-")
        self.addCleanup(self.directory.cleanup)
        self.contents = pathlib.Path(self.directory.name) / "contents"
        self.contents.write_bytes(b"16 bytes of text")

    def program_eeprom(self, *options, **streams):
        return Terminal(VELTRA, "--virtual", *options, "-V", "3.3", "i2c", "program", "0x50", str(self.contents),
                        "--page", "8", "--reg-bytes", "1", "--pull-up", "4k7", **streams)

    def test_it_asks_before_what_cannot_be_undone_and_shows_progress(self):
        terminal = self.program_eeprom()
        terminal.wait_for(b"veltra: 16 bytes of the EEPROM at 0x50 will be overwritten. Go on? [y/N] ")
        terminal.type(b"y\n")
        terminal.wait_for(b"\rwriting   [...............###"[:12])
        terminal.wait_for(b"8 of 16 bytes")
        terminal.wait_for(b"16 of 16 bytes\r\n")
        terminal.wait_for(b"verifying")
        status, rest = terminal.end()
        self.assertEqual(status, 0)
        self.assertTrue(rest.endswith("16 bytes written and verified\r\n"), rest)

    def test_any_other_answer_leaves_everything_as_it_was(self):
        terminal = self.program_eeprom()
        terminal.wait_for(b"Go on? [y/N] ")
        terminal.type(b"\n")
        status, rest = terminal.end()
        self.assertEqual(status, 2)
        self.assertIn("veltra: i2c program 0x50: nothing has been done", rest)

    def test_a_flash_is_written_with_progress_too(self):
        terminal = Terminal(VELTRA, "--virtual", "-y", "-V", "3.3", "spi", "flash", "write", str(self.contents))
        terminal.wait_for(b"\rwriting   [##############################] 16 of 16 bytes\r\n")
        terminal.wait_for(b"\rverifying [##############################] 16 of 16 bytes\r\n")
        self.assertEqual(terminal.end(), (0, "16 bytes written and verified\r\n"))

    def test_quiet_and_json_show_no_progress(self):
        for option, result in (("-q", "16 bytes written and verified"), ("--json", '"verified":true}')):
            status, rest = self.program_eeprom("-y", option).end()
            self.assertEqual(status, 0)
            self.assertTrue(rest.rstrip().endswith(result), rest)
            self.assertNotIn("writing", rest)

    def test_the_terminal_of_the_uart_echoes_what_the_line_does(self):
        terminal = Terminal(VELTRA, "--virtual", "-V", "3.3", "uart", "term")
        terminal.wait_for(b"veltra: connected; Ctrl+] ends it\r")
        terminal.type(b"AT\r")
        terminal.wait_for(b"AT\r")
        terminal.type(CONTROL_C)
        terminal.wait_for(CONTROL_C)
        terminal.type(b"bye" + ESCAPE_KEY + b"not sent")
        self.assertEqual(terminal.end()[0], 0)

    def test_an_interrupted_watch_disarms_its_pins_and_ends_with_130(self):
        for option, said in (("-v", "veltra: watch: interrupted"),
                             ("--json", '{"error":{"op":"watch","kind":"interrupted","status":null,"name":null,'
                                        '"hint":null,"message":"interrupted"}}')):
            with self.subTest(option):
                terminal = Terminal(VELTRA, "--virtual", option, "-V", "3.3", "watch", "--edge", "4=rising")
                terminal.wait_for(b"ready")
                terminal.program.send_signal(signal.SIGINT)
                status, rest = terminal.end()
                self.assertEqual(status, 130)
                self.assertTrue(rest.endswith(f"\r\n{said}\r\n"), rest)
                if option == "-v":
                    self.assertIn("> gpio pin 4: no interrupt\r\n< done\r\n", rest)

    def test_an_adapter_in_use_is_said_to_be_so(self):
        both = Terminal(VIRTUAL_ADAPTER, "run", "--", "sh", "-c", f"{VELTRA} -V 3.3 watch gpio | "
                        f"{{ read -r ready; echo $ready; {VELTRA} info; {VELTRA} --json info; }}")
        both.wait_for(b"ready\r\nveltra: info: the adapter at 1-1:1.0 is in use. "
                      b"One program at a time can have it: end the other one\r\n"
                      b'{"error":{"op":"info","kind":"busy","status":null,"name":null,'
                      b'"hint":"One program at a time can have it: end the other one",'
                      b'"message":"the adapter at 1-1:1.0 is in use"}}\r\n')
        os.killpg(both.program.pid, signal.SIGTERM)
        both.end()


class Completion(unittest.TestCase):
    def complete(self, line, current, before, setup=":"):
        script = (f"{setup} >&2; . {COMPLETION}; COMP_LINE={line!r} COMP_POINT={len(line)}; _veltra {VELTRA} {current!r} {before!r}; "
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        return subprocess.run([VIRTUAL_ADAPTER, "run", "--", "bash", "--norc", "-c", script], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True, timeout=LIMIT).stdout.split()

    def test_bash_is_offered_the_commands(self):
        self.assertEqual(self.complete("veltra i2c s", "s", "i2c"), ["scan"])
        self.assertEqual(self.complete("veltra -d ", "", "-d"), ["VA-0001"])

    def test_only_the_last_piece_of_a_word_is_replaced(self):
        self.assertEqual(self.complete("veltra gpio mode 3=in-", "in-", "="), ["in-up", "in-down"])
        self.assertEqual(self.complete("veltra gpio set 3=", "", "="), ["0", "1"])
        initialised = f"export VELTRA_TIMEOUT={1000 * LIMIT}; {VELTRA} -V 1.8 i3c init"
        self.assertEqual(self.complete("veltra i3c info pid:fffe002", "fffe002", ":", initialised), ["fffe00201000"])

    def test_a_tab_completes_a_word(self):
        terminal = Terminal("bash", "--norc", "--noprofile", "-i")
        terminal.type(f"PATH={pathlib.Path(VELTRA).parent}:$PATH; . {COMPLETION}; echo rea''dy\n".encode())
        terminal.wait_for(b"ready\r\n")
        terminal.type(b"veltra compl\t")
        terminal.wait_for(b"completion ")
        terminal.type(b"ba\t\n")
        terminal.wait_for(b"complete -o nosort -o default -F _veltra veltra\r\n")
        terminal.type(b"exit\n")
        terminal.end()

    def test_the_program_prints_what_is_installed(self):
        printed = subprocess.run([VELTRA, "completion", "bash"], stdout=subprocess.PIPE, text=True, check=True).stdout
        self.assertEqual(printed, pathlib.Path(COMPLETION).read_text())


if __name__ == "__main__":
    VELTRA, VIRTUAL_ADAPTER, COMPLETION = sys.argv[1:]
    os.environ["PATH"] = os.pathsep.join([str(pathlib.Path(VIRTUAL_ADAPTER).parent), os.environ["PATH"]])
    for variable in [name for name in os.environ if name.startswith("VELTRA")]:
        del os.environ[variable]
    unittest.main(argv=sys.argv[:1])
