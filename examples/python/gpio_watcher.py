#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Prints what happens on GPIO pins, as it happens: gpio_watcher.py [COUNT]

It ends after COUNT events, without one when it is interrupted.
"""

import itertools
import sys

import veltrasdk

WATCHED = (1, 3)

count = int(sys.argv[1]) if len(sys.argv) > 1 else None
with veltrasdk.Adapter(voltage=3.3) as adapter, adapter.events("gpio") as events:
    for pin in WATCHED:
        adapter.gpio(pin).configure("in-up", edge="both")
    print("watching", *WATCHED, flush=True)
    for event in itertools.islice(events, count):
        print(f"{event.time:.6f} pin {event.pin} is {adapter.gpio(event.pin).value}", flush=True)
