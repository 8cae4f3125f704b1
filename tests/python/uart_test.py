# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""UART: the transmit line is wired to the receive line."""

import select
import threading

import pytest

import veltrasdk
from conftest import SECONDS, VIRTUAL_ADAPTER
from veltrasdk import Adapter
from veltrasdk.virtual import Board


def test_what_is_written_comes_back(adapter: Adapter) -> None:
    with adapter.uart(115_200) as uart:
        uart.write(b"hello")
        assert uart.read(5, timeout=SECONDS) == b"hello"
        assert uart.lost == 0


def test_a_read_leaves_further_bytes_for_the_next(adapter: Adapter) -> None:
    with adapter.uart() as uart:
        uart.write(bytes(range(200)))
        assert uart.read(150, timeout=SECONDS) == bytes(range(150))
        assert uart.read(50, timeout=None) == bytes(range(150, 200))


def test_a_read_returns_fewer_bytes_when_the_time_is_up(adapter: Adapter) -> None:
    with adapter.uart() as uart:
        assert uart.read(1, timeout=0) == b""
        uart.write(b"abc")
        while not (read := uart.read(3, timeout=0.01)):
            pass
        assert read == b"abc"


def test_two_readers_receive_every_byte(adapter: Adapter) -> None:
    with adapter.uart() as first, adapter.uart() as second:
        first.write(b"both")
        assert first.read(4, SECONDS) == second.read(4, SECONDS) == b"both"


def test_threads_that_read_from_one_object_take_turns(adapter: Adapter) -> None:
    sent, read = bytes(range(240)), []
    with adapter.uart() as uart:

        def take() -> None:
            for _ in range(20):
                read.append(uart.read(3, SECONDS))

        threads = [threading.Thread(target=take) for _ in range(4)]
        for thread in threads:
            thread.start()
        for start in range(0, len(sent), 16):
            uart.write(sent[start : start + 16])
        for thread in threads:
            thread.join()
    assert sorted(read) == [sent[start : start + 3] for start in range(0, len(sent), 3)]


def test_a_read_behind_one_that_waits_returns_nothing_when_the_time_is_up(adapter: Adapter) -> None:
    with adapter.uart() as uart:
        with uart._turn:
            assert uart.read(1, timeout=0.01) == b""
        uart.write(b"a")
        assert uart.read(1, timeout=SECONDS) == b"a"


def test_what_came_before_the_end_is_read() -> None:
    with Board(program=VIRTUAL_ADAPTER) as board, board.adapter(voltage=3.3) as opened:
        uart = opened.uart()
        uart.write(b"abc")
        assert select.select([uart.events], [], [], SECONDS)[0]
        board.unplug()
        assert uart.read(9, timeout=SECONDS) == b"abc"
        with pytest.raises(veltrasdk.DisconnectedError, match="the adapter has gone"):
            uart.read(1, timeout=SECONDS)


def test_a_length_below_zero_is_refused(adapter: Adapter) -> None:
    with adapter.uart() as uart, pytest.raises(veltrasdk.ArgumentError, match="uart.read: the length must be 0 to"):
        uart.read(-1)


def test_the_parameters_of_the_line_are_changed(adapter: Adapter) -> None:
    with adapter.uart() as uart:
        uart.configure(9600, parity="even", data_bits=7, stop_bits=2, rts_cts=True)
        uart.write(b"\x81")
        assert uart.read(1, SECONDS) == b"\x01"


@pytest.mark.parametrize(
    ("settings", "text"),
    [
        ({"baud_rate": 115_201}, "uart: the baud rate must be one of 1200, 2400,"),
        ({"parity": "mark"}, "uart: the parity must be one of none, odd, even, not 'mark'"),
        ({"data_bits": 9}, "uart: data_bits must be one of 5, 6, 7, 8, not 9"),
        ({"stop_bits": 3}, "uart: stop_bits must be one of 1, 2, not 3"),
    ],
)
def test_a_setting_that_does_not_exist_is_refused(adapter: Adapter, settings: dict[str, int], text: str) -> None:
    with pytest.raises(veltrasdk.ArgumentError) as caught:
        adapter.uart(**settings)  # type: ignore[arg-type]
    assert text in str(caught.value)
