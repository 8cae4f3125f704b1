# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""One adapter in several threads."""

import threading
import time

import pytest

from conftest import SECONDS
from veltrasdk import Adapter, Read, Write
from veltrasdk._turns import Turns


@pytest.mark.parametrize("overlap", [1, 4])
def test_each_thread_gets_the_answers_to_its_own_requests(adapter: Adapter, overlap: int) -> None:
    adapter.close()
    wrong = []
    with Adapter(voltage=3.3, overlap=overlap) as opened:
        bus = opened.i2c(0, pull_up="4k7")
        expected = bus.read(0x50, 16, register=0)

        def read(place: int) -> None:
            for _ in range(100):
                if bus.read(0x50, 1, register=place) != expected[place : place + 1]:
                    wrong.append(place)

        threads = [threading.Thread(target=read, args=(place,)) for place in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        assert (wrong, opened.unmatched_responses) == ([], 0)


def test_no_other_operation_comes_between_the_messages_of_a_transaction(adapter: Adapter) -> None:
    adapter.close()
    with Adapter(voltage=3.3) as opened:
        bus = opened.i2c(0, pull_up="4k7")
        stop = threading.Event()

        def disturb() -> None:
            while not stop.is_set():
                bus.read(0x48, 2, register=0)

        disturbing = threading.Thread(target=disturb)
        disturbing.start()
        try:
            for _ in range(100):
                # Five bytes are not one read with a register: the bus is held between two operations.
                assert bus.transfer(Write(0x48, b"\x03\x50\x00"), Read(0x48, 2)) == [b"\x50\x00"]
        finally:
            stop.set()
            disturbing.join()


def test_a_thread_that_waits_to_be_alone_comes_before_new_ones_that_share() -> None:
    turns, order = Turns(), []
    entered = threading.Event()

    def alone() -> None:
        with turns.alone():
            order.append("alone")

    def share() -> None:
        with turns.shared():
            order.append("shared")

    with turns.shared():
        first = threading.Thread(target=alone)
        first.start()
        while not turns._waiting:
            time.sleep(0)
        second = threading.Thread(target=share)
        second.start()
        assert not entered.wait(0.01) and order == []
    first.join(SECONDS)
    second.join(SECONDS)
    assert order == ["alone", "shared"]


def test_whoever_shares_does_so_beside_others() -> None:
    turns = Turns()
    with turns.shared(), turns.shared():
        pass
    with turns.alone():
        pass
