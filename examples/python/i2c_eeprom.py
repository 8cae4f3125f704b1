#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Scans I2C bus 0 and prints the contents of the EEPROM at address 0x50."""

import veltrasdk

BUS = 0
EEPROM = 0x50
SIZE = 256
BYTES_PER_LINE = 16

with veltrasdk.Adapter(voltage=3.3) as adapter:
    bus = adapter.i2c(BUS, clock=400_000, pull_up="4k7")
    print(f"Targets on bus {BUS}:", *(f"0x{address:02X}" for address in bus.scan()))
    contents = bus.read(EEPROM, SIZE, register=0)
    print(f"EEPROM at 0x{EEPROM:02X}:")
    for start in range(0, SIZE, BYTES_PER_LINE):
        line = contents[start : start + BYTES_PER_LINE]
        text = "".join(chr(byte) if 0x20 <= byte < 0x7F else "." for byte in line)
        print(f"  {start:02X}:  {line.hex(' ').upper()}  {text}")
