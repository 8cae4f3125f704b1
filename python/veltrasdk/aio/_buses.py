# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The buses, awaited: each method is that of the same name, which is the reference."""

import asyncio
import time
from collections.abc import Iterable

from veltrasdk import ccc, gpio, i2c, i3c, spi, uart
from veltrasdk.aio._events import Events
from veltrasdk.aio._worker import Awaited, Worker, awaited
from veltrasdk.errors import DisconnectedError


class I2cBus(Awaited[i2c.I2cBus]):
    """See :class:`veltrasdk.I2cBus`."""

    configure = awaited(i2c.I2cBus.configure)
    set_pull_up = awaited(i2c.I2cBus.set_pull_up)
    scan = awaited(i2c.I2cBus.scan)
    scan_ten_bit = awaited(i2c.I2cBus.scan_ten_bit)
    read = awaited(i2c.I2cBus.read)
    write = awaited(i2c.I2cBus.write)
    transfer = awaited(i2c.I2cBus.transfer)


class SpiDevice(Awaited[spi.SpiDevice]):
    """See :class:`veltrasdk.SpiDevice`."""

    transfer = awaited(spi.SpiDevice.transfer)
    write = awaited(spi.SpiDevice.write)
    read = awaited(spi.SpiDevice.read)
    write_then_read = awaited(spi.SpiDevice.write_then_read)


class GpioPin(Awaited[gpio.GpioPin]):
    """See :class:`veltrasdk.GpioPin`."""

    configure = awaited(gpio.GpioPin.configure)
    read = awaited(gpio.GpioPin.read)
    write = awaited(gpio.GpioPin.write)
    arm = awaited(gpio.GpioPin.arm)
    disarm = awaited(gpio.GpioPin.disarm)

    @property
    def number(self) -> int:
        """Which pin it is."""
        return self._same.number


class Uart(Awaited[uart.Uart]):
    """See :class:`veltrasdk.Uart`. It is an asynchronous context manager that closes itself."""

    configure = awaited(uart.Uart.configure)
    write = awaited(uart.Uart.write)

    def __init__(self, worker: Worker, same: uart.Uart) -> None:
        super().__init__(worker, same)
        self._events = Events(same.events)
        self._received = uart.Received()
        self._turn = asyncio.Lock()

    async def __aenter__(self) -> "Uart":
        return self

    async def __aexit__(self, *_: object) -> None:
        self.close()

    async def read(self, length: int, timeout: float | None = 1.0) -> bytes:
        """Waits for received bytes; see :meth:`veltrasdk.Uart.read`."""
        wanted = uart.read_length(length)
        until = None if timeout is None else time.monotonic() + timeout
        try:
            async with asyncio.timeout(timeout):
                await self._turn.acquire()
        except TimeoutError:
            return b""
        try:
            await self._receive(wanted, until)
            return self._received.take(wanted)
        finally:
            self._turn.release()

    async def _receive(self, wanted: int, until: float | None) -> None:
        try:
            while len(self._received) < wanted:
                events = await self._events.wait(None if until is None else max(0.0, until - time.monotonic()))
                if not events:
                    return
                self._received.add(events)
        except DisconnectedError:
            if not self._received:
                raise

    @property
    def lost(self) -> int:
        """How many events of the adapter were lost so far."""
        return self._events.lost

    def close(self) -> None:
        """Keeps received bytes no longer."""
        self._events.close()


class TargetCcc(Awaited[ccc.TargetCcc]):
    """See :class:`veltrasdk.TargetCcc`."""

    getpid = awaited(ccc.TargetCcc.getpid)
    getbcr = awaited(ccc.TargetCcc.getbcr)
    getdcr = awaited(ccc.TargetCcc.getdcr)
    getmwl = awaited(ccc.TargetCcc.getmwl)
    getmrl = awaited(ccc.TargetCcc.getmrl)
    getcaps = awaited(ccc.TargetCcc.getcaps)
    getstatus = awaited(ccc.TargetCcc.getstatus)
    setmwl = awaited(ccc.TargetCcc.setmwl)
    setmrl = awaited(ccc.TargetCcc.setmrl)
    setnewda = awaited(ccc.TargetCcc.setnewda)
    enec = awaited(ccc.TargetCcc.enec)
    disec = awaited(ccc.TargetCcc.disec)
    rstact = awaited(ccc.TargetCcc.rstact)
    rstact_read = awaited(ccc.TargetCcc.rstact_read)
    get = awaited(ccc.TargetCcc.get)
    set = awaited(ccc.TargetCcc.set)


class BroadcastCcc(Awaited[ccc.BroadcastCcc]):
    """See :class:`veltrasdk.BroadcastCcc`."""

    rstdaa = awaited(ccc.BroadcastCcc.rstdaa)
    entdaa = awaited(ccc.BroadcastCcc.entdaa)
    setdasa = awaited(ccc.BroadcastCcc.setdasa)
    setaasa = awaited(ccc.BroadcastCcc.setaasa)
    enec = awaited(ccc.BroadcastCcc.enec)
    disec = awaited(ccc.BroadcastCcc.disec)
    setmwl = awaited(ccc.BroadcastCcc.setmwl)
    setmrl = awaited(ccc.BroadcastCcc.setmrl)
    rstact = awaited(ccc.BroadcastCcc.rstact)
    send = awaited(ccc.BroadcastCcc.send)


class I3cTarget(Awaited[i3c.I3cTarget]):
    """See :class:`veltrasdk.I3cTarget`, whose attributes it has."""

    read = awaited(i3c.I3cTarget.read)
    write = awaited(i3c.I3cTarget.write)
    hdr_read = awaited(i3c.I3cTarget.hdr_read)
    hdr_write = awaited(i3c.I3cTarget.hdr_write)
    configure = awaited(i3c.I3cTarget.configure)
    interrupts = awaited(i3c.I3cTarget.interrupts)

    def __init__(self, worker: Worker, same: i3c.I3cTarget) -> None:
        super().__init__(worker, same)
        self.dynamic_address = same.dynamic_address
        self.static_address = same.static_address
        self.pid = same.pid
        self.bcr = same.bcr
        self.dcr = same.dcr
        self.max_write = same.max_write
        self.max_read = same.max_read
        self.max_ibi_payload = same.max_ibi_payload
        self.configuration = same.configuration
        self.ccc = TargetCcc(worker, same.ccc)

    @property
    def is_legacy(self) -> bool:
        """Whether it is a legacy I2C device."""
        return self._same.is_legacy

    @property
    def address(self) -> int:
        """The address that reaches it."""
        return self._same.address


class I3cBus(Awaited[i3c.I3cBus]):
    """See :class:`veltrasdk.I3cBus`."""

    set_voltage = awaited(i3c.I3cBus.set_voltage)
    configure = awaited(i3c.I3cBus.configure)
    reset = awaited(i3c.I3cBus.reset)
    read = awaited(i3c.I3cBus.read)
    write = awaited(i3c.I3cBus.write)
    i2c_read = awaited(i3c.I3cBus.i2c_read)
    i2c_write = awaited(i3c.I3cBus.i2c_write)
    hdr_read = awaited(i3c.I3cBus.hdr_read)
    hdr_write = awaited(i3c.I3cBus.hdr_write)
    target_reset_pattern = awaited(i3c.I3cBus.target_reset_pattern)
    hdr_exit_pattern = awaited(i3c.I3cBus.hdr_exit_pattern)

    def __init__(self, worker: Worker, same: i3c.I3cBus) -> None:
        super().__init__(worker, same)
        self.ccc = BroadcastCcc(worker, same.ccc)

    async def init(self, records: Iterable[i3c.I3cRecord] = ()) -> list[I3cTarget]:
        """Brings the bus up; see :meth:`veltrasdk.I3cBus.init`."""
        found = await self._worker.run(lambda: self._same.init(records))
        return [I3cTarget(self._worker, target) for target in found]

    async def targets(self) -> list[I3cTarget]:
        """The devices in the controller's table, which is read anew each time."""
        found = await self._worker.run(lambda: self._same.targets)
        return [I3cTarget(self._worker, target) for target in found]
