#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that the protocol reference, the command codes, the encoders' comments and the bytes on the wire
agree: check_protocol.py PROTOCOL.md CommandCode.hpp VeltraAsyncSDK.hpp PROTOCOL_FRAMES

PROTOCOL_FRAMES prints what the library sends and what it reads, field by field. Each row of the reference
lists the same fields by their names, in their order and with their widths: laid out as it says, they make
the frame.
"""

import collections
import pathlib
import re
import subprocess
import sys

reference, command_codes, encoders = (pathlib.Path(name).read_text() for name in sys.argv[1:4])
frames = subprocess.run(sys.argv[4], check=True, stdout=subprocess.PIPE, text=True).stdout

REQUEST_PAYLOAD = 4
RESPONSE_STATUS = 4
RESPONSE_PAYLOAD = 6

# A width of None stands for the rest of the payload.
Field = collections.namedtuple("Field", "name width condition choices", defaults=("", ""))

# Some bits of a byte, as in `bits 1 and 2 mode: 0 SDR, 1 HDR-DDR`.
BITS = re.compile(r"bits? (\d)(?: (?:and|to) (\d))? ([\w-]+)(?:: (.*))?")

failures = []


def expect(condition, failure):
    if not condition:
        failures.append(failure)


def cells(line):
    return [cell.strip() for cell in line.strip("|").split("|")]


# What the reference says.

rows = {}
for line in re.findall(r"^\| 0x[0-9A-F]{4} .*$", reference, re.M):
    code, name, *columns = cells(line)
    expect(code not in rows, f"{code} has two rows")
    rows[code] = columns


def fields_of_list(text):
    """The fields of `name (width), name (width): 0 choice, 1 choice`; the last may have no width."""
    if text in ("", "none", "not awaited"):
        return []
    if same := re.fullmatch("as (0x[0-9A-F]{4})", text):
        return fields_of_list(rows[same[1]][0])
    text, _, choices = text.removeprefix("for reads: ").partition(": ")
    fields = []
    names = []  # that share the next width
    for item in text.split(", "):
        name, width, each, condition = re.fullmatch(
            r"([^()]+?)(?: \((\d+)( each)?\)(?: for (.+) only)?)?", item
        ).groups()
        names.append(name)
        if width:
            expect(each or len(names) == 1, f"has no width: {names[0]}")
            fields += [Field(name, int(width), condition or "") for name in names]
            names = []
    expect(len(names) <= 1, f"has no width: {names[:1]}")
    fields += [Field(name, None) for name in names]
    if choices:
        fields[-1] = fields[-1]._replace(choices=choices)
    return fields


record = fields_of_list(re.search(r"^A record: ([^.]*)\.", reference, re.M)[1].replace("\n", " "))
record_width = sum(field.width for field in record)


def fields_of_table(code):
    """The fields of a payload with a table of its own: offset, bytes, and a name with remarks behind it."""
    table = re.search(rf"\({code}\):\n\n\| Offset .*\n\|[-|]+\n((?:\|.*\n)+)", reference)[1]
    fields = []
    end = REQUEST_PAYLOAD
    for offset, width, content in map(cells, table.splitlines()):
        expect(int(offset) == end, f"{code}: {content} is at {offset}, the field before it ends at {end}")
        name = content if BITS.match(content) else re.split("[,;:]", content)[0]
        fields.append(Field(name, int(width) if width else None))
        end += int(width or 0)
    return fields


def fields_of_request(code):
    return fields_of_table(code) if rows[code][0] == "see below" else fields_of_list(rows[code][0])


# What the library does.


def value_of(text, choices):
    """Bytes, or one of the words of `0 word, 1 word`."""
    if re.fullmatch("([0-9A-F]{2})*", text):
        return bytes.fromhex(text)
    numbers = {word: int(number) for number, word in re.findall(r"(\d+) ([^,]+)", choices)}
    return bytes([numbers[text]])


def byte_of_bits(description, values):
    byte, free = 0, 0xFF
    for part in description.split("; "):
        first, last, name, choices = BITS.fullmatch(part).groups()
        mask = (2 << int(last or first)) - (1 << int(first))
        bits = value_of(values.pop(name), choices or "")[0] << int(first)
        expect(free & mask == mask and bits & ~mask == 0, f"not these bits: {part}")
        free &= ~mask
        byte |= bits
    expect(free == 0, f"bits without a meaning: {description}")
    return bytes([byte])


def holds(condition, values):
    name, _, number = condition.rpartition(" ")
    return int(values[name], 16) == int(number)


def laid_out(fields, values, start):
    """The payload that the values make; a byte that nobody reads is the one received, its offset."""
    given = dict(values)
    payload = b""
    for field in fields:
        if field.condition and not holds(field.condition, given):
            continue
        offset = start + len(payload)
        if field.name == "records":
            expect(field.width == record_width, f"a record has {field.width} and {record_width} bytes")
            part = laid_out(record, {field.name: values.pop(field.name) for field in record}, offset)
        elif BITS.match(field.name):
            part = byte_of_bits(field.name, values)
        elif field.name == "not used" or field.name == "status" and "status" not in values:
            part = bytes(range(offset, offset + field.width))
        else:
            part = value_of(values.pop(field.name), field.choices)
        expect(field.width in (None, len(part)), f"{field.name} has {len(part)} bytes, not {field.width}")
        payload += part
    expect(not values, f"has no such field: {sorted(values)}")
    return payload


def check_request(frame, values):
    payload = laid_out(fields_of_request(code_of(frame[2:])), values, REQUEST_PAYLOAD)
    expect(payload == frame[4:], f"makes {payload.hex(' ')}, sent is {frame[4:].hex(' ')}")


def check_received(fields, values, start):
    payload = laid_out(fields, values, start)
    expect(payload == bytes(range(start, start + len(payload))), f"is read from elsewhere: {payload.hex(' ')}")


def check_response(code, values):
    fields = [Field("status", 2), *fields_of_list(rows[code_of(code)][1])]
    check_received(fields, values, RESPONSE_STATUS)


def check_notification(code, values):
    payload, shortest = rows[code_of(code)]
    expect(values.pop("shortest frame") == shortest, f"{shortest} is not the shortest frame")
    check_received(fields_of_list(payload), values, RESPONSE_PAYLOAD)


def code_of(frame):
    return f"0x{frame[1]:02X}{frame[0]:02X}"


def check_report(name, report):
    cell = re.search(rf"^\| {name.split()[0]} \|((?: [0-9A-F ]*\|)+)$", reference, re.M)[1]
    told = bytes.fromhex(cell.replace("|", ""))
    expect(told.ljust(64, b"\0") == report, f"the {name} is {report.rstrip(bytes(1)).hex(' ')}")


def check_limit(name, number):
    sentence = {
        "shortest frame": f"Frames of less than {number} bytes",
        "longest message": f"beyond {number >> 20} MiB",
        "payload of a full-speed packet": f"payloads of {number} or",
        "payload of a high-speed packet": f"or {number} bytes",
    }[name]
    expect(sentence in reference, f"is not said: {sentence}")


checks = {"request": check_request, "response": check_response, "notification": check_notification}
seen = collections.defaultdict(set)
for line in frames.splitlines():
    kind, content, values = line.split("\t")
    before = len(failures)
    if kind in checks:
        content = bytes.fromhex(content)
        code = code_of(content[2:] if kind == "request" else content)
        seen[kind].add(code)
        try:
            checks[kind](content, dict(re.findall("([^,=]+)=([^,]*)(?:, )?", values)))
        except (AttributeError, KeyError, TypeError, ValueError) as error:
            failures.append(f"the row is missing, names other fields or cannot be read: {error!r}")
        failures[before:] = [f"{kind} {code}: {failure}" for failure in failures[before:]]
    elif kind.endswith("report"):
        check_report(kind, bytes.fromhex(content))
    else:
        check_limit(kind, int(content))

# Names and codes, each in its place.

documented = set(re.findall(r"^\| (0x[0-9A-F]{4}) \| `(\w+)` \|", reference, re.M))
declared = {(code, name) for name, code in re.findall(r"^ +(\w+) = (0x[0-9A-F]{4}),$", command_codes, re.M)}
commands = {code for code, name in declared if not name.endswith("Notification")}
answering = {code for code in rows.keys() & commands if fields_of_list("".join(rows[code][1:2]))}
described = set(re.findall(r"@brief Sends (0x[0-9A-F]{4})", encoders))


def expect_same(these, where, those, elsewhere):
    failures.extend(f"only {where}: {entry}" for entry in sorted(these - those))
    failures.extend(f"only {elsewhere}: {entry}" for entry in sorted(those - these))


expect_same(documented, "in the reference", declared, "among the command codes")
expect_same(commands, "among the command codes", described, "in an encoder's comment")
expect_same(commands, "among the command codes", seen["request"], "on the wire")
expect_same(answering, "in a response of the reference", seen["response"], "in a response that is read")
expect_same({code for code, _ in declared} - commands, "among the command codes", seen["notification"], "decoded")

print("\n".join(failures) or f"{len(declared)} codes agree")
sys.exit(bool(failures) or not declared)
