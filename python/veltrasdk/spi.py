# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""SPI: the adapter's controller and the devices at its chip selects."""

import threading
from dataclasses import dataclass
from typing import TYPE_CHECKING

from veltrasdk import _checks
from veltrasdk._checks import BytesLike
from veltrasdk._link import Link, buffer
from veltrasdk._native import SpiBitOrder, SpiChipSelect, SpiChipSelectPolarity, SpiDataWidth, SpiMode
from veltrasdk._turns import Turns

if TYPE_CHECKING:
    from veltrasdk.adapter import Adapter


@dataclass(frozen=True)
class SpiSettings:
    """What the controller is told before a device's transfers."""

    bit_order: SpiBitOrder
    mode: SpiMode
    width: SpiDataWidth
    chip_select: SpiChipSelect
    polarity: SpiChipSelectPolarity
    clock: int


class SpiController:
    """The one controller, which every device gives its settings before it transfers."""

    def __init__(self, link: Link) -> None:
        self._link = link
        self._turns = Turns()
        self._lock = threading.Lock()
        self._settings: SpiSettings | None = None

    def apply(self, settings: SpiSettings) -> None:
        """Has the settings in force; waits until no transfer runs when they are others."""
        with self._turns.alone():
            if self._settings == settings:
                return
            function = "SpiControllerInit" if self._settings is None else "SpiSetParameters"
            values = (settings.bit_order, settings.mode, settings.width, settings.chip_select, settings.polarity)
            self._link.call("spi.configure", function, *values, settings.clock, place=f"cs {settings.chip_select}")
            self._settings = settings

    def transfer(self, settings: SpiSettings, send: bytes, length: int) -> bytes:
        """A transfer with these settings."""
        while True:
            with self._turns.shared():
                if self._settings == settings:
                    received = buffer(_checks.MAX_LENGTH)  # the response's count is the adapter's word
                    arguments = send, len(send), received, length
                    self._link.call("spi.transfer", "SpiTransfer", *arguments, place=f"cs {settings.chip_select}")
                    return bytes(memoryview(received)[:length])
            self.apply(settings)


class SpiDevice:
    """What stands at one chip select; made by :meth:`Adapter.spi`.

    A transfer asserts the chip select from its first clock to its last.
    """

    def __init__(
        self,
        adapter: "Adapter",
        controller: SpiController,
        cs: int,
        mode: int,
        clock: int,
        bits: int,
        lsb_first: bool,
        cs_high: bool,
    ) -> None:
        self._adapter = adapter
        self._controller = controller
        self._settings = SpiSettings(
            SpiBitOrder(bool(lsb_first)),
            SpiMode(_checks.number("spi", "the mode", mode, 3)),
            _checks.word("spi", "bits", bits, {8: SpiDataWidth.WIDTH_8_BITS, 16: SpiDataWidth.WIDTH_16_BITS}),
            SpiChipSelect(_checks.number("spi", "cs", cs, 3)),
            SpiChipSelectPolarity(bool(cs_high)),
            _checks.number("spi", "the clock", clock, 0xFFFFFFFF, 1),
        )
        controller.apply(self._settings)

    def transfer(self, data: BytesLike, length: int | None = None) -> bytes:
        """Sends and receives at the same time.

        :param data: the bytes to send, at most 65,535.
        :param length: how many received bytes are wanted, from the first clock on: those that come in while the
            data goes out are the first of them. More than the data goes on clocking. As many as the data unless
            given.
        :returns: so many bytes.
        """
        send = _checks.data("spi.transfer", data)
        wanted = len(send) if length is None else length
        return self._controller.transfer(
            self._settings, send, _checks.number("spi.transfer", "the length", wanted, _checks.MAX_LENGTH)
        )

    def write(self, data: BytesLike) -> None:
        """Sends at most 65,535 bytes and drops what comes in."""
        self.transfer(data, 0)

    def read(self, length: int) -> bytes:
        """Receives at most 65,535 bytes without any to send."""
        return self.transfer(b"", length)

    def write_then_read(self, data: BytesLike, length: int) -> bytes:
        """Sends a command and receives what comes behind it, together at most 65,535 bytes."""
        send = _checks.data("spi.transfer", data)
        wanted = _checks.number("spi.transfer", "the length", length, _checks.MAX_LENGTH)
        return self.transfer(send, len(send) + wanted)[len(send) :]
