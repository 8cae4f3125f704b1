#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""picocom, pyserial and stty, as Debian has them, with `veltra expose tty`: tty_test.py VELTRA VIRTUAL_ADAPTER [TEST...]

The factory board wires the UART's transmit line to its receive line.
"""

import contextlib
import json
import os
import pathlib
import sys
import termios
import threading
import unittest

import exposed
from exposed import ExposedTest

# Debian's, whichever interpreter runs this.
sys.path.append("/usr/lib/python3/dist-packages")
import serial  # pylint: disable=wrong-import-position

COMMAND = ("-v", "-V", "3.3", "expose", "tty")
EVERY_BYTE = bytes(range(256))


class TtyTest(ExposedTest):
    def said_of_the_line(self, terminal):
        """What was set of the UART, in the order in which it was."""
        return [line for line in terminal.end()[2].splitlines() if line.startswith("> uart:")]

    def test_pyserial_sends_and_receives_every_byte(self):
        with exposed.exposed(*COMMAND) as terminal:
            with serial.Serial(terminal.first_line, 115200, timeout=exposed.LIMIT) as port:
                port.write(EVERY_BYTE)
                self.assertEqual(port.read(256), EVERY_BYTE)

    def test_much_arrives_in_order(self):
        contents = EVERY_BYTE * 256
        for model in ("full-speed", "high-speed"):
            with exposed.exposed("-V", "3.3", "expose", "tty", adapter=("--model", model)) as terminal:
                with serial.Serial(terminal.first_line, timeout=exposed.LIMIT) as port:
                    writer = threading.Thread(target=port.write, args=(contents,))
                    writer.start()
                    self.assertEqual(port.read(len(contents)), contents)
                    writer.join()

    def test_what_pyserial_sets_is_set(self):
        with exposed.exposed(*COMMAND) as terminal:
            with serial.Serial(terminal.first_line, 9600, timeout=exposed.LIMIT) as port:
                port.write(b"a")
                port.read(1)
                port.baudrate = 921600
                port.stopbits = 2
                port.rtscts = True
                port.write(b"b")
                self.assertEqual(port.read(1), b"b")
            lines = self.said_of_the_line(terminal)
            self.assertEqual(lines[0], "> uart: 115200 bit/s, 8 data bits, parity none, 1 stop bits")
            self.assertEqual(lines[1], "> uart: 9600 bit/s, 8 data bits, parity none, 1 stop bits")
            self.assertEqual(lines[-1], "> uart: 921600 bit/s, 8 data bits, parity none, 2 stop bits, RTS and CTS")

    def test_parity_and_narrow_bytes_cannot_pass_and_come_from_the_command_line(self):
        with exposed.exposed(*COMMAND, "-p", "even", "--data", "7") as terminal:
            with serial.Serial(terminal.first_line, 19200, timeout=exposed.LIMIT) as port:
                with contextlib.suppress(termios.error):  # the kernel says so at times only
                    port.parity = serial.PARITY_ODD
                port.write(b"\x81")
                self.assertEqual(port.read(1), b"\x01", "a byte has seven bits")
            self.assertEqual(self.said_of_the_line(terminal)[-1],
                             "> uart: 19200 bit/s, 7 data bits, parity even, 1 stop bits")

    def test_stty_sets_the_line_and_shows_it(self):
        with exposed.exposed(*COMMAND) as terminal:
            shown = self.run_program("stty", "-F", terminal.first_line).stdout
            self.assertTrue(shown.startswith("speed 115200 baud;"), shown)
            self.assertEqual(self.run_program("stty", "-F", terminal.first_line, "38400", "cstopb").returncode, 0)
            shown = self.run_program("stty", "-F", terminal.first_line).stdout
            self.assertTrue(shown.startswith("speed 38400 baud;"), shown)
            with serial.Serial(terminal.first_line, 38400, stopbits=2, timeout=exposed.LIMIT) as port:
                port.write(b"in step")
                self.assertEqual(port.read(7), b"in step")
            self.assertIn("> uart: 38400 bit/s, 8 data bits, parity none, 2 stop bits", self.said_of_the_line(terminal))

    def test_a_rate_that_the_adapter_has_not_is_told(self):
        with exposed.exposed("-V", "3.3", "expose", "tty") as terminal:
            self.assertEqual(self.run_program("stty", "-F", terminal.first_line, "1800").returncode, 0)
            complaint = "veltra: expose tty: baud rate '1800' is unknown: 1200, 2400, 4800, 9600,"
            self.assertTrue(terminal.complains(complaint))
            with serial.Serial(terminal.first_line, 9600, timeout=exposed.LIMIT) as port:
                port.write(b"on")
                self.assertEqual(port.read(2), b"on")

    def test_picocom_shows_what_comes_back(self):
        with exposed.exposed(*COMMAND) as terminal:
            done = self.run_program("sh", "-c", f"printf 'typed' | picocom -q -b 57600 -x 3000 {terminal.first_line}")
            self.assertIn("typed", done.stdout)
            self.assertIn("> uart: 57600 bit/s, 8 data bits, parity none, 1 stop bits", self.said_of_the_line(terminal))

    def test_a_program_that_reads_nothing_loses_only_the_surplus(self):
        with exposed.exposed("-V", "3.3", "expose", "tty") as terminal:
            with serial.Serial(terminal.first_line) as port:
                port.write(bytes(512 * 1024))
            with serial.Serial(terminal.first_line, timeout=exposed.LIMIT) as port:
                port.read(1)
                port.timeout = 1
                last = b""
                for _ in range(exposed.LIMIT):  # in front of which there may still be as much as is lost
                    port.write(b"again")
                    last = port.read_until(b"again")[-5:]
                    if last == b"again":
                        break
                self.assertEqual(last, b"again")
            self.assertIn(f"veltra: nobody reads {terminal.first_line}: what comes in is lost\n", terminal.end()[2])

    def test_the_link_lasts_as_long_as_the_terminal(self):
        link = self.directory / "port"
        link.symlink_to("/dev/pts/left-over")
        with exposed.exposed("--json", *COMMAND[1:], "--link", str(link)) as terminal:
            told = json.loads(terminal.first_line)
            self.assertEqual(told, {"op": "expose.tty", "path": os.readlink(link), "link": str(link)})
            with serial.Serial(str(link), timeout=exposed.LIMIT) as port:
                port.write(b"linked")
                self.assertEqual(port.read(6), b"linked")
            self.assertEqual(terminal.end()[0], 130)
        self.assertFalse(link.is_symlink())
        self.assertEqual(list(self.directory.iterdir()), [])

    def test_what_is_no_link_to_a_terminal_is_left_alone(self):
        taken = self.directory / "port"
        taken.write_text("mine")
        status, _, complaint = exposed.Exposed("-V", "3.3", "expose", "tty", "--link", str(taken)).wait()
        self.assertEqual((status, complaint),
                         (1, f"veltra: expose tty: {taken} is there already, and is no link to a terminal\n"))
        self.assertEqual(taken.read_text(), "mine")

    def test_an_adapter_that_is_pulled_out_ends_it(self):
        done = self.run_program(
            exposed.VIRTUAL_ADAPTER, "run", "--", "sh", "-c",
            "mkfifo line; veltra -V 3.3 expose tty --link port >line & read -r path <line; "
            "veltra-virtual-adapter tell unplug; wait $!")
        self.assertEqual((done.returncode, done.stdout), (
            4, "veltra: expose tty: the adapter has gone. Plug it in again, then: veltra list\n"))
        self.assertFalse((self.directory / "port").is_symlink())


if __name__ == "__main__":
    if not pathlib.Path("/usr/bin/picocom").exists():
        raise SystemExit("picocom is missing: ./scripts/setup test")
    exposed.main()
