#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Reads the identification of the SPI flash on chip select 0."""

import ctypes
import sys

from veltrasdk import Adapter, declare

# Values of the enumerations in <veltrasdk/spi.h>.
MSB_FIRST = 0
MODE_0 = 0
WIDTH_8_BITS = 8
CHIP_SELECT_0 = 0
ACTIVE_LOW = 0

READ_IDENTIFICATION = bytes([0x9F])
UNDRIVEN = 0xFF

LENGTH = ctypes.c_uint16
BYTES = ctypes.c_char_p

declare("SpiSetBusVoltage", ctypes.c_uint16, ctypes.c_bool)
declare("SpiControllerInit", *[ctypes.c_uint8] * 5, ctypes.c_uint32)
declare("SpiTransfer", BYTES, LENGTH, BYTES, LENGTH)


def set_up(adapter):
    adapter.call("SpiSetBusVoltage", 3300, True)
    modes = MSB_FIRST, MODE_0, WIDTH_8_BITS, CHIP_SELECT_0, ACTIVE_LOW
    adapter.call("SpiControllerInit", *modes, 1_000_000)


def transfer(adapter, send, length):
    received = ctypes.create_string_buffer(length)
    adapter.call("SpiTransfer", send, len(send), received, length)
    return received.raw


with Adapter() as adapter:
    set_up(adapter)
    # The first byte comes in while the command goes out, and means nothing.
    _, manufacturer, kind, capacity = transfer(adapter, READ_IDENTIFICATION, 4)
    if manufacturer == UNDRIVEN:
        sys.exit("There is no flash on chip select 0.")
    print(
        f"Manufacturer 0x{manufacturer:02X}, type 0x{kind:02X},"
        f" capacity 0x{capacity:02X}: {(1 << (capacity & 0x1F)) // 1024} KiB"
    )
