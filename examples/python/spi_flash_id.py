#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Reads the identification of the SPI flash on chip select 0."""

import sys

import veltrasdk

READ_IDENTIFICATION = b"\x9f"
UNDRIVEN = 0xFF

with veltrasdk.Adapter(voltage=3.3) as adapter:
    flash = adapter.spi(cs=0, mode=0, clock=1_000_000)
    manufacturer, kind, capacity = flash.write_then_read(READ_IDENTIFICATION, 3)
    if manufacturer == UNDRIVEN:
        sys.exit("There is no flash on chip select 0.")
    print(
        f"Manufacturer 0x{manufacturer:02X}, type 0x{kind:02X},"
        f" capacity 0x{capacity:02X}: {(1 << (capacity & 0x1F)) // 1024} KiB"
    )
