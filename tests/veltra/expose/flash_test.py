#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""flashrom, as Debian has it, with `veltra expose flash`: flash_test.py VELTRA VIRTUAL_ADAPTER [TEST...]"""

import json
import os
import pathlib
import random
import re
import shlex
import shutil
import signal
import socket
import subprocess
import tempfile

import exposed
from exposed import ExposedTest

FLASH_BYTES = 256 * 1024
HELLO = b"Hello from the SPI flash!"
COMMAND = ("-V", "3.3", "expose", "flash")
NO_RESPONSE = "no response within 2000 ms. Is the adapter well? veltra doctor; or give it longer: -t MS"
SMALL_BYTES = 64 * 1024
SMALL_BOARD = """
board = 1

[[spi]]
chip_select = {chip_select}
part = "nor-flash"
size = 65536
image = "@contents.bin"
write_back = true
"""


def some_bytes(count):
    return random.Random(17).randbytes(count)


class FlashTest(ExposedTest):
    counted = {}  # for all tests

    def flashrom(self, programmer, *words):
        """Begins with a second of busy waiting: none is without its reason."""
        return self.run_program(*shlex.split(programmer.first_line), *words)

    def file(self, contents, name="new.bin"):
        (self.directory / name).write_bytes(contents)
        return name

    def read(self, programmer):
        done = self.flashrom(programmer, "-r", "read.bin")
        self.assertEqual(done.returncode, 0, done.stdout)
        return (self.directory / "read.bin").read_bytes()

    def small(self, contents=b"\xff" * SMALL_BYTES, chip_select=0):
        """A board whose flash is soon read, and is a file of its own."""
        directory = pathlib.Path(tempfile.mkdtemp(dir=self.directory))
        self.image = directory / "contents.bin"
        self.image.write_bytes(contents)
        (directory / "board.toml").write_text(SMALL_BOARD.format(chip_select=chip_select))
        return "--board", str(directory / "board.toml")

    def whole_life(self, model, other_reads=True):
        """Probes and reads, writes and verifies, erases, each in a session of its own, and looks at what has become."""
        with exposed.exposed(*COMMAND, adapter=("--model", model)) as programmer:
            self.assertRegex(programmer.first_line, r"^flashrom -p serprog:ip=127\.0\.0\.1:\d+$")
            probed = self.flashrom(programmer, "-r", "read.bin")
            self.assertEqual(probed.returncode, 0, probed.stdout)
            self.assertIn('serprog: Programmer name is "veltra"', probed.stdout)
            self.assertIn('Found Unknown flash chip "SFDP-capable chip" (256 kB, SPI)', probed.stdout)
            self.assertEqual((self.directory / "read.bin").read_bytes(), HELLO.ljust(FLASH_BYTES, b"\xff"))
            contents = some_bytes(4096) + b"\xff" * (FLASH_BYTES - 8192) + some_bytes(4096)
            written = self.flashrom(programmer, "-w", self.file(contents))
            self.assertEqual(written.returncode, 0, written.stdout)
            self.assertIn("VERIFIED", written.stdout)
            if other_reads:
                other = contents[:-1] + bytes([contents[-1] ^ 1])
                verified = self.flashrom(programmer, "-v", self.file(other, "other.bin"))
                self.assertNotEqual(verified.returncode, 0, verified.stdout)
                self.assertIn(f"FAILED at 0x{FLASH_BYTES - 1:08x}", verified.stdout)  # all before is as it was written
            erased = self.flashrom(programmer, "-E")
            self.assertEqual(erased.returncode, 0, erased.stdout)
            if other_reads:
                self.assertEqual(self.read(programmer), b"\xff" * FLASH_BYTES)
            self.assertEqual(programmer.end(), (130, "", "veltra: expose flash: interrupted\n"))

    def test_flashrom_reads_writes_verifies_and_erases_over_the_full_speed_model(self):
        self.whole_life("full-speed")

    def test_flashrom_reads_writes_verifies_and_erases_over_the_high_speed_model(self):
        self.whole_life("high-speed", other_reads=False)

    def test_the_image_file_of_a_board_is_read_and_written(self):
        image = HELLO * 2000 + b"\xff" * (SMALL_BYTES - 2000 * len(HELLO))
        adapter = self.small(image, chip_select=2)
        with exposed.exposed(*COMMAND, "-c", "2", adapter=adapter, directory=self.directory) as programmer:
            self.assertEqual(self.read(programmer), image)
            changed = some_bytes(4096) + image[4096:]
            self.assertEqual(self.flashrom(programmer, "-w", self.file(changed)).returncode, 0)
        self.assertEqual(self.image.read_bytes(), changed)

    def test_once_it_ends_with_the_first_program_whose_clock_is_set_as_far_as_it_may_be(self):
        programmer = exposed.Exposed(*COMMAND, "--clock-max", "4M", "--once")
        programmer.first_line += ",spispeed=8M"
        probed = self.flashrom(programmer, "-V")
        self.assertEqual(probed.returncode, 0, probed.stdout)
        self.assertIn("Requested to set SPI clock frequency to 8000000 Hz. It was actually set to 4000000 Hz",
                      probed.stdout)
        self.assertEqual(programmer.wait(), (0, "", ""))

    def test_flashrom_that_is_killed_leaves_the_flash_to_the_next(self):
        with exposed.exposed(*COMMAND) as programmer:
            self.file(some_bytes(FLASH_BYTES))
            killed = subprocess.Popen([*shlex.split(programmer.first_line), "-w", "new.bin"], cwd=self.directory,
                                      env=exposed.environment(), stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            seen = b""
            while b"Erasing and writing" not in seen:
                more = os.read(killed.stdout.fileno(), 4096)
                self.assertTrue(more, seen)
                seen += more
            killed.kill()
            killed.communicate()
            self.assertEqual(killed.returncode, -signal.SIGKILL)
            self.assertEqual(len(self.read(programmer)), FLASH_BYTES)

    def test_a_program_that_waits_for_its_turn_gets_it(self):
        with exposed.exposed(*COMMAND) as programmer:
            place = re.search(r"ip=(.*):(\d+)", programmer.first_line).groups()
            with socket.create_connection(place):
                probed = self.flashrom(programmer)  # whoever says nothing has to make room
            self.assertEqual(probed.returncode, 0, probed.stdout)

    def transfers(self, *words):
        """How many transfers flashrom asks for when nothing goes wrong."""
        if words not in self.counted:
            programmer = exposed.Exposed("-v", *COMMAND, "--once", adapter=self.small())
            self.assertEqual(self.flashrom(programmer, *words).returncode, 0)
            self.counted[words] = programmer.wait()[2].count("> spi transfer:")
        return self.counted[words]

    def under_fault(self, fault, words=("-r", "read.bin")):
        """What flashrom and veltra say of a fault at the last transfer but one, which is one of many bytes."""
        place = f"{fault}@spi-transfer:{self.transfers('-r', 'read.bin') - 1}"
        adapter = (*self.small(), "--fault", place, "--fault-delay", "5000")
        programmer = exposed.Exposed("-t", "2000", *COMMAND, "--once", adapter=adapter)
        done = self.flashrom(programmer, *words)
        self.assertNotEqual(done.returncode, 0, done.stdout)
        self.assertNotIn("VERIFIED", done.stdout)
        return done.stdout, programmer.wait()

    def test_what_the_adapter_does_not_answer_in_time_and_rightly_is_an_error_of_flashrom(self):
        for fault in ("lost-response", "late-response", "wrong-identifier", "short-frame"):
            with self.subTest(fault):
                said, ended = self.under_fault(fault)
                self.assertIn("Read operation failed!", said)
                self.assertEqual(ended, (0, "", f"veltra: expose flash: {NO_RESPONSE}\n"))

    def test_a_bit_that_flips_on_the_bus_fails_the_verification(self):
        self.file(b"\xff" * SMALL_BYTES)
        said, ended = self.under_fault("flipped-bit", words=("-v", "new.bin"))
        self.assertIn("FAILED at 0x", said)
        self.assertEqual(ended, (0, "", ""))

    def test_a_write_is_verified_only_where_it_has_arrived(self):
        contents = some_bytes(4096) + b"\xff" * (SMALL_BYTES - 4096)
        self.file(contents)
        count = self.transfers("-w", "new.bin")
        for part in (0.4, 0.6, 0.9):  # flashrom begins anew after some failures, and verifies after them
            fault = f"lost-response@spi-transfer:{int(count * part)}"
            with self.subTest(part), exposed.exposed(
                    "-t", "2000", *COMMAND, adapter=(*self.small(), "--fault", fault)) as programmer:
                written = self.flashrom(programmer, "-w", "new.bin")
                verified = "VERIFIED" in written.stdout
                self.assertEqual(written.returncode == 0, verified, written.stdout)
                complaints = programmer.end()[2]
                self.assertIn(f"veltra: expose flash: {NO_RESPONSE}\n", complaints)
                # flashrom asks more or less often whether the flash is busy: the fault may also lose what verifies
                self.assertTrue(not verified or self.image.read_bytes() == contents, written.stdout)

    def test_an_adapter_that_is_pulled_out_ends_both(self):
        said, ended = self.under_fault("unplug")
        self.assertIn("Read operation failed!", said)
        self.assertEqual(ended[0], 4)
        self.assertIn("veltra: expose flash: the adapter has gone. Plug it in again, then: veltra list\n", ended[2])

    def test_pulled_out_while_nobody_asks_it_ends(self):
        done = self.run_program(
            exposed.VIRTUAL_ADAPTER, "run", "--", "sh", "-c",
            "mkfifo line; veltra -V 3.3 expose flash >line & read -r place <line; "
            "veltra-virtual-adapter tell unplug; wait $!")
        self.assertEqual((done.returncode, done.stdout), (
            4, "veltra: expose flash: the adapter has gone. Plug it in again, then: veltra list\n"))

    def test_without_a_voltage_it_says_what_to_type(self):
        status, _, complaint = exposed.Exposed("expose", "flash").wait()
        self.assertEqual((status, complaint), (
            1, "veltra: expose flash: the I/O voltage is off (status 0x0004). "
               "Say which your board takes: veltra -V 3.3 expose flash\n"))

    def test_a_place_that_others_reach_is_warned_of(self):
        with exposed.exposed("--json", *COMMAND, "--listen", "0.0.0.0:0") as programmer:
            told = json.loads(programmer.first_line)
            self.assertEqual({**told, "port": 0},
                             {"op": "expose.flash", "cs": 0, "address": "0.0.0.0", "port": 0})
            status, _, complaint = programmer.end()
            self.assertEqual(status, 130)
            self.assertRegex(complaint, rf"^veltra: warning: whoever reaches 0\.0\.0\.0:{told['port']} can read and "
                                        "write this flash; nobody is asked for a password\n")

    def test_a_port_that_is_taken_is_said_to_be_so(self):
        with socket.create_server(("127.0.0.1", 0)) as taken:
            place = f"127.0.0.1:{taken.getsockname()[1]}"
            status, _, complaint = exposed.Exposed(*COMMAND, "--listen", place).wait()
        self.assertEqual(status, 1)
        self.assertRegex(complaint, r"^veltra: expose flash: cannot listen on 127\.0\.0\.1 port \d+: "
                                    r"Address already in use\. Without --listen there is always one free\n$")


if __name__ == "__main__":
    if not shutil.which("flashrom", path=exposed.SEARCHED):
        raise SystemExit("flashrom is missing: ./scripts/setup test")
    exposed.main()
