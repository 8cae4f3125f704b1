#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Writes the seeds of every fuzz target, made from literal frames: seeds.py DIRECTORY

The committed corpora are these seeds, under their names, and what the fuzzers found beyond them.
"""

import pathlib
import struct
import sys


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


def virtual_adapter():
    every = b"".join(b"\x03" + two_parts(each) for each in REQUESTS[:-1])
    for model in range(2):
        # No faults, without and with latency.
        yield f"every-request-{model}", bytes([model, 0, 0]) + every + b"\x02"
        yield f"slow-{model}", bytes([model, 0, 1]) + every + b"\x02\x01\xff\x02"
        yield f"boot-mode-{model}", bytes([model, 0, 0]) + (b"\x03" + two_parts(REQUESTS[-1])) * 2
    said = b"\x03" + two_parts(REQUESTS[1]) + (b"\x03" + two_parts(REQUESTS[0])) * 3 + b"\x02\x01\xff\x02"
    for fault in range(16):
        # At the third request; at the second one that asks for a string.
        yield f"fault-{fault}", bytes([0, 1, fault, 2, 0xFF, 0]) + said
        yield f"aimed-{fault}", bytes([1, 1, fault, 1, 3, 0]) + said
        yield f"two-{fault}", bytes([0, 2, fault, 1, 0xFF, 0, 3, 0xFF, 0]) + said
    setup = b"\x03" + two_parts(REQUESTS[1])
    for number, each in enumerate(REQUESTS):
        yield f"request-{number}", b"\x00\x00\x00" + setup + b"\x03" + two_parts(each)
        yield f"report-{number}", b"\x00\x00\x00" + setup + b"\x00" + two_parts(packet(each))
    yield "longest-read", b"\x00\x00\x00" + setup + b"".join(
        b"\x03" + two_parts(each) for each in (
            REQUESTS[3], frame("0100 0509 00 FFFF 51 02 00 00000000")))
    yield "long-message", b"\x01\x00\x00" + setup + b"\x03" + two_parts(REQUESTS[11]) + (
        b"\x03" + two_parts(frame("0100 0510 FFFF"), repeated(0xFFFF, 0x41)))


STIMULI = """
gpio drive 4 1
gpio drive 4 release
i2c 0 0x48 set temperature 85.5
i2c 0 0x50 set write_protected true
i2c 0 0x50 nack address 2
i2c 0 0x50 nack data:3
i3c fffe00301000 interrupt 0a1b
i3c 0x08 interrupt
i3c 0x0A leave
i3c fffe00401000 join
uart receive 1 0x02 hex:0304 str:a b
fault lost-response@i2c-read:2
fault stuck-bus@4
fault none
reset
unplug
plug
gpio drive 9 1
""".strip().splitlines()


def stimuli():
    started = b"".join(b"\x00" + two_parts(packet(each)) for each in REQUESTS[:-1])
    for number, line in enumerate(STIMULI):
        told = b"\x01" + run(line.encode())
        yield f"told-{number}", b"\x00" + started + told + b"\x00" + two_parts(packet(REQUESTS[6]))
        yield f"first-{number}", b"\x00" + told + started
        yield f"scheduled-{number}", b"\x01\x05" + run(line.encode()) + started
    for number, fault in enumerate(("stall", "unplug@2", "late-response@i2c-read",
                                    "lost-response@i3c-ccc-transfer:12", "lost-reports", "stall@x")):
        yield f"fault-{number}", b"\x01\x00" + run(fault.encode()) + started
    yield "every-line", b"\x00" + started + b"".join(b"\x01" + run(each.encode()) for each in STIMULI)


LIST = frame("0111 8005 00000000")
IMPORT = frame("0111 8003 00000000") + b"1-1".ljust(32, b"\0")


def submit(sequence, endpoint, to_host, length, setup="0000000000000000", data=b""):
    return struct.pack(">IIIIIIIIII", 1, sequence, 0x10002, to_host, endpoint, 0, length, 0, 0,
                       0) + frame(setup) + data


def unlink(sequence, unlinked):
    return struct.pack(">IIIIII", 2, sequence, 0x10002, 0, 0, unlinked) + bytes(24)


def usbip():
    def sent(*messages, host=0):
        return b"".join(bytes([0x10 | host]) + two_parts(message) for message in messages)

    configure = submit(1, 0, 0, 0, "0009010000000000")
    write = submit(3, 1, 0, 64, data=packet(REQUESTS[0]).ljust(64, b"\0"))
    read = submit(4, 1, 1, 64)
    descriptors = [submit(2, 0, 1, 255, setup) for setup in (
        "8006000100001200", "800600020000FF00", "800600030000FF00", "800603030904FF00",
        "8006000600000A00", "800600070000FF00", "810600220000FF00", "810600210000FF00",
        "8000000000000200", "8200000081000200", "8008000000000100", "810A000000000100",
        "A101000100004000", "A102000000000100")]
    controls = [submit(2, 0, 0, 0, setup) for setup in (
        "0203000081000000", "0201000081000000", "010B000000000000", "210A000000000000")]
    set_report = submit(5, 0, 0, 64, "2109000200004000", packet(REQUESTS[0]).ljust(64, b"\0"))
    for model in range(2):
        port = bytes([model, 0, 0])
        yield f"list-{model}", port + sent(LIST)
        yield f"import-{model}", port + sent(IMPORT)
        yield f"talk-{model}", port + sent(IMPORT, configure, read, write, read) + b"\x00"
        yield f"descriptors-{model}", port + sent(IMPORT, *descriptors)
        yield f"controls-{model}", port + sent(IMPORT, configure, *controls, set_report, read)
    yield "plugged-in", b"\x00\x00\x01" + sent(configure, read, unlink(9, 4), unlink(10, 4), write)
    yield "busy", b"\x00\x00\x00" + sent(IMPORT) + sent(IMPORT, host=1) + b"\x04" + sent(IMPORT, host=1)
    yield "pieces", b"\x00\x00\x00" + sent(IMPORT[:7], IMPORT[7:30], IMPORT[30:], configure[:20])
    yield "late", b"\x00\x01\x01" + sent(configure, write, write, write, read, read, read) + b"\x02\xff"
    for fault in range(16):
        yield f"fault-{fault}", bytes([0, fault, 1]) + sent(configure, *[read, write] * 4) + b"\x02\xff"
    yield "malformed", b"\x00\x00\x01" + sent(struct.pack(">I", 7) + bytes(44))
    yield "too-long", b"\x00\x00\x01" + sent(submit(1, 1, 0, 0x10001))


def capture():
    """Small captures: sections of both byte orders, every link type, every unit of time."""
    def block(order, kind, body):
        body += bytes(-len(body) % 4)
        size = struct.pack(order + "I", 12 + len(body))
        return struct.pack(order + "I", kind) + size + body + size

    def option(order, code, value):
        return struct.pack(order + "HH", code, len(value)) + value + bytes(-len(value) % 4)

    def section(order, options=b""):
        return block(order, 0x0A0D0D0A, struct.pack(order + "IHHq", 0x1A2B3C4D, 1, 0, -1) + options)

    def interface(order, link_type=220, options=b""):
        return block(order, 1, struct.pack(order + "HHI", link_type, 0, 0) + options)

    def usb(order, event, endpoint, data, padded=True, setup=bytes(8)):
        flag = 0 if data else ord("<" if endpoint & 0x80 else ">")
        return struct.pack(order + "QBBBBHBBqiiII", 7, ord(event), 1, endpoint, 2, 3, ord("-"), flag, 4, 5, 0,
                           len(data), len(data)) + setup + (bytes(16) if padded else b"") + data

    def record(order, content, number=0, captured=None):
        length = len(content) if captured is None else captured
        return block(order, 6, struct.pack(order + "IIIII", number, 1, 2, length, length) + content)

    def records(order, padded=True):
        request = packet(REQUESTS[0]).ljust(64, b"\0")
        return b"".join(record(order, usb(order, *each, padded)) for each in (
            ("S", 0x81, b""), ("S", 0x01, request), ("C", 0x01, b""), ("C", 0x81, request)))

    for name, order in (("little", "<"), ("big", ">")):
        yield f"{name}-endian", section(order) + interface(order) + records(order)
        yield f"{name}-endian-short-header", section(order) + interface(order, 189) + records(order, False)
        yield f"{name}-endian-other-link", section(order) + interface(order, 1) + record(order, b"abc")
        yield f"{name}-endian-nothing", section(order, option(order, 4, b"veltra") + option(order, 0, b""))
        for resolution in (0, 3, 6, 9, 12, 127, 128, 158, 255):
            yield f"{name}-endian-resolution-{resolution}", section(order) + interface(
                order, 220, option(order, 9, bytes([resolution])) + option(order, 14, bytes(range(8)))
            ) + records(order)
    mixed = b"".join(section(order) + interface(order) + records(order) for order in "<><")
    yield "sections", mixed
    yield "cut", mixed[:-30]
    yield "no-interface", section("<") + records("<")
    yield "too-short", section("<") + interface("<") + record("<", bytes(20))
    yield "too-long", section("<") + interface("<") + record("<", bytes(64), captured=65)
    yield "option-too-long", section("<") + interface("<", 220, struct.pack("<HH", 9, 40) + bytes(4))
    yield "unknown-block", section("<") + block("<", 5, bytes(20)) + interface("<") + records("<")
    yield "other-file", b"\xd4\xc3\xb2\xa1" + bytes(20)


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


def message(kind, content=b""):
    return struct.pack("<IB", len(content) + 1, kind) + content


def socket():
    hello = message(1, frame("56564153 0100"))
    opened = hello + message(3, b"\x01")
    write = message(5, packet(REQUESTS[0]))
    read = message(6, struct.pack("<i", 20))

    def sent(*messages, client=0):
        return b"".join(bytes([0x10 | client]) + two_parts(each) for each in messages)

    def answered(client=0):
        return bytes([client])

    yield "list", b"\x00" + sent(hello + message(2))
    yield "hold", b"\x00" + sent(hello + message(9))
    yield "talk", b"\x00" + sent(opened) + answered() + sent(write) + answered() + sent(read)
    yield "reader", b"\x00" + sent(opened) + sent(
        hello + message(4, frame("01000000")), client=1) + answered(1) + sent(
        message(6, b"\xff" * 4), client=1) + answered() + sent(write) + answered(1)
    yield "late", b"\x00" + sent(opened) + answered() + sent(read) + b"\x02\x02"
    yield "closed", b"\x00" + sent(opened) + answered() + sent(read) + b"\x04" + sent(opened)
    yield "pieces", b"\x00" + sent(hello[:3], hello[3:], opened[11:14], opened[14:])
    for name, text in (("reset", b"reset"), ("unplug", b"unplug"), ("nonsense", b"\xff;")):
        yield f"tell-{name}", b"\x00" + sent(
            hello + message(8, struct.pack("<H", 7) + b"VA-0001" + text))
    yield "other-version", b"\x00" + sent(message(1, frame("56564153 0200")))
    yield "too-long", b"\x00" + sent(hello + b"\xff\xff\xff\xff")

    def text(value):
        return struct.pack("<H", len(value)) + value.encode("utf-32-le")

    adapter = frame("01 01 0912 0100 0001") + text("Veltra") + text("full-speed") + text("VA-0001")
    for name, content in (
        ("none", b"\x00"), ("one", b"\x01" + adapter), ("two", b"\x02" + adapter * 2),
        ("fewer", b"\x03" + adapter), ("cut", b"\x01" + adapter[:-3]),
        ("forbidden", b"\x01" + frame("01 00 0912 0100 0001 0000 0000 0000")),
    ):
        yield f"adapters-{name}", b"\x01\x82" + two_parts(content) + b"\x00\x00"
    for name, content in (
        ("whole", message(0x86, b"\x00" + bytes(64))), ("notice", message(0x90, b"hello\n")),
        ("empty", bytes(5)), ("over-long", frame("ffffffff 86")), ("behind", message(0x86) * 2),
    ):
        yield f"reply-{name}", b"\x01\x86" + two_parts(content) + b"\x00\x00"


def board_file():
    root = pathlib.Path(__file__).parent.parent
    i2c = "board = 1\n[[i2c]]\nbus = 0\naddress = 0x20\npart = "
    yield "factory", (root / "docs/virtual-adapter/factory-board.toml").read_bytes()
    for name, text in {
        "registers": i2c + '"registers"\nregisters = 16\nwidth = 2\nauto_increment = false\n'
                           'contents = { 0x01 = "hex:6061", 2 = 7, 3 = "str:a" }\n'
                           'read_only = ["0x01", "0x02-0x03", 4]\nwritable_bits = { 0x05 = "hex:0ff0" }\n',
        "spi": 'board = 1\n[[spi]]\nchip_select = 0\npart = "registers"\nregisters = 64\nread_bits = 0xC0\n'
               'dummy_bytes = 1\nmodes = [1, 2]\n[[spi]]\nchip_select = 1\npart = "nor-flash"\nsize = 65536\n'
               'jedec_id = "hex:ef4018"\n',
        "i3c": 'board = 1\nreplace = false\n[[i3c]]\npart = "registers"\nstatic_address = 0x68\n'
               'pid = "0461000000aa"\nbcr = 0x26\nmax_write = 8\nmax_read = 16\nmax_ibi_payload = 8\n'
               'hdr_ddr = true\ncontents = { 0x00 = 1 }\n',
        "file": i2c + '"24c04"\ncontents = "@missing"\nwrite_protected = true\n',
        "program": i2c + '"program"\ncommand = ["sh", "-c", "exit 1"]\n',
        "at": 'board = 1\n[gpio]\nwires = [[0, 1, 2]]\n[[at]]\nrequest = 7\ntell = "gpio drive 4 1"\n',
        "nesting": "board = 1\n" + "a." * 40 + "a = " + "[" * 40,
        "strings": 'board = 1\nx = ["""a\\"\n""", \'\'\'b.\n\'\'\', \'c\', "d\\""] # .\n',
    }.items():
        yield name, text.encode()


def part_answers():
    for kind, answers in enumerate((
        (b'{"veltra-part":1}', b'{"veltra-part":2}'),
        (b'{"ack":true}', b'{"ack":1}'),
        (b'{"ack":2}', b'{"ack":-1}', b'{"ack":300}'),
        (b'{"data":"0011"}', b'{"data":"001"}', b'{"data":1}'),
        (b"{}", b"[]", b""),
        (b"{}", b'{"error":"no such setting"}', b'{"error":"\xff"}'),
    )):
        for number, answer in enumerate(answers):
            yield f"{kind}-{number}", bytes([kind, 2]) + answer


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


TARGETS = (
    board_file, capture, device_answers, devices, notifications, operations, packet_joining, part_answers, serprog, socket,
    stimuli, strict_mode, tiny_usb, usbip, veltra_words, virtual_adapter)

for target in TARGETS:
    directory = pathlib.Path(sys.argv[1], target.__name__)
    directory.mkdir(parents=True, exist_ok=True)
    for seed, content in target():
        (directory / seed).write_bytes(content)
