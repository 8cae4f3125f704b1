# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The adapter, awaited."""

import asyncio
from functools import partial

import veltrasdk
from veltrasdk._discovery import AdapterInfo
from veltrasdk._native import I2cTransferRate, I3cDriveStrength, I3cOpenDrainTransferRate, I3cPushPullRate
from veltrasdk.aio._buses import GpioPin, I2cBus, I3cBus, SpiDevice, Uart
from veltrasdk.aio._events import Events
from veltrasdk.aio._worker import Worker
from veltrasdk.errors import DisconnectedError


class Adapter:
    """An adapter for ``async with``, which opens and closes it; see :class:`veltrasdk.Adapter`.

    The parameters are those of :class:`veltrasdk.Adapter`.
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
        self._make = partial(veltrasdk.Adapter, serial, timeout, voltage, path=path, overlap=overlap)
        self._worker = Worker()
        self._opened: veltrasdk.Adapter | None = None

    async def __aenter__(self) -> "Adapter":
        await self.open()
        return self

    async def __aexit__(self, *_: object) -> None:
        await self.close()

    async def open(self) -> None:
        """Opens the adapter, once; what :class:`veltrasdk.Adapter` raises is raised here."""

        def make() -> None:
            self._opened = self._make()

        try:
            await self._worker.run(make)
        except asyncio.CancelledError:
            await self.close()
            raise

    async def close(self) -> None:
        """Closes the adapter; on a closed one nothing happens.

        Operations that other tasks wait for end with :class:`veltrasdk.DisconnectedError`.
        """

        def end() -> None:
            if self._opened is not None:
                self._opened.close()

        if self._worker.stopped:
            return
        if self._opened is None:  # it may be being opened, which nothing can end
            await asyncio.shield(self._worker.run(end))
        else:
            # Not by the worker, which may be in the operation that this is to end.
            await asyncio.get_running_loop().run_in_executor(None, end)
        self._worker.stop()

    @property
    def _same(self) -> veltrasdk.Adapter:
        if self._opened is None:
            raise DisconnectedError("open", "the adapter is not open: use it in an async with block")
        return self._opened

    @property
    def info(self) -> AdapterInfo:
        """What was known of the adapter when it was opened."""
        return self._same.info

    @property
    def connected(self) -> bool:
        """Whether the adapter can be reached."""
        return self._opened is not None and self._opened.connected

    @property
    def unmatched_responses(self) -> int:
        """How many responses came that nobody waited for."""
        return self._same.unmatched_responses

    async def strings(self) -> list[str]:
        """The adapter's five identity strings."""
        return await self._worker.run(self._same.strings)

    async def set_voltage(self, volts: float) -> None:
        """Switches the I/O voltage of I2C, SPI, UART and GPIO on, at so many volts."""
        await self._worker.run(lambda: self._same.set_voltage(volts))

    async def voltage_off(self) -> None:
        """Switches the I/O voltage of I2C, SPI, UART and GPIO off."""
        await self._worker.run(self._same.voltage_off)

    async def enter_boot_mode(self) -> None:
        """Sends the adapter into its boot mode, and closes this object."""
        await self._worker.run(self._same.enter_boot_mode)

    async def i2c(
        self, bus: int = 0, clock: int = 400_000, pull_up: str | None = None, *, retry_busy: bool = False
    ) -> I2cBus:
        """Initialises an I2C controller; see :meth:`veltrasdk.Adapter.i2c`."""
        make = self._same.i2c
        same = await self._worker.run(lambda: make(bus, clock, pull_up, retry_busy=retry_busy))
        return I2cBus(self._worker, same)

    async def spi(
        self,
        cs: int = 0,
        mode: int = 0,
        clock: int = 1_000_000,
        *,
        bits: int = 8,
        lsb_first: bool = False,
        cs_high: bool = False,
    ) -> SpiDevice:
        """A device of the SPI bus; see :meth:`veltrasdk.Adapter.spi`."""
        make = self._same.spi
        same = await self._worker.run(
            lambda: make(cs, mode, clock, bits=bits, lsb_first=lsb_first, cs_high=cs_high)
        )
        return SpiDevice(self._worker, same)

    async def uart(
        self,
        baud_rate: int = 115_200,
        *,
        parity: str = "none",
        data_bits: int = 8,
        stop_bits: int = 1,
        rts_cts: bool = False,
    ) -> Uart:
        """Initialises the UART; see :meth:`veltrasdk.Adapter.uart`."""
        make = self._same.uart
        same = await self._worker.run(
            lambda: make(baud_rate, parity=parity, data_bits=data_bits, stop_bits=stop_bits, rts_cts=rts_cts)
        )
        return Uart(self._worker, same)

    def gpio(self, pin: int) -> GpioPin:
        """A pin, 0 to 7; nothing is sent."""
        return GpioPin(self._worker, self._same.gpio(pin))

    async def i3c(
        self,
        voltage: float | None = None,
        *,
        push_pull: I3cPushPullRate = I3cPushPullRate.RATE_12_5_MHZ,
        open_drain: I3cOpenDrainTransferRate = I3cOpenDrainTransferRate.RATE_1_MHZ,
        i2c: I2cTransferRate = I2cTransferRate.RATE_0_4_MHZ,
        drive: I3cDriveStrength = I3cDriveStrength.STRENGTH_8_MA,
    ) -> I3cBus:
        """Initialises the I3C controller; see :meth:`veltrasdk.Adapter.i3c`."""
        make = self._same.i3c
        same = await self._worker.run(
            lambda: make(voltage, push_pull=push_pull, open_drain=open_drain, i2c=i2c, drive=drive)
        )
        return I3cBus(self._worker, same)

    def events(self, *kinds: str) -> Events:
        """A queue of its own for events of these kinds from now on; see :meth:`veltrasdk.Adapter.events`."""
        return Events(self._same.events(*kinds))
