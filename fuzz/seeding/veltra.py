# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Seeds of the ways into veltra: its words, and the protocols that it speaks with other people's programs."""

import struct

from seeding.frames import frame, repeated, run, two_parts


def veltra_words():
    """One word or line of each kind, under the number of its reader; and a flash's tables."""
    for kind, name, text in (
        (0, "number", "0b101"), (0, "octal", "010"), (1, "bytes", "1\n0xff\nhex:00ff\nstr:text"),
        (2, "descriptors", "w3@0x50\n0x10\n0xff+\nr5"), (3, "line", "set A='b c' \"$A\" ${A} # all"),
        (4, "expectation", "01 ?? 04"), (5, "record", "static=0x48,dynamic=9,pid=0461000000aa,ibi=reject,legacy"),
        (6, "code", "setmrl\nall\n64\n8"), (0, "clock", "12.5M"), (0, "voltage", "3.3"),
    ):
        yield name, bytes([kind]) + text.encode()
    basic = bytes.fromhex("E52080FF FFFF1F00 00000000 00000000 EEFFFFFF FFFF0000 FFFF0000 0C200000 00000000")
    yield "tables", b"\x07SFDP" + bytes.fromhex("000100FF 00000109 100000FF") + basic


def serprog():
    """Whole sessions of flashrom, and what it never says; the pieces are of one byte and of many."""
    def operation(sent, count):
        return struct.pack("<BI", 0x13, len(sent))[:4] + struct.pack("<I", count)[:3] + sent

    greeting = frame("0000000000000000 10 10 01 02 05 1208 08 11 1400127A00 1208 03 04 1501")
    probing = operation(b"\x9f", 3) + operation(frame("5A000000"), 3) + operation(b"\x05", 1)
    writing = operation(b"\x06", 0) + operation(frame("02000000") + bytes(64), 0) + operation(b"\x05", 1)
    sessions = {
        "greeting": greeting, "probing": greeting + probing, "writing": greeting + writing + frame("1500"),
        "not-offered": frame("06 09000000 0A000000020000 0B 0C00000055 0D02000000000041420E00000000 0F 1700 1800 FF 10"),
        "chip-selects": frame("1600 1601 1604") + probing, "clocks": frame("1400000000 1401000000 1402000000"),
        "nothing": operation(b"", 0) + b"\x10", "too-much": operation(b"\x03", 0xFFFF) + b"\x10",
        "cut": greeting + probing[:9],
    }
    for name, words in sessions.items():
        for refused, piece in ((0, 0), (1, 2), (2, 254)):
            yield f"{name}-{refused}", bytes([refused, piece]) + run(words)
    yield "longest-read", b"\x00\x00" + run(operation(frame("03000000"), 0x8000))
    yield "longest-write", b"\x00\xff" + run(frame("13058000000000")) + repeated(0x8005, 0x10) + run(b"\x10")
    yield "too-long", b"\x00\xff" + run(frame("13068000000000")) + repeated(0x8006, 0x10) + run(b"\x10")
    yield "for-ever", b"\x00\xff" + run(frame("0DFFFFFF000000")) + repeated(0xFFFF, 0x10)


def tiny_usb():
    """Control transfers of Linux's driver; behind each write or read its fate is the next transfer's first byte."""
    def control(setup, data=b"", fate=0):
        return bytes([fate]) + frame(setup) + run(data)

    # Read as fates, the endpoint's byte 0 is success; the fuzzer finds the others.
    asked = "8006000100001200 80060002000012FF 8006000300000FF0 8006020300000FF0 0009010000000000".split()
    yield "enumeration", b"".join(control(each) for each in asked)
    yield "functions", control("C101000000000400") + control("C100341200000200") + control("4102 0A00 0000 0000")
    write = control("4107000050000300", b"\x10\x01\x02")
    read = control("4105000050000100", b"\x10") + control("C103000000000100") + control("C106010050001000")
    for fate in range(3):
        yield f"write-{fate}", write + bytes([fate]) + control("C103000000000100")
        yield f"read-{fate}", read + bytes([fate]) + control("C103000000000100")
        yield f"long-{fate}", control("4105000050000500", bytes(5)) + bytes([0]) + control("C106010050000100") + bytes(
            [fate]) + control("C103000000000100")
        yield f"middle-{fate}", control("4105000050000100", b"\x10") + control(
            "4104000050000100", b"\x11") + bytes([0, fate]) + control("4106000051000100", b"\x12")
    for name, setup in {"ten-bits": "4107100050000000", "block-read": "C107010450000100", "no-address": "4107000080000000",
                        "nothing": "C107010050000000", "class": "A101000000000100"}.items():
        yield name, control(setup)


def devices():
    """Requests of programs to the two devices that are there, open under the identifiers 0 and 1."""
    def request(kind, device, content):
        return run(bytes([kind, device]) + bytes(15) + content)

    def control(device, number, content=b""):
        return request(3, device, struct.pack("<I", number) + content)

    def transfer(length, sent=b"", receives=0, speed=0, bits=0, change=0, delay=0):
        return struct.pack("<IIHBBBBBB", length, speed, delay, bits, change, 0, 0, 0, bool(sent) | receives << 1) + sent

    opened = request(1, 0, b"\x02i2c-0") + request(1, 1, b"\x02spidev0.0")
    message = struct.pack("<HHH", 0x50, 0, 1) + b"\x00" + struct.pack("<HHH", 0x50, 1, 4)
    smbus = [(0, 0, 0, 0), (1, 0, 1, 1), (0, 7, 1, 0), (1, 7, 2, 1), (0, 7, 3, 2), (1, 7, 4, 2), (0, 7, 5, 34), (1, 7, 6, 34),
             (0, 7, 7, 34), (1, 7, 8, 34), (0, 7, 8, 34), (1, 7, 9, 34)]
    yield "open", opened + request(1, 0, b"\x02i2c-0") + request(1, 2, b"\x02i2c-9") + request(2, 0, b"spidev0.0")
    yield "messages", opened + control(0, 0x0707, struct.pack("<I", 2) + message)
    yield "messages-cut", opened + control(0, 0x0707, struct.pack("<I", 42) + message) + control(0, 0x0707)
    yield "smbus", opened + b"".join(control(0, 0x0720, struct.pack("<BBI", *words) + b"\x02" * size) for *words, size in smbus)
    yield "numbers", opened + b"".join(control(0, 0x0700 + number, struct.pack("<I", 0x50)) for number in range(9))
    yield "settings", opened + b"".join(
        control(1, direction | number, struct.pack("<I", 8))
        for number in (0x016B01, 0x016B02, 0x016B03, 0x046B04, 0x046B05) for direction in (0x40000000, 0x80000000))
    yield "spi", opened + control(1, 0x40406B00, transfer(1, b"\x9f") + transfer(3, receives=1))
    yield "spi-two", opened + control(1, 0x40406B00, transfer(2, b"ab", 1, 100000, 16, 1, 3) + transfer(2, b"cd", 1, 0, 8))
    yield "spi-large", opened + control(1, 0x40206B00, transfer(0xFFFF, receives=1)) + control(1, 0x40206B00, transfer(0x10000))
    yield "streams", opened + request(4, 0, struct.pack("<I", 9000)) + request(5, 0, b"abc") + request(4, 1, b"\2\0\0\0") + request(
        5, 1, b"abc")
    yield "nonsense", opened + request(9, 0, b"") + run(b"\x03") + request(4, 7, b"") + request(4, 0, b"\0")


def device_answers():
    """Answers to the functions in programs, in pieces of up to a size, and what those are called with."""
    def answered(call, result, data=b"", arguments=b"", piece=255):
        return bytes([call, piece, 1]) + struct.pack("<i", result) + two_parts(data) + arguments

    def message(flags, length):
        return struct.pack("<BHH", 0x50, flags, length)

    def transfer(directions, length):
        return struct.pack("<BH", directions, length)

    reads, writes = b"\x03\x00\x01", b"\x03\x00\x00"
    yield "read", answered(0, 3, b"abc", reads)
    yield "read-in-pieces", answered(0, 3, b"abc", reads, piece=0)
    yield "read-too-much", answered(0, 9, b"abcdefghi", reads)
    yield "read-cut", answered(0, 3, b"a", reads)
    yield "write", answered(0, 3, b"", writes)
    yield "write-too-much", answered(0, 9, b"", writes)
    yield "messages", answered(1, 2, b"abcd", b"\x02" + message(0, 1) + message(1, 4))
    yield "messages-cut", answered(1, 2, b"abc", b"\x02" + message(0, 1) + message(1, 4))
    yield "messages-too-many", answered(1, 99, b"abcd", b"\x01" + message(1, 4))
    yield "messages-long", bytes([1, 255, 1]) + struct.pack("<i", 1) + repeated(8192, 7) + b"\x00\x01" + message(1, 8192)
    yield "messages-43", answered(1, 43, b"", b"\x2b")
    for size in range(10):
        yield f"smbus-{size}", answered(2, 0, bytes(34 if size > 4 else size), bytes([1, 7, size, 0]))
        yield f"smbus-{size}-too-much", answered(2, 0, bytes(35), bytes([1, 7, size, 0]))
    yield "smbus-nowhere", answered(2, 0, b"a", bytes([1, 7, 2, 1]))
    yield "spi", answered(3, 4, b"abc", b"\x02" + transfer(1, 1) + transfer(2, 3))
    yield "spi-cut", answered(3, 4, b"ab", b"\x02" + transfer(3, 1) + transfer(2, 3))
    for number in range(10):
        yield f"number-{number}", answered(4, 0, b"\x08\x07\x06\x05", bytes([number]))
    yield "number-cut", answered(4, 0, b"\x08", b"\x08")
    yield "open", answered(5, 0)
    yield "open-strangely", answered(5, 7)
    yield "error", answered(0, -6, b"", reads)
    yield "error-unknown", answered(0, -70000, b"", reads)
    yield "error-lowest", answered(0, -(1 << 31), b"", reads)
    yield "silence", bytes(3) + two_parts(b"") + reads
    yield "head-cut", bytes([0, 255, 0]) + two_parts(b"\4\0\0\0\0\0") + reads
    yield "size-small", bytes([0, 255, 0]) + two_parts(b"\3\0\0\0\0\0\0\0") + reads
    yield "size-huge", bytes([0, 255, 0]) + two_parts(b"\xff\xff\xff\xff\0\0\0\0") + reads
