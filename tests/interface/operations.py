#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Compares every list of all operations by name: operations.py ROOT

An operation stands on each floor of the library, among the command codes, on the protocol page and
in the tables that the tests call everything from. The headers of C and of the class say what there
is; each list that lacks one is named with it, and so is what a list holds beside them.

Letter case does not count, since C and C++ differ in it.
"""

import pathlib
import re
import sys

from exported_symbols import declared_functions

# What the interfaces offer beside the operations, with the reason why no list needs it.
NOT_OPERATIONS = {
    "Create": "makes the handle",
    "Destroy": "releases the handle",
    "GetVersion": "needs no adapter",
    "ShareHidapi": "a setting of the process",
    "Enumerate": "finds adapters and sends nothing",
    "Adapters": "finds adapters and sends nothing",
    "Connect": "opens the link and sends nothing",
    "ConnectWithSerialNumber": "opens the link and sends nothing",
    "Disconnect": "closes the link and sends nothing",
    "IsConnected": "tells about the link and sends nothing",
    "SetStrict": "switches the mode",
    "SetOverlap": "sets what strict mode does",
    "GetUnmatchedResponses": "counts",
    "OnNotification": "installs the handler",
    "OnResponse": "installs the callback",
    "OpenNotificationQueue": "keeps notifications and sends nothing",
    "TakeNotification": "takes one that was kept",
    "CloseNotificationQueue": "keeps notifications no longer",
    "NotificationAsI3cHotJoin": "decodes a notification",
    "NotificationAsI3cIbi": "decodes a notification",
    "NotificationAsGpio": "decodes a notification",
    "NotificationAsUartRx": "decodes a notification",
    "GenerateTransactionId": "part of the engine",
    "HandleResponse": "part of the engine",
}

# Encoders that are no operation, with the reason.
ENCODERS_ONLY = {"SetI2cSpiUartGpioVoltage": "the voltage under the command's own name"}

# What an operation is called in a list in which it has no name of its own.
AS_ENCODER = {
    r"GetDeviceInfo": "GetUsbString",
    r"I3cCcc(?!Transfer)\w+": "I3cCccTransfer",
}
AS_COMMAND = AS_ENCODER | {
    r"(I2c|Spi|Uart)SetBusVoltage|GpioSetVoltage": "SetI2cSpiUartGpioVoltage",
    r"I3c(Sdr|HdrDdr|LegacyI2C)(Write|Read)": "I3cPrivateTransfer",
    r"I3cTargetResetPattern|I3cHdrExitPattern": "I3cBusPattern",
}
# The response of a Common Command Code is printed once: all are decoded alike.
AS_RESPONSE = {
    r"GetDeviceInfo": "GetUsbString",
    r"I3cCcc\w+": "I3cCccGETPID",
}


def called(names, others):
    return {
        next((other for pattern, other in others.items() if re.fullmatch(pattern, name, re.I)), name)
        for name in names
    }


def between(begin, end, text):
    """What stands between two lines; a file that has lost them is no list any more."""
    return re.search(rf"^{begin}\n(.*?)^{end}$", text, re.DOTALL | re.MULTILINE)[1]


def methods_of(class_name, header):
    """The public member functions of a class."""
    members = between("public:", "private:", header)
    while (plain := re.sub(r"<[^<>]*>|\{[^{}]*\}", ";", members)) != members:
        members = plain
    return [name for name in re.findall(r"(?<!~)\b(\w+)\([^;]*;", members) if name != class_name]


def methods_with_output(header):
    """The member functions whose comments announce an output."""
    commented = re.findall(r"/\*\*((?:(?!\*/).)*)\*/\s+uint16_t (\w+)\(", header, re.DOTALL)
    return [name for comment, name in commented if "@param[out]" in comment]


def calls_of_table(text):
    """What a fuzz table calls: the function, or the helper that is named after it."""
    calls = between(r"constexpr std::array calls\{", r"\};", text)
    return re.findall(r"(?:VeltraSDK_|&VeltraSDK::|Call\{|sdk\.)(\w+)[>}(]", calls)


def calls_on_sdk(begin, end, text):
    return re.findall(r"\bsdk\.(\w+)\(", between(begin, end, text))


def lists(root):
    """Yields each list: its name, what it holds, and what it is to hold."""

    def read(file):
        return (root / file).read_text()

    def code(file):
        return re.sub(r"/\*.*?\*/|//[^\n]*", "", read(file), flags=re.DOTALL)

    c_functions = [name.removeprefix("VeltraSDK_") for name in declared_functions(root / "include/veltrasdk")]
    class_methods = methods_of("VeltraSDK", code("include/veltrasdk/VeltraSDK.hpp"))
    async_methods = methods_of("VeltraAsyncSDK", code("include/veltrasdk/VeltraAsyncSDK.hpp"))
    frames = code("tests/docs/protocol_frames.cpp")

    operations = {name.lower(): name for name in [*class_methods, *c_functions]}
    for name in NOT_OPERATIONS:
        operations.pop(name.lower(), None)
    operations = list(operations.values())
    encoders = called(operations, AS_ENCODER) | ENCODERS_ONLY.keys()
    commands = called(operations, AS_COMMAND)

    yield "include/veltrasdk/*.h", c_functions, operations
    yield "include/veltrasdk/VeltraSDK.hpp", class_methods, operations
    yield "include/veltrasdk/VeltraAsyncSDK.hpp", async_methods, encoders
    yield (
        "src/protocol/CommandCode.hpp",
        re.findall(r"^ +(\w+)(?<!Notification) = 0x", code("src/protocol/CommandCode.hpp"), re.MULTILINE),
        commands,
    )
    yield (
        "docs/protocol.md",
        re.findall(r"^\| 0x\w+ \| `(\w+)(?<!Notification)` \|", read("docs/protocol.md"), re.MULTILINE),
        commands,
    )
    yield (
        "class Requests of tests/docs/protocol_frames.cpp",
        calls_on_sdk(r"class Requests \{", r"\};", frames),
        encoders,
    )
    yield (
        "printResponses of tests/docs/protocol_frames.cpp",
        calls_on_sdk(r"void printResponses\(\) \{", r"\}", frames),
        called(methods_with_output(read("include/veltrasdk/VeltraSDK.hpp")), AS_RESPONSE),
    )
    yield (
        "tests/capi/lifecycle_test.cpp",
        re.findall(r'\{"(\w+)",\s*with\w*\(VeltraSDK_\1\b', code("tests/capi/lifecycle_test.cpp")),
        operations,
    )
    yield "fuzz/c_operations.cpp", calls_of_table(code("fuzz/c_operations.cpp")), operations
    yield "fuzz/class_operations.cpp", calls_of_table(code("fuzz/class_operations.cpp")), operations


def main(root):
    not_operations = {name.lower(): name for name in NOT_OPERATIONS}
    unused = set(not_operations)
    complaints = []
    for where, entries, expected in lists(root):
        held = {name.lower(): name for name in entries}
        needed = {name.lower(): name for name in expected}
        unused -= held.keys()
        complaints += [f"{where} lacks {name}" for key, name in needed.items() if key not in held]
        complaints += [
            f"{where} has {name}, which is no operation"
            for key, name in held.items()
            if key not in needed and key not in not_operations
        ]
        print(f"{len(needed)} names in {where}")
        if not needed:
            complaints.append(f"{where} is empty")
    complaints += [f"{not_operations[key]} is listed here and is nowhere" for key in sorted(unused)]
    print("\n".join(complaints))
    return bool(complaints)


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
