# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The same adapter, awaited.

>>> import asyncio, veltrasdk.aio
>>> async def main():
...     async with veltrasdk.aio.Adapter(voltage=3.3) as adapter:
...         bus = await adapter.i2c(0, pull_up="4k7")
...         return await bus.read(0x50, 5, register=0)
>>> asyncio.run(main())
b'Hello'

Each method does what the method of that name does in :mod:`veltrasdk`, in one thread of the adapter's own.
Cancelling a task that waits for one leaves the adapter usable: what has begun is carried out to its end, and
what comes next waits for that. Events need no thread of the loop's: their descriptor is added to it.
"""

from veltrasdk.aio._adapter import Adapter
from veltrasdk.aio._buses import (
    BroadcastCcc,
    GpioPin,
    I2cBus,
    I3cBus,
    I3cTarget,
    SpiDevice,
    TargetCcc,
    Uart,
)
from veltrasdk.aio._events import Events

__all__ = [
    "Adapter",
    "BroadcastCcc",
    "Events",
    "GpioPin",
    "I2cBus",
    "I3cBus",
    "I3cTarget",
    "SpiDevice",
    "TargetCcc",
    "Uart",
]
