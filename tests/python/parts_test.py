# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""A part answers the virtual adapter's lines."""

import io
import json
import subprocess
import sys

import pytest

from veltrasdk.parts import I2cPart, Nack, SpiPart, main

GREETING = '{"veltra-part":1}'


def answers(part: I2cPart | SpiPart, *requests: str) -> list[str]:
    """What the part answers behind the greeting."""
    going = io.StringIO()
    main(part, io.StringIO("\n".join([GREETING, *requests]) + "\n"), going)
    first, *rest = going.getvalue().splitlines()
    assert first == GREETING
    return rest


class Recorder(I2cPart):
    def __init__(self) -> None:
        self.seen: list[object] = []

    def start(self, read: bool, restart: bool) -> None:
        self.seen.append((read, restart))

    def write(self, data: bytes) -> None:
        self.seen.append(data)
        print("a part may print")
        if len(data) > 2:
            raise Nack(2)

    def read(self, count: int) -> bytes:
        return bytes(range(4))

    def stop(self) -> None:
        self.seen.append("stop")

    def set(self, name: str, value: str) -> None:
        if name != "temperature":
            super().set(name, value)
        self.seen.append(float(value))


def test_an_i2c_part_is_asked_message_by_message(capsys: pytest.CaptureFixture[str]) -> None:
    part = Recorder()
    assert answers(
        part,
        '{"op":"start","read":false,"restart":false}',
        '{"op":"write","data":"00af"}',
        '{"op":"start","read":true,"restart":true}',
        '{"op":"read","count":4}',
        '{"op":"stop"}',
    ) == ['{"ack":true}', '{"ack":2}', '{"ack":true}', '{"data":"00010203"}', "{}"]
    assert part.seen == [(False, False), b"\x00\xaf", (True, True), "stop"]
    assert capsys.readouterr() == ("", "a part may print\n")


def test_what_is_not_returned_reads_as_ones_and_what_is_too_much_is_dropped() -> None:
    assert answers(Recorder(), '{"op":"read","count":6}', '{"op":"read","count":1}') == [
        '{"data":"00010203ffff"}',
        '{"data":"00"}',
    ]
    assert answers(I2cPart(), '{"op":"read","count":2}') == ['{"data":"ffff"}']


def test_a_byte_that_is_not_acknowledged_is_counted() -> None:
    assert answers(Recorder(), '{"op":"write","data":"000102"}') == ['{"ack":2}']


def test_an_address_that_is_not_acknowledged_is_told() -> None:
    class Asleep(I2cPart):
        def start(self, read: bool, restart: bool) -> None:
            raise Nack

    assert answers(Asleep(), '{"op":"start","read":true,"restart":false}') == ['{"ack":false}']


def test_a_part_that_overrides_nothing_acknowledges() -> None:
    requests = '{"op":"start","read":false,"restart":false}', '{"op":"write","data":"01"}', '{"op":"stop"}'
    assert answers(I2cPart(), *requests) == ['{"ack":true}', '{"ack":1}', "{}"]


def test_an_spi_part_answers_a_transfer() -> None:
    class Inverter(SpiPart):
        def transfer(self, data: bytes) -> bytes:
            return bytes(byte ^ 0xFF for byte in data[:2])

    assert answers(Inverter(), '{"op":"transfer","data":"9f0000"}') == ['{"data":"60ffff"}']
    assert answers(SpiPart(), '{"op":"transfer","data":"9f"}') == ['{"data":"ff"}']


def test_a_setting_is_changed_or_told_to_be_wrong() -> None:
    part = Recorder()
    assert [
        json.loads(line)
        for line in answers(
            part,
            '{"op":"set","name":"temperature","value":"85.5"}',
            '{"op":"set","name":"temperature","value":"warm"}',
            '{"op":"set","name":"colour","value":"red"}',
            '{"op":"of the future"}',
        )
    ] == [
        {},
        {"error": "could not convert string to float: 'warm'"},
        {"error": "no such setting"},
        {"error": "unknown"},
    ]
    assert part.seen == [85.5]


def test_another_version_of_the_lines_ends_the_part() -> None:
    for greeting in ('{"veltra-part":2}\n', ""):
        with pytest.raises(SystemExit, match="a part speaks version 1"):
            main(I2cPart(), io.StringIO(greeting), io.StringIO())


def test_a_part_is_a_program_that_ends_with_its_input() -> None:
    program = "from veltrasdk.parts import I2cPart, main; main(I2cPart())"
    ended = subprocess.run([sys.executable, "-c", program], input=GREETING, capture_output=True, text=True, check=True)
    assert (ended.stdout, ended.stderr) == (GREETING + "\n", "")
