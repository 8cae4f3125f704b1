#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Writes a file into an I2C EEPROM and verifies it: eeprom_programmer.py [FILE]

The EEPROM is a 24C02 at address 0x50: pages of 8 bytes, which must not be crossed by a write.
"""

import pathlib
import sys

import veltrasdk

ADDRESS, SIZE, PAGE = 0x50, 256, 8

image = pathlib.Path(sys.argv[-1]).read_bytes()[:SIZE]
with veltrasdk.Adapter(voltage=3.3) as adapter:
    # The controller waits the write cycles out, in which the EEPROM does not acknowledge.
    bus = adapter.i2c(0, pull_up="4k7", retry_busy=True)
    for start in range(0, len(image), PAGE):
        bus.write(ADDRESS, image[start : start + PAGE], register=start)
    if bus.read(ADDRESS, len(image), register=0) != image:
        sys.exit("the EEPROM does not hold what was written")
    print(f"{len(image)} bytes written and verified")
