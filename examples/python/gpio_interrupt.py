#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Drives pin 0 high and low again, and receives the interrupts of pin 1, which is wired to it."""

import ctypes
import sys

from veltrasdk import Adapter, declare

# Values of the enumerations in <veltrasdk/gpio.h> and <veltrasdk/notification.h>.
INPUT, OUTPUT = 0, 1
LOW, HIGH = 0, 1
BOTH_EDGES = 2
NOTIFICATION_GPIO = 2

DRIVEN_PIN = 0
WATCHED_PIN = 1
NAMES = {LOW: "low", HIGH: "high"}

BYTE = ctypes.c_uint8

declare("GpioSetVoltage", ctypes.c_uint16, ctypes.c_bool)
declare("GpioConfigurePin", BYTE, BYTE, ctypes.c_bool, BYTE)
declare("GpioDigitalWrite", BYTE, BYTE)
declare("GpioDigitalRead", BYTE, ctypes.POINTER(BYTE))
declare("GpioConfigureInterrupt", BYTE, BYTE)
declare("GpioDisableInterrupt", BYTE)


def set_up(adapter):
    adapter.call("GpioSetVoltage", 3300, True)
    adapter.call("GpioConfigurePin", DRIVEN_PIN, OUTPUT, True, LOW)
    adapter.call("GpioConfigurePin", WATCHED_PIN, INPUT, False, LOW)
    adapter.call("GpioConfigureInterrupt", WATCHED_PIN, BOTH_EDGES)


def drive(adapter, level):
    print(f"Driving pin {DRIVEN_PIN} {NAMES[level]}")
    adapter.call("GpioDigitalWrite", DRIVEN_PIN, level)
    notification = adapter.wait_for(NOTIFICATION_GPIO)
    if notification is None:
        sys.exit("No interrupt came.")
    seen = BYTE()
    adapter.call("GpioDigitalRead", WATCHED_PIN, ctypes.byref(seen))
    pin = notification.frame[6]
    print(f"Interrupt of pin {pin}, which is {NAMES[seen.value]} now")


with Adapter() as adapter:
    set_up(adapter)
    drive(adapter, HIGH)
    drive(adapter, LOW)
    adapter.call("GpioDisableInterrupt", WATCHED_PIN)
