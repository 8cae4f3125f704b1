#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Drives pin 0 high and low again, and receives the interrupts of pin 1, which is wired to it."""

import veltrasdk

NAMES = ("low", "high")

with veltrasdk.Adapter(voltage=3.3) as adapter, adapter.events("gpio") as events:
    driven, watched = adapter.gpio(0), adapter.gpio(1)
    driven.configure("out", value=0)
    watched.configure("in", edge="both")
    for level in (1, 0):
        print(f"Driving pin {driven.number} {NAMES[level]}")
        driven.value = level
        for event in events.wait(timeout=10):
            print(f"Interrupt of pin {event.pin}, which is {NAMES[watched.value]} now")
    watched.disarm()
