# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""I2C: every operation, and what it refuses."""

import errno
import subprocess
from collections.abc import Iterator

import pytest

import veltrasdk
from conftest import VIRTUAL_ADAPTER
from veltrasdk import Adapter, I2cBus, Read, Write

EEPROM = 0x50
TEXT = b"Hello from the virtual adapter!"


@pytest.fixture(scope="module")
def bus(adapter: Adapter) -> I2cBus:
    return adapter.i2c(0, clock=400_000, pull_up="4k7", retry_busy=True)


@pytest.fixture
def big_eeprom(bus: I2cBus) -> Iterator[int]:
    """The address of the one with two register bytes."""
    yield 0x51
    bus.write(0x51, b"\xff" * 8, register=0, register_bytes=2)


def test_a_scan_lists_the_addresses_that_are_acknowledged(bus: I2cBus) -> None:
    assert bus.scan() == [0x48, 0x50, 0x51]


def test_ten_bit_addresses_are_found_by_a_scan_of_their_own(adapter: Adapter) -> None:
    second = adapter.i2c(1, pull_up="2k2")
    assert second.scan_ten_bit() == [0x1A2]
    assert second.scan() == [0x48, 0x50, 0x51]


def test_a_read_of_a_register_starts_there(bus: I2cBus) -> None:
    assert bus.read(EEPROM, len(TEXT), register=0) == TEXT
    assert bus.read(EEPROM, 4, register=0x0B) == b"the "


def test_a_read_without_a_register_goes_on_where_the_last_one_ended(bus: I2cBus) -> None:
    assert bus.read(EEPROM, 6, register=0) == TEXT[:6]
    assert bus.read(EEPROM, 4) == TEXT[6:10]


def test_a_read_of_no_bytes_is_one_of_no_bytes(bus: I2cBus) -> None:
    assert bus.read(EEPROM, 0) == b""


def test_what_is_written_is_read(bus: I2cBus) -> None:
    bus.write(EEPROM, b"\x12\x34", register=0x80)
    assert bus.read(EEPROM, 2, register=0x80) == b"\x12\x34"
    bus.write(EEPROM, [0x80, 0xFF, 0xFF])
    assert bus.read(EEPROM, 2, register=b"\x80") == b"\xff\xff"


def test_a_register_of_two_bytes_goes_most_significant_byte_first(bus: I2cBus, big_eeprom: int) -> None:
    bus.write(big_eeprom, b"deep", register=0x0123, register_bytes=2)
    assert bus.read(big_eeprom, 4, register=b"\x01\x23") == b"deep"


def test_a_transaction_of_a_short_write_and_a_read_is_one_read(bus: I2cBus) -> None:
    assert bus.transfer(Write(EEPROM, b"\x06"), Read(EEPROM, 4)) == [b"from"]


def test_a_transaction_holds_the_bus_between_its_messages(bus: I2cBus) -> None:
    # The repeated START in place of a STOP makes the EEPROM give the write up.
    assert bus.transfer(Write(EEPROM, b"\x90lost!"), Write(EEPROM, b"\x00"), Read(EEPROM, 5)) == [b"Hello"]
    assert bus.read(EEPROM, 5, register=0x90) == b"\xff" * 5


def test_a_transaction_reads_from_several_targets(bus: I2cBus) -> None:
    messages = Write(EEPROM, b"\x00"), Read(EEPROM, 1), Write(0x48, b"\x00"), Read(0x48, 2), Read(EEPROM, 1)
    assert bus.transfer(*messages) == [b"H", b"\x19\x00", b"e"]


def test_an_address_that_nobody_acknowledges_is_an_os_error(bus: I2cBus) -> None:
    with pytest.raises(OSError) as caught:
        bus.read(0x22, 1)
    problem = caught.value
    assert isinstance(problem, veltrasdk.NackError)
    assert problem.errno == errno.EREMOTEIO
    assert (problem.operation, problem.status, problem.name) == ("i2c.read", 6, "NotAcknowledged")
    assert str(problem) == "i2c.read 0x22: not acknowledged (status 0x0006)"


def test_a_byte_that_is_refused_is_an_os_error_too(bus: I2cBus) -> None:
    subprocess.run([VIRTUAL_ADAPTER, "tell", "i2c", "0", "0x48", "nack", "data:1"], check=True)
    with pytest.raises(veltrasdk.NackError, match="i2c.write 0x48: data not acknowledged") as caught:
        bus.write(0x48, b"\x01")
    assert caught.value.errno == errno.EREMOTEIO


def test_the_parameters_of_an_initialised_controller_are_changed(bus: I2cBus) -> None:
    bus.configure(100_000, retry_busy=True)
    assert bus.read(EEPROM, 1, register=0) == b"H"
    with pytest.raises(veltrasdk.StatusError, match="refuses a value"):
        bus.configure(9)
    bus.configure(400_000, retry_busy=True)


def test_without_pull_ups_the_error_says_what_to_type(bus: I2cBus) -> None:
    bus.set_pull_up("none")
    with pytest.raises(veltrasdk.StatusError) as caught:
        bus.scan()
    assert str(caught.value) == (
        "i2c.scan bus 0: the bus has no pull-up resistors (status 0x0008)."
        ' Switch the adapter\'s on: adapter.i2c(0, pull_up="4k7")'
    )
    bus.set_pull_up("10k")
    assert bus.scan()


@pytest.mark.parametrize(
    ("call", "text"),
    [
        (lambda bus: bus.read(0x80, 1), "i2c.read: the address must be 0x00 to 0x7F, not 128"),
        (lambda bus: bus.read(0x50, 65536), "i2c.read: the length must be 0 to 65,535, not 65536"),
        (lambda bus: bus.read(0x50, -1), "i2c.read: the length must be 0 to 65,535, not -1"),
        (lambda bus: bus.read(0x50, 1.5), "i2c.read: the length must be an integer, not 1.5"),
        (lambda bus: bus.read(0x50, 1, register=256), "register 0x100 does not fit 1 byte"),
        (lambda bus: bus.read(0x50, 1, register=0, register_bytes=5), "register_bytes must be 1 to 4, not 5"),
        (lambda bus: bus.read(0x50, 1, register=b"12345"), "5 bytes are too many: at most 4"),
        (lambda bus: bus.write(0x50, "text"), "i2c.write: the data must be bytes, not 'text'"),
        (lambda bus: bus.write(0x50, 7), "i2c.write: the data must be bytes, not 7"),
        (lambda bus: bus.write(0x50, [256]), "i2c.write: the data must be bytes"),
        (lambda bus: bus.write(0x50, bytes(65536)), "65,536 bytes are too many: at most 65,535"),
        (lambda bus: bus.transfer(Read(0x150, 1)), "i2c.transfer: the address must be"),
        (lambda bus: bus.set_pull_up("1k"), "i2c.pull_up: pull_up must be one of none, 10k, 4k7, 2k2, not '1k'"),
        (lambda bus: bus.configure(0), "i2c: the clock must be 1 to 4,294,967,295, not 0"),
        (lambda bus: bus._adapter.i2c(2), "i2c: the bus must be 0 to 1, not 2"),
    ],
)
def test_an_argument_that_does_not_fit_is_refused(bus: I2cBus, call: object, text: str) -> None:
    with pytest.raises(veltrasdk.ArgumentError) as caught:
        call(bus)  # type: ignore[operator]
    assert text in str(caught.value)
    assert isinstance(caught.value, ValueError)
