# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Drives a USB host adapter for I3C, I2C, SPI, UART and GPIO.

>>> import veltrasdk
>>> with veltrasdk.Adapter(voltage=3.3) as adapter:
...     bus = adapter.i2c(0, clock=400_000, pull_up="4k7")
...     print([hex(address) for address in bus.scan()])
...     print(bus.read(0x50, 5, register=0))
['0x48', '0x50', '0x51']
b'Hello'

The library is loaded when it is first needed; an :class:`ImportError` then says what to install.
"""

from veltrasdk._discovery import AdapterInfo, adapters
from veltrasdk._native import (
    CCC,
    VERSION,
    GpioFunctionality,
    GpioLogicLevel,
    GpioTriggerType,
    I2cTransferRate,
    I3cDriveStrength,
    I3cOpenDrainTransferRate,
    I3cPushPullRate,
    I3cTargetConfiguration,
    I3cTargetResetDefByte,
    I3cTransferFlags,
    ResultCode,
    VeltraStatus,
)
from veltrasdk.adapter import Adapter
from veltrasdk.ccc import BroadcastCcc, MaxReadLength, TargetCcc
from veltrasdk.errors import (
    ArgumentError,
    DisconnectedError,
    ForkedError,
    NackError,
    NoResponseError,
    NotFoundError,
    StatusError,
    VeltraError,
)
from veltrasdk.events import Event, EventKind, Events, Subscription
from veltrasdk.gpio import GpioPin
from veltrasdk.i2c import I2cBus, Read, Write
from veltrasdk.i3c import I3cBus, I3cRecord, I3cTarget
from veltrasdk.spi import SpiDevice
from veltrasdk.uart import Uart
from veltrasdk._library import version as library_version

__version__ = VERSION

__all__ = [
    "CCC",
    "Adapter",
    "AdapterInfo",
    "ArgumentError",
    "BroadcastCcc",
    "DisconnectedError",
    "Event",
    "EventKind",
    "Events",
    "ForkedError",
    "GpioFunctionality",
    "GpioLogicLevel",
    "GpioPin",
    "GpioTriggerType",
    "I2cBus",
    "I2cTransferRate",
    "I3cBus",
    "I3cDriveStrength",
    "I3cOpenDrainTransferRate",
    "I3cPushPullRate",
    "I3cRecord",
    "I3cTarget",
    "I3cTargetConfiguration",
    "I3cTargetResetDefByte",
    "I3cTransferFlags",
    "MaxReadLength",
    "NackError",
    "NoResponseError",
    "NotFoundError",
    "Read",
    "ResultCode",
    "SpiDevice",
    "StatusError",
    "Subscription",
    "TargetCcc",
    "Uart",
    "VeltraError",
    "VeltraStatus",
    "Write",
    "adapters",
    "library_version",
]
