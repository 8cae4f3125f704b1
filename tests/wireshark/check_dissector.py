#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks the dissector with tshark: check_dissector.py CHECK DISSECTOR TEXT_CAPTURE ARGUMENTS...

fields PROTOCOL_FRAMES      what the library sends and reads, which the protocol page is checked against
                            too, is shown with the same fields, values and order
values INCLUDE_DIRECTORY    values, commands and statuses have the names that the headers give them
golden CONVERSATION SIZE JSON   a whole conversation in reports of that size, field by field; with --renew the
                            JSON is written
hostile CORPUS              the fuzzers' inputs as reports raise no error
usbmon CAPTURE JSON         likewise what the kernel itself has recorded of a program; with --renew the JSON is written
live CONVERSATION           what comes through a pipe is shown as it is from a file
tools CONVERSATION          capinfos and editcap take our captures, and tshark one that is cut
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

check, dissector, text_capture = sys.argv[1:4]
arguments = sys.argv[4:]
workspace = tempfile.TemporaryDirectory()
failures = []


def expect_same(what, seen, expected):
    if seen != expected:
        failures.append(f"{what}:\n  seen     {seen}\n  expected {expected}")


def tshark(*options, stdin=None):
    """What tshark prints. It complains of Lua on the standard error output and ends with 0 all the same."""
    environment = {**os.environ, "HOME": workspace.name, "WIRESHARK_CONFIG_DIR": workspace.name,
                   "LC_ALL": "C.UTF-8", "TZ": "UTC"}
    ended = subprocess.run(["tshark", *options, "-X", f"lua_script:{dissector}"], stdin=stdin, env=environment,
                           stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=True)
    if "Lua" in ended.stderr:
        failures.append(ended.stderr)
    if "Lua Error" in ended.stdout or "_ws.lua.error" in ended.stdout:
        failures.append(re.search(".*(?:Lua Error|_ws.lua.error).*", ended.stdout)[0])
    return ended.stdout


def captured(lines, report_size):
    path = pathlib.Path(workspace.name, f"{check}.pcapng")
    path.unlink(missing_ok=True)
    subprocess.run([text_capture, str(report_size), path], input="\n".join(lines), text=True, check=True)
    return str(path)


def shown_messages(capture):
    """For every frame that ends a message: names and bytes of its fields, in their order."""
    for packet in ElementTree.fromstring(tshark("-r", capture, "-Y", "veltra.command", "-T", "pdml")).iter("packet"):
        proto = packet.find("proto[@name='veltra']")
        yield [
            # A field of some bits is named after them: ".... ...1 = direction: read (1)".
            (re.sub("^[.01 ]+ = ", "", field.get("showname")).partition(":")[0].replace(" [truncated]", ""), field)
            for field in proto.iter("field")
            if field.get("name").startswith("veltra.") and field.get("value")
        ]


def is_value(field, expected):
    """Bytes, or a word that the page uses in their place."""
    if re.fullmatch("([0-9A-F]{2})*", expected):
        value = field.get("value").upper()
        # Of a byte's bits the value alone is told, as a number.
        return int(value, 16) == int(expected, 16) if field.get("unmaskedvalue") else value.startswith(expected)
    return f": {expected} (" in field.get("showname")


def check_fields(protocol_frames):
    lines, expected = [], []
    requests = {}
    for line in subprocess.run([protocol_frames], check=True, stdout=subprocess.PIPE, text=True).stdout.splitlines():
        kind, content, values = line.split("\t")
        fields = dict(re.findall("([^,=]+)=([^,]*)(?:, )?", values))
        fields.pop("shortest frame", None)
        counting = "".join(f"{number & 0xFF:02X}" for number in range(4, 3000))
        if kind == "request":
            requests[content[4:8]] = content
            lines.append(f"> {content}")
        elif kind == "response":
            lines += [f"> {requests[content]}", f"< 0102{content}{counting}"]
            expected.append(None)
            fields.setdefault("status", "0405")
        elif kind == "notification":
            lines.append(f"< 0000{content}{counting}")
        else:
            continue
        expected.append({name: value for name, value in fields.items() if value})
    seen = list(shown_messages(captured(lines, 1024)))
    expect_same("messages", len(seen), len(expected))
    for message, fields in zip(seen, expected):
        if fields is None:
            continue
        title = next(field.get("show") for name, field in message if name == "Command")
        own = [(name.replace("Status", "status"), field) for name, field in message if not field.get("name").startswith(
            ("veltra.packet.", "veltra.transaction", "veltra.command", "veltra.surplus"))]
        records = [name for name, _ in own if name == "static address"]
        if len(records) > 1:  # the first one is named in the expectation, the others are like it
            own = own[:len(fields)]
        expect_same(f"{title}: fields", sorted(name for name, _ in own), sorted(fields))
        for name, field in own:
            if name in fields and not is_value(field, fields[name]):
                failures.append(f"{title}: {name} is {field.get('showname')}, not {fields[name]}")


def normalised(name):
    return re.sub("[^a-z0-9]", "", name.lower())


# Fields and the enumerations that their values are of.
ENUMERATIONS = {
    "veltra.status": "VeltraStatus",
    "veltra.spi.bit_order": "SpiBitOrder",
    "veltra.spi.data_width": "SpiDataWidth",
    "veltra.spi.polarity": "SpiChipSelectPolarity",
    "veltra.uart.baud_rate": "UartBaudRate",
    "veltra.uart.handshake": "UartHwHandshake",
    "veltra.uart.parity": "UartParity",
    "veltra.uart.data_size": "UartDataSize",
    "veltra.gpio.functionality": "GpioFunctionality",
    "veltra.gpio.level": "GpioLogicLevel",
    "veltra.gpio.trigger": "GpioTriggerType",
    "veltra.i3c.push_pull_rate": "I3cPushPullRate",
    "veltra.i3c.open_drain_rate": "I3cOpenDrainTransferRate",
    "veltra.i3c.i2c_rate": "I2cTransferRate",
    "veltra.i3c.drive_strength": "I3cDriveStrength",
    "veltra.i3c.configuration": "I3cTargetConfiguration",
    "veltra.i3c.direction": "I3cTransferDirection",
    "veltra.i3c.mode": "I3cTransferMode",
    "veltra.i3c.flags": "I3cTransferFlags",
    "veltra.i3c.type": "I3cCccType",
    "veltra.i3c.code": "CCC",
    "veltra.i3c.reset_action": "I3cTargetResetDefByte",
}
# Enumerations that travel in no field, and those whose enumerators are named after their numbers.
NO_VALUES = {"NotificationKind", "ResultCode", "SpiMode", "SpiChipSelect", "UartStopBit", "GpioPinNumber"}
# What the dissector names on top: two values that are combined, the status that is none, the patterns.
ON_TOP = {("veltra.status", 0), ("veltra.i3c.flags", 3), ("veltra.i3c.pattern", 0), ("veltra.i3c.pattern", 1)}


def check_values(include):
    headers = "\n".join(path.read_text() for path in sorted(pathlib.Path(include, "veltrasdk").glob("*.h")))
    declared = set(re.findall(r"^VELTRASDK_ENUM\((\w+),", headers, re.M))
    expect_same("enumerations", declared, set(ENUMERATIONS.values()) | NO_VALUES)
    expected = {
        (field, int(number, 0), normalised(name))
        for field, enumeration in ENUMERATIONS.items()
        for name, number in re.findall(rf"^ +{enumeration}_(\w+) = (\w+),", headers, re.M)
    }
    codes = (pathlib.Path(include).parent / "src/protocol/CommandCode.hpp").read_text()
    expected |= {("veltra.command", int(number, 0), normalised(name))
                 for name, number in re.findall(r"^ +(\w+) = (0x\w+),$", codes, re.M)}
    named = [line.split("\t")[1:] for line in tshark("-G", "values").splitlines() if line.startswith("V\tveltra.")]
    seen = {(field, int(number, 0), normalised(name)) for field, number, name in named}
    seen = {value for value in seen if value[:2] not in ON_TOP}
    expect_same("values without their name", expected - seen, set())
    expect_same("names without their value", seen - expected, set())


def decoded(capture, *options):
    """Our own layer of every packet, our own fields of it: the others change with the version of tshark."""
    def own(layer):
        if isinstance(layer, list):
            return [own(each) for each in layer]
        if not isinstance(layer, dict):
            return layer
        return {name: own(value) for name, value in layer.items() if name.startswith(("veltra.", "_ws.expert"))
                and not name.startswith("_ws.expert.")}

    packets = json.loads(tshark(*options, "-r", capture, "-Y", "veltra", "-T", "json", "--no-duplicate-keys", "-J", "veltra"))
    return [own(packet["_source"]["layers"]["veltra"]) for packet in packets]


def expect_golden(seen, golden):
    text = "[\n" + ",\n".join(json.dumps(each, sort_keys=True) for each in seen) + "\n]\n"
    if "--renew" in arguments:
        pathlib.Path(golden).write_text(text)
    for number, (line, expected) in enumerate(zip(text.splitlines(), pathlib.Path(golden).read_text().splitlines()), 1):
        expect_same(f"{golden}:{number}", line, expected)
    expect_same("lines", len(text.splitlines()), len(pathlib.Path(golden).read_text().splitlines()))


def check_golden(conversation, report_size, golden):
    lines = pathlib.Path(conversation).read_text().splitlines()
    seen = decoded(captured(lines, report_size), "-2")
    expect_golden(seen, golden)
    codes = {line.split("\t")[2] for line in tshark("-G", "values").splitlines() if line.startswith("V\tveltra.command\t")}
    shown = {hex(int(layer.get("veltra.command", "0"), 0)) for layer in seen}
    expect_same("codes that the conversation lacks", codes - shown, set())


def check_hostile(corpus):
    lines = []
    for path in sorted(pathlib.Path(corpus).glob("*/*")):
        content = path.read_bytes()[:4096]
        for start in range(0, len(content), 64):
            report = content[start:start + 64]
            lines += [f">> {report.hex()}", f"<< {report.hex()}"]
            # As it is, and as a message whose identifier and code are right more often.
            lines += [f"<< 4300 {report.ljust(16, bytes(1))[:16].hex()}"]
        for code in ("0819", "0919", "0619", "0509", "040D"):
            lines += [f"> 0100 {code} {content[:200].hex()}", f"< 0100 {code} 0000 {content[:200].hex()}"]
    for size, options in ((64, ()), (1024, ("-2",))):
        shown = tshark("-r", captured(lines, size), *options, "-Y", "veltra", "-T", "fields", "-e", "frame.number",
                       "-e", "_ws.lua.error").splitlines()
        expect_same("lines with an error", [line for line in shown if line.split("\t")[1:] != [""]], [])
        if len(shown) < len(lines):
            failures.append(f"{len(shown)} of {len(lines)} packets were shown")


def check_live(conversation):
    lines = pathlib.Path(conversation).read_text().splitlines()
    capture = captured(lines, 64)
    columns = ["-Y", "veltra", "-T", "fields", "-e", "frame.number", "-e", "_ws.col.Info", "-e", "veltra.status"]
    with open(capture, "rb") as file:
        expect_same("through a pipe", tshark("-r", "-", *columns, stdin=file), tshark("-r", capture, *columns))


def check_tools(conversation):
    capture = captured(pathlib.Path(conversation).read_text().splitlines(), 64)
    packets = len(tshark("-r", capture).splitlines())
    first = f"{capture}.first"
    subprocess.run(["editcap", "-r", capture, first, "1-10"], check=True)
    for path, count in ((capture, packets), (first, 10)):
        told = subprocess.run(["capinfos", "-M", "-T", "-r", "-c", path], check=True, stdout=subprocess.PIPE, text=True)
        expect_same(f"packets of {path}", told.stdout.split()[-1], str(count))
    content = pathlib.Path(capture).read_bytes()
    pathlib.Path(first).write_bytes(content[:-7])
    cut = subprocess.run(["tshark", "-r", first], check=False, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    expect_same("packets of one that is cut", len(cut.stdout.splitlines()), packets - 1)


if check == "golden":
    check_golden(*arguments[:3])
elif check == "usbmon":
    expect_golden(decoded(arguments[0], "-2"), arguments[1])
else:
    {"fields": check_fields, "values": check_values, "hostile": check_hostile, "live": check_live, "tools": check_tools}[check](*arguments)
print("\n".join(failures[:40]) or f"{check}: the dissector agrees")
sys.exit(bool(failures))
