#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Sends a message over the UART, whose transmit line is wired to its receive line, and prints what
comes back.
"""

import sys

import veltrasdk

MESSAGE = (
    b"The quick brown fox jumps over the lazy dog, out of the adapter and"
    b" back into it."
)

with veltrasdk.Adapter(voltage=3.3) as adapter, adapter.uart(115_200) as uart:
    print("Sending: ", MESSAGE.decode())
    uart.write(MESSAGE)
    text = uart.read(len(MESSAGE), timeout=10)
    print("Received:", text.decode())
    if len(text) < len(MESSAGE):
        sys.exit(f"{len(MESSAGE) - len(text)} bytes did not come back.")
