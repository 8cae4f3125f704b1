# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Seeds of the targets that drive the library."""

import struct

from seeding.frames import NOTIFICATIONS, frame, packet, repeated, run, two_parts


def packet_joining():
    whole = packet(b"\x01\x00\x01\x09\x00\x00")
    first = packet(b"A" * 62, last=False)
    last = packet(b"B" * 10, first=False)
    yield "whole", b"\x00" + two_parts(whole)
    yield "two-packets", b"\x00" + two_parts(first) + two_parts(last)
    yield "high-speed", b"\x01" + two_parts(frame("F90F"), repeated(1022, 0x43)) + two_parts(last)
    yield "over-long", b"\x00" + two_parts(frame("FF0F4142"))
    yield "no-header", b"\x00" + two_parts(b"\x03") + two_parts(b"")
    yield "never-first", b"\x01" + two_parts(frame("F80F"), repeated(1022, 0x44)) * 6


def operations():
    answers = {
        "plain": b"\x05" + two_parts(b"\x00\x00") + b"\x00",
        "refused": b"\x05" + two_parts(b"\x03\x00") + b"\x00",
        "full": b"\x05" + two_parts(frame("0000 0201 0200 0302 04 05 06 07 08"),
                                    repeated(400, 0x55)) + b"\x00",
        "over-long": b"\x05" + two_parts(frame("0000 FFFF FFFF FFFF FFFF"), run(b"ab")) + b"\x00",
        "short": b"\x02" + two_parts(frame("0100010900")) + b"\x00",
        "notified": b"".join(b"\x02" + two_parts(each) for each in NOTIFICATIONS.values()) +
                    b"\x05" + two_parts(b"\x00\x00") + b"\x00",
        "unplugged": b"\x04\x03\x03\x00",
        "raw": b"\x01" + run(frame("03000100")) + b"\x01" + run(frame("FF0F")) + b"\x00",
    }
    # Zeros do as arguments: every operation sends its request.
    def called(number, answer):
        return run(answer) + bytes([number]) + bytes(12)

    kinds = list(answers.items())
    for number in range(64):
        for interface in range(2):
            for offset in (0, 2):
                name, answer = kinds[(number + offset) % len(kinds)]
                lists = answer * (5 if len(answer) < 50 else 1)
                yield f"operation-{interface}-{number}-{name}", (
                    bytes([number & 1, interface]) + called(number, lists))
    for name, answer in kinds:
        for interface in range(2):
            yield f"answer-{name}-{interface}", bytes([0, interface]) + b"".join(
                called(number, answer) for number in range(3, 60))


# Behaviours of fuzz/UnreliableAdapter.hpp, in their order; each byte's high half says how.
BEHAVIOURS = ("plain late lost doubled foreign wrong-command malformed cut too-short refused read-error "
              "write-and-read-error stall notified interrupted").split()


def strict_mode():
    def settings(model=0, in_c=0, timeout=1, overlap=1, threads=1):
        return bytes([model | in_c << 1 | timeout << 2 | overlap - 1 << 4 | threads - 1 << 6])

    # Threads 0 to 3 in turn: a small read, a pin, a message, strings; then long ones.
    each = bytes(thread | kind << 2 | size << 4
                 for size in (0, 15) for kind in range(4) for thread in range(4))
    for number, name in enumerate(BEHAVIOURS):
        for how in (0, 1, 2, 9):
            behaviours = bytes([0, how << 4 | number, 0, 0] * 6)
            for index, in_c in enumerate((0, 1)):
                yield f"{name}-{how}-{index}", settings(
                    model=how & 1, in_c=in_c, timeout=2, overlap=1 + (how + in_c) % 4, threads=4
                ) + run(behaviours) + each
        yield f"{name}-without-limit", settings(timeout=3, overlap=2, threads=3) + run(
            bytes([0, number, number | 0x90, 0] * 6)) + each
        yield f"{name}-without-waiting", settings(model=1, timeout=0, overlap=4, threads=2) + run(
            bytes([number, number | 0x30] * 8)) + each
    yield "alone", settings() + run(b"") + each
    yield "everything", settings(timeout=2, overlap=4, threads=4) + run(
        bytes(range(15)) + bytes(number | 0x50 for number in range(15))) + each + each


def notifications():
    for kind, (name, content) in enumerate(NOTIFICATIONS.items()):
        yield name, struct.pack("<I", kind) + two_parts(content)
        for size in range(5, len(content)):
            yield f"{name}-{size}", struct.pack("<I", kind) + two_parts(content[:size])
    for size in (255, 256, 257):
        yield f"uart-{size}", struct.pack("<I", 3) + two_parts(
            frame("0000 8110 0000 FFFF"), repeated(size - 8, 0x55))
        # Taken from a queue with room for one byte less, and for more.
        for capacity in (size - 1, 2 * size):
            yield f"uart-{size}-into-{capacity}", struct.pack("<I", 3) + two_parts(
                frame("0000 8110 0000 FFFF"), repeated(size - 8, 0x55)) + struct.pack("<H", capacity)
