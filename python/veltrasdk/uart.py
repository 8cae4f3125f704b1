# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""UART: the adapter's serial line."""

import sys
import threading
import time
from collections.abc import Iterable
from typing import TYPE_CHECKING

from veltrasdk import _checks
from veltrasdk._checks import BytesLike
from veltrasdk._native import UartBaudRate, UartDataSize, UartHwHandshake, UartParity, UartStopBit
from veltrasdk.errors import DisconnectedError
from veltrasdk.events import Event

if TYPE_CHECKING:
    from veltrasdk.adapter import Adapter

BAUD_RATES = {int(rate.name.removeprefix("RATE_")): rate for rate in UartBaudRate}
PARITIES = {"none": UartParity.NONE, "odd": UartParity.ODD, "even": UartParity.EVEN}
DATA_BITS = {int(size): size for size in UartDataSize}
STOP_BITS = {int(bits): bits for bits in UartStopBit}


class Received:
    """Received bytes that nobody has read."""

    def __init__(self) -> None:
        self._bytes = bytearray()

    def __len__(self) -> int:
        return len(self._bytes)

    def add(self, events: Iterable[Event]) -> None:
        """Puts what came behind the others."""
        for event in events:
            self._bytes += event.payload

    def take(self, length: int) -> bytes:
        """The oldest ones, fewer when there are no more."""
        taken = bytes(self._bytes[:length])
        del self._bytes[:length]
        return taken


class Uart:
    """The initialised UART; made by :meth:`Adapter.uart`.

    Received bytes are kept from then on, up to 100,000 notifications of the adapter. Each object receives every
    byte, whoever else reads. It is a context manager that closes itself. Threads that read from one object take
    turns.

    :ivar events: the consumer that receives them; :meth:`read` takes from it.
    """

    def __init__(
        self, adapter: "Adapter", baud_rate: int, parity: str, data_bits: int, stop_bits: int, rts_cts: bool
    ) -> None:
        self._adapter = adapter
        self._received = Received()
        self._turn = threading.Lock()
        self.events = adapter.events("uart")
        try:
            self._set("UartInit", baud_rate, parity, data_bits, stop_bits, rts_cts)
        except BaseException:
            self.events.close()
            raise

    def __enter__(self) -> "Uart":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def _set(
        self, function: str, baud_rate: int, parity: str, data_bits: int, stop_bits: int, rts_cts: bool
    ) -> None:
        settings = (
            _checks.word("uart", "the baud rate", baud_rate, BAUD_RATES),
            UartHwHandshake(bool(rts_cts)),
            _checks.word("uart", "the parity", parity, PARITIES),
            _checks.word("uart", "data_bits", data_bits, DATA_BITS),
            _checks.word("uart", "stop_bits", stop_bits, STOP_BITS),
        )
        self._adapter.link.call("uart.configure", function, *settings, place=f"{baud_rate} bit/s")

    def configure(
        self,
        baud_rate: int = 115_200,
        *,
        parity: str = "none",
        data_bits: int = 8,
        stop_bits: int = 1,
        rts_cts: bool = False,
    ) -> None:
        """Changes the line's parameters; see :meth:`Adapter.uart`."""
        self._set("UartSetParameters", baud_rate, parity, data_bits, stop_bits, rts_cts)

    def write(self, data: BytesLike) -> None:
        """Sends at most 65,535 bytes."""
        message = _checks.data("uart.write", data)
        self._adapter.link.call("uart.write", "UartSendMessage", message, len(message))

    def read(self, length: int, timeout: float | None = 1.0) -> bytes:
        """Waits for received bytes.

        :param length: how many; further ones are kept for the next read.
        :param timeout: how long to wait for all of them, in seconds; None waits without limit.
        :returns: so many bytes, fewer when the time was up.
        :raises DisconnectedError: when the adapter has gone or is closed, and nothing is left to read.
        """
        wanted = read_length(length)
        if self._adapter.link.is_foreign:  # before the lock, which a fork may have left held
            self._adapter.link.check("uart.read")
        until = None if timeout is None else time.monotonic() + timeout
        patience = -1 if timeout is None else max(0.0, timeout)
        if not self._turn.acquire(timeout=patience):  # pylint: disable=consider-using-with
            return b""
        try:
            self._receive(wanted, until)
            return self._received.take(wanted)
        finally:
            self._turn.release()

    def _receive(self, wanted: int, until: float | None) -> None:
        try:
            while len(self._received) < wanted:
                events = self.events.wait(None if until is None else max(0.0, until - time.monotonic()))
                if not events:
                    return
                self._received.add(events)
        except DisconnectedError:
            if not self._received:
                raise

    @property
    def lost(self) -> int:
        """How many events of the adapter were lost so far."""
        return self.events.lost

    def close(self) -> None:
        """Keeps received bytes no longer. The UART stays initialised."""
        self.events.close()


def read_length(length: int) -> int:
    """How many bytes a read wants."""
    return _checks.number("uart.read", "the length", length, sys.maxsize)
