#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Brings the I3C bus up, prints its targets, reads and writes one of them, and waits for what
targets send of their own accord: an in-band interrupt and a hot-join.

The bus, its table and its events are the same on every board; the registers are those of the
virtual adapter's targets.
"""

import ctypes
import sys

from veltrasdk import Adapter, declare

# Values of the enumerations in <veltrasdk/i3c.h> and <veltrasdk/notification.h>.
PUSH_PULL_8_MHZ = 2
OPEN_DRAIN_1_MHZ = 2
LEGACY_I2C_0_4_MHZ = 1
DRIVE_STRENGTH_8_MA = 2
NO_FLAGS = 0
NOTIFICATION_HOT_JOIN = 0
NOTIFICATION_IBI = 1

# Events of ENEC and DISEC.
EVENT_INTERRUPT = 0x01
EVENT_HOT_JOIN = 0x08

# Device characteristics registers.
TEMPERATURE_SENSOR = 0x63
MICROCONTROLLER = 0xC6
KINDS = {
    0x00: "generic device",
    0x41: "accelerometer",
    TEMPERATURE_SENSOR: "temperature sensor",
    MICROCONTROLLER: "microcontroller",
}

# Bits 0 to 5 of the bus characteristics register.
ABILITIES = (
    "limited speed",
    "in-band interrupts",
    "interrupt payload",
    "can be offline",
    "virtual targets",
    "advanced capabilities",
)

# The registers of the virtual adapter's temperature sensor and microcontroller.
REGISTER_TEMPERATURE = 0x00
REGISTER_ALERT = 0x02
REGISTER_SCRATCH = 0x04
REGISTER_MODULE_SUPPLY = 0x00


class TargetRecord(ctypes.Structure):
    """I3cTargetInfo: one target of the I3C bus."""

    _fields_ = [
        ("staticAddress", ctypes.c_uint8),
        ("dynamicAddress", ctypes.c_uint8),
        ("pid", ctypes.c_uint8 * 6),
        ("bcr", ctypes.c_uint8),
        ("dcr", ctypes.c_uint8),
        ("maxWriteLength", ctypes.c_uint16),
        ("maxReadLength", ctypes.c_uint16),
        ("maxIbiPayloadSize", ctypes.c_uint8),
        ("configuration", ctypes.c_uint8),
    ]


ADDRESS = COUNT = ctypes.c_uint8
LENGTH = ctypes.c_uint16
FLAGS = ctypes.c_uint32
BYTES = ctypes.c_char_p

declare("I3cSetBusVoltage", ctypes.c_uint16)
declare("I3cControllerInit", *[ctypes.c_uint32] * 4)
declare("I3cInitBus", ctypes.POINTER(TargetRecord), COUNT)
declare("I3cGetDeviceTable", ctypes.POINTER(TargetRecord), COUNT, ctypes.POINTER(COUNT))
declare("I3cSdrWrite", ADDRESS, BYTES, COUNT, BYTES, LENGTH, FLAGS)
declare("I3cSdrRead", ADDRESS, BYTES, COUNT, LENGTH, BYTES, ctypes.POINTER(LENGTH), FLAGS)
declare("I3cCccENECDirect", ADDRESS, ctypes.c_uint8)
declare("I3cCccENECBroadcast", ctypes.c_uint8)


def print_target(address, pid, bcr, dcr):
    number = int.from_bytes(pid, "big")
    role = "could be the controller" if bcr >> 6 == 1 else "target"
    abilities = [ability for bit, ability in enumerate(ABILITIES) if bcr >> bit & 1]
    print(f"  0x{address:02X}: {KINDS.get(dcr, 'device of another kind')} (DCR 0x{dcr:02X})")
    print(
        f"    PID {number:012X}: manufacturer 0x{number >> 33:04X},"
        f" part 0x{number >> 16 & 0xFFFF:04X}, instance {number >> 12 & 0xF}"
    )
    print(f"    BCR 0x{bcr:02X}: {', '.join([role] + abilities)}")


def bring_bus_up(adapter):
    """Returns the device table."""
    adapter.call("I3cSetBusVoltage", 1800)
    adapter.call(
        "I3cControllerInit",
        PUSH_PULL_8_MHZ,
        OPEN_DRAIN_1_MHZ,
        LEGACY_I2C_0_4_MHZ,
        DRIVE_STRENGTH_8_MA,
    )
    # Without records of its own the controller assigns addresses to all it finds.
    adapter.call("I3cInitBus", None, 0)
    table = (TargetRecord * 16)()
    count = ctypes.c_uint8()
    adapter.call("I3cGetDeviceTable", table, len(table), ctypes.byref(count))
    return table[: count.value]


def find(table, dcr):
    """The address of the first target of the kind."""
    for target in table:
        if target.dcr == dcr:
            return target.dynamicAddress
    sys.exit(f"There is no {KINDS[dcr]} on the bus.")


def read_registers(adapter, address, first, length):
    buffer = ctypes.create_string_buffer(length)
    count = ctypes.c_uint16()
    pointers = buffer, ctypes.byref(count)
    adapter.call("I3cSdrRead", address, bytes([first]), 1, length, *pointers, NO_FLAGS)
    return buffer.raw[: count.value]


def write_register(adapter, address, index, value):
    adapter.call("I3cSdrWrite", address, bytes([index]), 1, bytes([value]), 1, NO_FLAGS)


def use_sensor(adapter, address):
    temperature = read_registers(adapter, address, REGISTER_TEMPERATURE, 2)
    write_register(adapter, address, REGISTER_SCRATCH, 0x5A)
    scratch = read_registers(adapter, address, REGISTER_SCRATCH, 1)
    reading = int.from_bytes(temperature, "big", signed=True) / 256
    print(f"Temperature: {reading:.1f} degrees Celsius")
    print(f"Scratch register: wrote 0x5A, read 0x{scratch[0]:02X}")


def receive_interrupt(adapter, address):
    adapter.call("I3cCccENECDirect", address, EVENT_INTERRUPT)
    write_register(adapter, address, REGISTER_ALERT, 0x21)
    notification = adapter.wait_for(NOTIFICATION_IBI)
    if notification is None:
        sys.exit("No in-band interrupt came.")
    source, length = notification.frame[6:8]
    payload = notification.frame[8 : 8 + length]
    print(f"In-band interrupt from 0x{source:02X}: {payload.hex(' ').upper()}")


def receive_hot_join(adapter, supply_address):
    # The broadcast admits hot-joins; the microcontroller switches a module's supply on.
    adapter.call("I3cCccENECBroadcast", EVENT_HOT_JOIN)
    write_register(adapter, supply_address, REGISTER_MODULE_SUPPLY, 1)
    notification = adapter.wait_for(NOTIFICATION_HOT_JOIN)
    if notification is None:
        sys.exit("No target joined.")
    *pid, bcr, dcr, address = notification.frame[6:15]
    print("Joined the bus:")
    print_target(address, pid, bcr, dcr)


with Adapter() as adapter:
    table = bring_bus_up(adapter)
    print("Targets on the bus:")
    for target in table:
        print_target(target.dynamicAddress, target.pid, target.bcr, target.dcr)
    sensor = find(table, TEMPERATURE_SENSOR)
    use_sensor(adapter, sensor)
    receive_interrupt(adapter, sensor)
    receive_hot_join(adapter, find(table, MICROCONTROLLER))
