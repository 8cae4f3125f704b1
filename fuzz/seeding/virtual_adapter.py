# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Seeds of the ways into the virtual adapter, and into what is around it."""

import pathlib
import struct

from seeding.frames import REQUESTS, frame, packet, repeated, run, two_parts


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
    root = pathlib.Path(__file__).parent.parent.parent
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
