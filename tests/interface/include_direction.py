#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that includes run one way: capi -> sdk -> protocol -> driver -> hidapi.

A floor includes its own files, the public headers and the listed files of the floor beneath it.
The virtual adapter shares the packet framing and the command codes with the library, no more; its
rooms and those around it know each other as their table says. The Python package imports the standard
library and itself alone; what stands on its core is not imported there.
"""

import pathlib
import re
import sys

FLOORS = {
    "src/driver": ("driver/", "hidapi"),
    "src/protocol": ("protocol/", "driver/CommunicationManager.hpp", "driver/Message.hpp"),
    "src/sdk": (
        "sdk/",
        "protocol/CommandCode.hpp",
        "protocol/RequestGate.hpp",
        "protocol/ResponseFrame.hpp",
        # Read errors are told through the link, past the encoders.
        "protocol/Link.hpp",
        # Finding adapters sends nothing: there is no floor between.
        "driver/Hidapi.hpp",
        "driver/adapters.hpp",
        # Not used there, but VeltraSDK owns a pointer of this type.
        "driver/CommunicationManager.hpp",
    ),
    "src/capi": ("capi/",),
    "virtual-adapter": ("driver/UsbTransferProtocol.hpp", "protocol/CommandCode.hpp"),
    "preload": ("hidapi.h",),
    "usbip": (),
    "capture": (),
    "guest": (),
    # The public headers, which are the only way in for a program.
    "veltra": (),
}
# The rooms of the virtual adapter and around it, and what each may include beside its own files:
# whole rooms, or single files of one. A file belongs to the innermost room that it lies in.
MODEL = ("model/Answer.hpp", "model/Frame.hpp", "model/Outbox.hpp", "model/Status.hpp")
COMMANDS = (*MODEL, "bytes/", "model/checks.hpp", "model/Settable.hpp")
ROOMS = {
    "bytes": (),
    "model/system": COMMANDS,
    "model/i2c": (*COMMANDS, "model/system/voltage.hpp"),
    "model/spi": (*COMMANDS, "model/system/voltage.hpp"),
    "model/uart": (*COMMANDS, "model/system/voltage.hpp", "model/AdapterVariant.hpp"),
    "model/gpio": (*COMMANDS, "model/system/voltage.hpp"),
    "model/i3c": (*COMMANDS, "model/i2c/"),
    # Adapter and Dispatcher put the buses together.
    "model": ("bytes/", "model/", "board/Board.hpp"),
    "board/parts": (
        "bytes/",
        "board/Setting.hpp",
        "model/i2c/I2cTarget.hpp",
        "model/spi/SpiTarget.hpp",
        "model/uart/UartTarget.hpp",
        "model/i3c/I3cTarget.hpp",
    ),
    "board": (
        "board/parts/",
        "model/i2c/I2cBus.hpp",
        "model/spi/SpiBus.hpp",
        "model/uart/UartTarget.hpp",
        "model/gpio/GpioLines.hpp",
        "model/i3c/I3cBus.hpp",
        # Which addresses nobody may have.
        "model/i3c/i3c_records.hpp",
        "bytes/",
        "model/i2c/I2cTarget.hpp",
        "model/spi/SpiTarget.hpp",
        "model/i3c/I3cTarget.hpp",
    ),
    "faults": ("bytes/", "model/Frame.hpp", "model/Outbox.hpp", "board/Board.hpp"),
    # What of a board has input and output stands in these two.
    "board/program": ("bytes/", "board/BoardDescription.hpp", "board/Setting.hpp"),
    "board/file": ("bytes/", "board/"),
    "stimuli": ("bytes/", "faults/Fault.hpp"),
    "device": ("bytes/", "model/Adapter.hpp", "model/AdapterVariant.hpp", "board/", "faults/", "stimuli/"),
    "replay": ("bytes/", "device/", "model/Frame.hpp", "capture/"),
    "usbip": ("bytes/",),
    "guest": (),
    "socket": ("bytes/", "guest/"),
    "ways": ("bytes/", "device/", "socket/", "usbip/"),
    # With the broker of veltra the preloaded devices share what is said between them.
    "preload": ("bytes/", "guest/", "socket/", "capture/", "devices/messages.hpp"),
    # Other people's programs, whatever is in front of their libraries.
    "launch": ("usbip/FileDescriptor.hpp",),
    # Of veltra: the devices as Linux has them, and what is behind them.
    "devices": ("bytes/", "launch/", "usbip/FileDescriptor.hpp"),
    "capture": ("bytes/", "guest/"),
    "command-line": (),
    # Of veltra: each speaks one protocol with other people's programs and knows nothing else of it.
    "expose/serprog": ("bytes/", "usbip/FileDescriptor.hpp"),
    "expose/tiny_usb": ("bytes/", "usbip/Device.hpp"),
    "expose/tty": ("usbip/FileDescriptor.hpp",),
    "cli": (
        "board/BoardTable.hpp", "board/file/", "command-line/", "device/", "faults/", "launch/", "replay/",
        "socket/", "stimuli/", "usbip/", "ways/"),
}
# Where these rooms lie: a house, and what of it is checked.
HOUSES = (
    ("virtual-adapter", ""), ("", "capture"), ("", "guest"), ("", "command-line"), ("", "launch"), ("", "preload"),
    ("", "usbip"), ("veltra", "devices"), ("veltra", "expose"))
# Rooms without input or output, clock or thread, and what they would be had by.
CLOSED = ("bytes", "model", "board", "board/parts", "faults")
MEANS = ("fcntl.h", "filesystem", "fstream", "iostream", "poll.h", "pthread.h", "sys/", "thread", "unistd.h")
# What stands on the core of the Python package, and what of it each may import; the core has no entry.
PYTHON = {
    "aio": ("veltrasdk",),
    "compat": ("veltrasdk",),
    "parts": ("veltrasdk.parts",),  # a program of its own, which needs no library
    "virtual": ("veltrasdk",),
    "pytest_plugin": ("veltrasdk.virtual", "pytest"),
}
IMPORT = re.compile(r"\s*(?:from|import) ([\w.]+)(?: import ([\w, ]+|\()?)?(?:  #.*)?")
# What makes the notification record of C that of the classes, and who may include it.
RECORD_OF_CLASSES = "veltrasdk/Notification.hpp"
NEED_RECORD = ("notification_queue.h", "veltrasdk.h")
INCLUDE = re.compile(r'\s*#\s*include\s*["<]([^">]*)[">]')
WATCHED = ("capi/", "sdk/", "protocol/", "driver/", "hidapi")


def includes(directory):
    """Each included file with the place of the directive."""
    for path in sorted(directory.rglob("*")):
        if path.suffix in (".h", ".hpp", ".cpp"):
            for number, line in enumerate(path.read_text().splitlines(), 1):
                if match := INCLUDE.match(line):
                    yield path, number, match[1]


def room_of(path):
    """The innermost room in which a file lies; none for one in no room."""
    rooms = [room for room in ROOMS if path.startswith(f"{room}/")]
    return max(rooms, key=len, default=None)


def check_closed_rooms(root):
    """What the rooms without input or output include of the means for it."""
    house = root / "virtual-adapter"
    for path, number, included in includes(house):
        room = room_of(path.relative_to(house).as_posix()) or ""
        closed = room in CLOSED or room.startswith("model/")
        if closed and (included in MEANS or included.startswith("sys/")):
            yield f"{path}:{number}: {room} has no input or output and must not include {included}"


def check_rooms(root):
    """The includes between the rooms that their table does not have, and their number."""
    complaints = []
    watched = 0
    entered = {room.split("/")[0] for room in ROOMS}
    for house, directory in HOUSES:
        for path, number, included in includes(root / house / directory):
            room = room_of(path.relative_to(root / house).as_posix())
            # A room of veltra that speaks a protocol sees nothing of veltra, whose files lie in no room.
            sealed = (room or "").startswith("expose/") and included.endswith(".hpp")
            if room is None or (included.split("/")[0] not in entered and not sealed):
                continue
            watched += 1
            if room_of(included) != room and not included.startswith(ROOMS[room]):
                complaints.append(f"{path}:{number}: {room} must not include {included}")
    return complaints, watched


def imports(package):
    """Each imported module of the Python package with its file; what is imported from the package by its name."""
    for path in sorted(package.rglob("*.py")):
        for line in path.read_text().splitlines():
            if match := IMPORT.fullmatch(line):
                names = match[2].split(",") if match[1] == package.name and match[2] not in (None, "(") else [""]
                for name in names:
                    yield path, f"{match[1]}.{name.strip()}".rstrip(".")


def check_python(root):
    """The imports of the Python package that it must not have, and the number of all."""
    complaints = []
    watched = 0
    package = root / "python/veltrasdk"
    for path, imported in imports(package):
        first, *inner = imported.split(".")
        if first in sys.stdlib_module_names:
            continue
        watched += 1
        room = path.relative_to(package).parts[0].removesuffix(".py")
        in_core = first == package.name and not set(inner[:1]) & set(PYTHON)
        if not (imported.startswith(PYTHON[room]) if room in PYTHON else in_core):
            complaints.append(f"{path}: {room} must not import {imported}")
    return complaints, watched


def main(root):
    complaints, watched_rooms = check_rooms(root)
    complaints += check_closed_rooms(root)
    of_python, watched_imports = check_python(root)
    complaints += of_python
    watched = 0
    for floor, allowed in FLOORS.items():
        for path, number, included in includes(root / floor):
            if included.startswith(WATCHED):
                watched += 1
                if not included.startswith(allowed):
                    complaints.append(f"{path}:{number}: {floor} must not include {included}")

    for path, number, included in includes(root / "include"):
        if "/" in included and not included.startswith("veltrasdk/"):
            complaints.append(f"{path}:{number}: a public header must not include {included}")
        if path.name in NEED_RECORD and included == RECORD_OF_CLASSES:
            continue
        if path.suffix == ".h" and not included.endswith(".h"):
            complaints.append(f"{path}:{number}: a C header must not include {included}")

    print(f"{watched} includes between the floors, {watched_rooms} between the rooms, {watched_imports} imports")
    print("\n".join(complaints))
    return bool(complaints) or not (watched and watched_rooms and watched_imports)


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
