# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The adapter, from which everything else is made."""

import ctypes
import warnings
import weakref
from collections.abc import Callable
from typing import NoReturn

from veltrasdk import _checks
from veltrasdk._discovery import AdapterInfo, adapters, find, why_not_connected
from veltrasdk._link import Link
from veltrasdk._native import I3cDriveStrength, I3cOpenDrainTransferRate, I3cPushPullRate, I2cTransferRate
from veltrasdk._turns import Turns
from veltrasdk.events import Dispatcher, Event, Events, Subscription, kinds_of
from veltrasdk.gpio import GpioPin
from veltrasdk.i2c import I2cBus
from veltrasdk.i3c import I3cBus
from veltrasdk.spi import SpiController, SpiDevice
from veltrasdk.uart import Uart

STRINGS = 5


class Adapter:
    """An open adapter.

    It may be used from several threads, each of which gets the answers to its own requests, and several may be
    open in one process. It closes itself at the end of a ``with`` block, when nothing refers to it any more,
    and when the interpreter exits. After a fork the child's object refuses everything.

    Each operation raises :class:`NoResponseError` when no response comes within the time-out,
    :class:`DisconnectedError` when the adapter has gone or is closed, :class:`ArgumentError` before anything is
    sent, and :class:`StatusError` with the adapter's word for a refusal.

    :param serial: the USB serial number, matched exactly; None takes the first adapter.
    :param timeout: how long an operation waits for its response, in seconds; None waits without limit.
    :param voltage: the I/O voltage of I2C, SPI, UART and GPIO, in volts, which is switched on; None leaves it
        as it is.
    :param path: the HID device path, as :func:`adapters` tells it.
    :param overlap: how many small requests of several threads may be outstanding at once, 1 to 4. How many an
        adapter queues is its maker's word.
    :raises NotFoundError: when none can be opened; its ``reason`` says why.
    """

    def __init__(
        self,
        serial: str | None = None,
        timeout: float | None = 5.0,
        voltage: float | None = None,
        *,
        path: str | None = None,
        overlap: int = 1,
    ) -> None:
        self.link = Link(timeout, overlap)
        self._close = weakref.finalize(self, _close_forgotten, self.link)
        try:
            self._info = find(adapters(), serial, path)
            if not self.link.connect(self._info.path):
                raise why_not_connected(self._info)
            self._millivolts = 3300
            self._dispatcher = Dispatcher(self.link)
            self.bus_turns = [Turns(), Turns()]
            self.i3c_turns = Turns()
            self._spi = SpiController(self.link)
            if voltage is not None:
                self.set_voltage(voltage)
        except BaseException:
            self.close()
            raise

    def __enter__(self) -> "Adapter":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        state = "closed" if self.link.is_closed else "open"
        return f"<veltrasdk.Adapter {self._info.serial!r} at {self._info.path}, {state}>"

    def __reduce__(self) -> NoReturn:
        raise TypeError("an adapter belongs to its process and cannot be pickled: open it where it is used")

    def close(self) -> None:
        """Closes the adapter; on a closed one nothing happens.

        Operations that other threads wait for end with :class:`DisconnectedError`, and so do the waits for
        events. The adapter keeps its settings and its voltage.
        """
        if self._close.detach():
            self.link.close()

    @property
    def info(self) -> AdapterInfo:
        """What was known of the adapter when it was opened."""
        return self._info

    @property
    def connected(self) -> bool:
        """Whether the adapter can be reached: open, and no read has failed since."""
        return self.link.is_connected

    @property
    def unmatched_responses(self) -> int:
        """How many responses came that nobody waited for, such as late ones; they were dropped."""
        return self.link.unmatched_responses

    def strings(self) -> list[str]:
        """The adapter's five identity strings; undecodable bytes are replaced."""
        texts = []
        for index in range(1, STRINGS + 1):
            text = ctypes.create_string_buffer(255)
            self.link.call("strings", "GetUsbString", index, text, len(text), place=str(index))
            texts.append(text.value.decode(errors="replace"))
        return texts

    def set_voltage(self, volts: float) -> None:
        """Switches the I/O voltage of I2C, SPI, UART and GPIO on, at so many volts."""
        self._millivolts = _checks.millivolts("voltage", volts)
        self.link.call("voltage", "I2cSetBusVoltage", self._millivolts, True, place=f"{volts:g} V")

    def voltage_off(self) -> None:
        """Switches the I/O voltage of I2C, SPI, UART and GPIO off."""
        self.link.call("voltage", "I2cSetBusVoltage", self._millivolts, False, place="off")

    def enter_boot_mode(self) -> None:
        """Sends the adapter into its boot mode, where it waits for new firmware, and closes this object."""
        self.link.call("boot", "EnterBootMode")
        self.close()

    def i2c(
        self, bus: int = 0, clock: int = 400_000, pull_up: str | None = None, *, retry_busy: bool = False
    ) -> I2cBus:
        """Initialises an I2C controller.

        :param bus: the controller, 0 or 1.
        :param clock: the clock rate in Hz.
        :param pull_up: the adapter's pull-up resistors: ``"none"``, ``"10k"``, ``"4k7"`` or ``"2k2"``; None
            leaves them as they are.
        :param retry_busy: whether the controller repeats an address that is not acknowledged, so that the write
            cycle of an EEPROM is waited out.
        """
        return I2cBus(self, bus, clock, pull_up, retry_busy)

    def spi(
        self,
        cs: int = 0,
        mode: int = 0,
        clock: int = 1_000_000,
        *,
        bits: int = 8,
        lsb_first: bool = False,
        cs_high: bool = False,
    ) -> SpiDevice:
        """A device of the SPI bus; several may be used in turn, each with its own settings.

        :param cs: its chip-select line, 0 to 3.
        :param mode: clock polarity and phase, 0 to 3.
        :param clock: the clock rate in Hz.
        :param bits: the bits of a word, 8 or 16.
        :param lsb_first: whether the least significant bit goes first.
        :param cs_high: whether the chip select is asserted high.
        """
        return SpiDevice(self, self._spi, cs, mode, clock, bits, lsb_first, cs_high)

    def uart(
        self,
        baud_rate: int = 115_200,
        *,
        parity: str = "none",
        data_bits: int = 8,
        stop_bits: int = 1,
        rts_cts: bool = False,
    ) -> Uart:
        """Initialises the UART, whose received bytes are kept from now on.

        :param baud_rate: the line rate in bit/s, one of the usual ones from 1,200 to 921,600.
        :param parity: ``"none"``, ``"odd"`` or ``"even"``.
        :param data_bits: 5 to 8.
        :param stop_bits: 1 or 2.
        :param rts_cts: whether RTS and CTS control the flow.
        """
        return Uart(self, baud_rate, parity, data_bits, stop_bits, rts_cts)

    def gpio(self, pin: int) -> GpioPin:
        """A pin, 0 to 7; nothing is sent."""
        return GpioPin(self, pin)

    def i3c(
        self,
        voltage: float | None = None,
        *,
        push_pull: I3cPushPullRate = I3cPushPullRate.RATE_12_5_MHZ,
        open_drain: I3cOpenDrainTransferRate = I3cOpenDrainTransferRate.RATE_1_MHZ,
        i2c: I2cTransferRate = I2cTransferRate.RATE_0_4_MHZ,
        drive: I3cDriveStrength = I3cDriveStrength.STRENGTH_8_MA,
    ) -> I3cBus:
        """Initialises the I3C controller; :meth:`I3cBus.init` then brings the bus up.

        :param voltage: the bus's supply in volts, which is set first; None leaves it as it is.
        :param push_pull: the SCL rate of push-pull phases.
        :param open_drain: the SCL rate of open-drain phases.
        :param i2c: the SCL rate of transfers with legacy I2C devices.
        :param drive: the drive strength of the pins.
        """
        return I3cBus(self, voltage, push_pull, open_drain, i2c, drive)

    def events(self, *kinds: str) -> Events:
        """A queue of its own for events of these kinds from now on.

        :param kinds: ``"ibi"``, ``"hotjoin"``, ``"gpio"``, ``"uart"``, ``"unknown"``; none means all.
        """
        return self._dispatcher.add(self, kinds_of(kinds))

    def on(self, function: Callable[[Event], object], *kinds: str) -> Subscription:
        """Calls a function with each event of these kinds from now on, in a thread of its own.

        The adapter stays open until it or the subscription is closed.
        """
        return Subscription(self.events(*kinds), function)


def _close_forgotten(link: Link) -> None:
    """Closes the link of an adapter that nobody has closed: it was collected, or the interpreter exits."""
    if link.is_foreign or link.is_closed:
        return
    link.close()
    warnings.warn("an adapter was not closed: use it in a with block", ResourceWarning, stacklevel=2)
