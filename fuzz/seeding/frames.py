# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What the seeds of several targets are made of: inputs as fuzz/Input.hpp takes them, frames."""

import struct


def run(data):
    """Bytes as Input::bytes takes them."""
    assert len(data) < 0xFF
    return bytes([len(data)]) + bytes(data)


def repeated(count, value):
    return struct.pack("<BHB", 0xFF, count, value)


def two_parts(first, second=b"\x00"):
    return run(first) + second


def packet(payload, first=True, last=True):
    return struct.pack("<H", first | last << 1 | len(payload) << 2) + bytes(payload)


def frame(text):
    return bytes.fromhex(text)


NOTIFICATIONS = {
    "hot-join": frame("0000 8219 0000 046A00000001 06C6 08"),
    "ibi": frame("0000 8119 0000 08 02 ABCD"),
    "gpio": frame("0000 8114 0000 01"),
    "uart": frame("0000 8110 0000 0300 414243"),
    "unknown": frame("0000 FF7F 0000"),
}

# One request of every layout; together they bring every bus into operation.
REQUESTS = [frame("0100" + text) for text in """
    0704 03
    0504 E40C 01
    0208 00 02
    0109 00 A0860100 00
    0209 00 A0860100 01
    0409 00 0200 51 02 40 01000000 CAFE
    0509 00 0400 51 02 40 01000000
    0609 00 01
    010D 00 00 08 00 00 40420F00
    020D 00 03 08 00 00 40420F00
    040D 0400 0800 03000000
    0210 07 00 00 08 01
    0310 07 00 00 08 01
    0510 0200 4142
    0114 00 00
    0114 01 01 01
    0414 00 02
    0214 01 00
    0314 00
    0514 00
    0404 E40C
    0119 00 00 00 00
    0219 00 00 00 00
    0419 00
    0519
    0419 00
    0619
    0719 08 00
    0819 09 00 00 02 10000000 0200 CAFE
    0819 09 01 00 02 10000000 0200
    0919 7E 00 02 09 00 0040
    0919 08 01 06 8D 00
    0A19 00
    0204
""".strip().splitlines()]
