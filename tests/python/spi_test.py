# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""SPI: every operation, and devices with different settings in turn."""

import threading

import pytest

import veltrasdk
from veltrasdk import Adapter

READ_ID = b"\x9f"
LOOPBACK = 1


def test_what_comes_in_while_the_command_goes_out_comes_first(adapter: Adapter) -> None:
    assert adapter.spi(cs=0, mode=0, clock=1_000_000).transfer(READ_ID, length=4) == b"\xff\x56\x41\x12"


def test_a_transfer_receives_as_many_bytes_as_it_sends(adapter: Adapter) -> None:
    assert adapter.spi(cs=LOOPBACK).transfer(b"to and fro") == b"to and fro"


def test_a_command_and_its_answer_are_told_apart(adapter: Adapter) -> None:
    assert adapter.spi(mode=3).write_then_read(b"\x03\x00\x00\x00", 24) == b"Hello from the SPI flash"


def test_a_read_sends_ones(adapter: Adapter) -> None:
    assert adapter.spi(cs=LOOPBACK).read(3) == b"\xff\xff\xff"


def test_a_write_drops_what_comes_in(adapter: Adapter) -> None:
    flash = adapter.spi()
    flash.write(b"\x06")
    assert flash.write_then_read(b"\x05", 1) == b"\x02"
    flash.write(b"\x04")


def test_the_longest_transfer_is_received_whole(adapter: Adapter) -> None:
    sent = bytes(range(256)) * 255 + bytes(255)
    assert adapter.spi(cs=LOOPBACK).transfer(sent) == sent


def test_each_device_keeps_its_own_settings(adapter: Adapter) -> None:
    flash, loopback = adapter.spi(cs=0), adapter.spi(cs=LOOPBACK, mode=1, lsb_first=True, cs_high=True)
    for _ in range(3):
        assert flash.transfer(READ_ID, 4)[1:] == b"\x56\x41\x12"
        assert loopback.transfer(b"abc") == b"abc"


def test_devices_in_different_threads_do_not_meet(adapter: Adapter) -> None:
    flash, loopback = adapter.spi(cs=0), adapter.spi(cs=LOOPBACK)
    wrong = []

    def use_flash() -> None:
        wrong.extend(1 for _ in range(100) if flash.transfer(READ_ID, 4)[1:] != b"\x56\x41\x12")

    def use_loopback() -> None:
        wrong.extend(1 for _ in range(100) if loopback.transfer(b"abc") != b"abc")

    threads = [threading.Thread(target=use) for use in (use_flash, use_loopback)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_words_of_16_bits_come_in_pairs_of_bytes(adapter: Adapter) -> None:
    wide = adapter.spi(cs=LOOPBACK, bits=16)
    assert wide.transfer(b"even") == b"even"
    with pytest.raises(veltrasdk.StatusError) as caught:
        wide.transfer(b"odd")
    assert caught.value.name == "InvalidParameter"


@pytest.mark.parametrize(
    ("call", "text"),
    [
        (lambda adapter: adapter.spi(cs=4), "spi: cs must be 0 to 3, not 4"),
        (lambda adapter: adapter.spi(mode=4), "spi: the mode must be 0 to 3, not 4"),
        (lambda adapter: adapter.spi(bits=9), "spi: bits must be one of 8, 16, not 9"),
        (lambda adapter: adapter.spi(clock=0), "spi: the clock must be 1 to"),
        (lambda adapter: adapter.spi().transfer(b"", 65536), "the length must be 0 to 65,535"),
        (lambda adapter: adapter.spi().write_then_read(b"12", -1), "the length must be 0 to 65,535, not -1"),
        (lambda adapter: adapter.spi().write_then_read(b"1", 65535), "the length must be 0 to 65,535"),
    ],
)
def test_an_argument_that_does_not_fit_is_refused(adapter: Adapter, call: object, text: str) -> None:
    with pytest.raises(veltrasdk.ArgumentError) as caught:
        call(adapter)  # type: ignore[operator]
    assert text in str(caught.value)
