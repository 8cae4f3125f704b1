#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Scans I2C bus 0 and prints the contents of the EEPROM at address 0x50."""

import ctypes

from veltrasdk import Adapter, declare

BUS = 0
EEPROM_ADDRESS = 0x50
EEPROM_SIZE = 256
BYTES_PER_LINE = 16
SEND_ADDRESS_ONCE = 0
PULL_UPS_4700_OHM = 2

BYTE = ctypes.c_uint8
BYTES = ctypes.c_char_p

declare("I2cSetBusVoltage", ctypes.c_uint16, ctypes.c_bool)
declare("I2cControllerInit", BYTE, ctypes.c_uint32, BYTE)
declare("I2cSetPullUpResistors", BYTE, BYTE)
declare(
    "I2cScanBus",
    BYTES,
    BYTE,
    ctypes.POINTER(BYTE),
    ctypes.POINTER(BYTE),
    BYTE,
    ctypes.c_bool,
)
declare("I2cRead", BYTE, BYTE, BYTES, BYTE, ctypes.c_uint16, BYTES, ctypes.c_bool)


def set_up(adapter):
    adapter.call("I2cSetBusVoltage", 3300, True)
    adapter.call("I2cControllerInit", BUS, 400_000, SEND_ADDRESS_ONCE)
    adapter.call("I2cSetPullUpResistors", BUS, PULL_UPS_4700_OHM)


def scan(adapter):
    addresses = ctypes.create_string_buffer(255)
    seven_bit_count = BYTE()
    ten_bit_count = BYTE()
    counts = ctypes.byref(seven_bit_count), ctypes.byref(ten_bit_count)
    adapter.call("I2cScanBus", addresses, len(addresses), *counts, BUS, False)
    return addresses.raw[: seven_bit_count.value]


def read_eeprom(adapter):
    contents = ctypes.create_string_buffer(EEPROM_SIZE)
    first_byte = bytes([0x00])
    adapter.call(
        "I2cRead",
        BUS,
        EEPROM_ADDRESS,
        first_byte,
        len(first_byte),
        len(contents),
        contents,
        False,
    )
    return contents.raw


with Adapter() as adapter:
    set_up(adapter)
    print(f"Targets on bus {BUS}:", *(f"0x{address:02X}" for address in scan(adapter)))
    contents = read_eeprom(adapter)
    print(f"EEPROM at 0x{EEPROM_ADDRESS:02X}:")
    for start in range(0, EEPROM_SIZE, BYTES_PER_LINE):
        line = contents[start : start + BYTES_PER_LINE]
        text = "".join(chr(byte) if 0x20 <= byte < 0x7F else "." for byte in line)
        print(f"  {start:02X}:  {line.hex(' ').upper()}  {text}")
