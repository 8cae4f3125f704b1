#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Brings the I3C bus up, prints its targets, reads and writes one of them, and waits for what
targets send of their own accord: an in-band interrupt and a hot-join.

The bus, its table and its events are the same on every board; the registers are those of the
virtual adapter's targets.
"""

import veltrasdk
from veltrasdk import I3cPushPullRate

EVENT_HOT_JOIN = 0x08  # of ENEC and DISEC

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


def print_target(address, pid, bcr, dcr):
    role = "could be the controller" if bcr >> 6 == 1 else "target"
    abilities = [ability for bit, ability in enumerate(ABILITIES) if bcr >> bit & 1]
    print(f"  0x{address:02X}: {KINDS.get(dcr, 'device of another kind')} (DCR 0x{dcr:02X})")
    print(
        f"    PID {pid:012X}: manufacturer 0x{pid >> 33:04X},"
        f" part 0x{pid >> 16 & 0xFFFF:04X}, instance {pid >> 12 & 0xF}"
    )
    print(f"    BCR 0x{bcr:02X}: {', '.join([role] + abilities)}")


def use_sensor(sensor):
    temperature = sensor.read(2, register=REGISTER_TEMPERATURE)
    sensor.write(b"\x5a", register=REGISTER_SCRATCH)
    scratch = sensor.read(1, register=REGISTER_SCRATCH)
    reading = int.from_bytes(temperature, "big", signed=True) / 256
    print(f"Temperature: {reading:.1f} degrees Celsius")
    print(f"Scratch register: wrote 0x5A, read 0x{scratch[0]:02X}")


def receive_interrupt(adapter, sensor):
    sensor.interrupts(True)
    with adapter.events("ibi") as events:
        sensor.write(b"\x21", register=REGISTER_ALERT)
        for event in events.wait(timeout=10):
            print(f"In-band interrupt from 0x{event.address:02X}: {event.payload.hex(' ').upper()}")


def receive_hot_join(adapter, i3c, microcontroller):
    # The broadcast admits hot-joins; the microcontroller switches a module's supply on.
    i3c.ccc.enec(EVENT_HOT_JOIN)
    with adapter.events("hotjoin") as events:
        microcontroller.write(b"\x01", register=REGISTER_MODULE_SUPPLY)
        for event in events.wait(timeout=10):
            print("Joined the bus:")
            print_target(event.address, event.pid, event.bcr, event.dcr)


with veltrasdk.Adapter() as adapter:
    i3c = adapter.i3c(voltage=1.8, push_pull=I3cPushPullRate.RATE_8_MHZ)
    # Without records of its own the controller assigns addresses to all it finds.
    targets = i3c.init()
    print("Targets on the bus:")
    for target in targets:
        print_target(target.dynamic_address, target.pid, target.bcr, target.dcr)
    by_kind = {target.dcr: target for target in targets}
    use_sensor(by_kind[TEMPERATURE_SENSOR])
    receive_interrupt(adapter, by_kind[TEMPERATURE_SENSOR])
    receive_hot_join(adapter, i3c, by_kind[MICROCONTROLLER])
