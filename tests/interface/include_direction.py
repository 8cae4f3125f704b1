#!/usr/bin/env python3
"""Checks that includes run one way: capi -> sdk -> protocol -> driver -> hidapi.

A floor includes its own files, the public headers and the listed files of the floor beneath it.
The virtual adapter shares the packet framing and the command codes with the library, no more.
The rooms around it include each other's files as listed.
"""

import pathlib
import re
import sys

FLOORS = {
    "src/driver": ("driver/", "hidapi"),
    "src/protocol": ("protocol/", "driver/CommunicationManager.hpp"),
    "src/sdk": (
        "sdk/",
        "protocol/CommandCode.hpp",
        "protocol/ResponseFrame.hpp",
        # Not used there, but VeltraSDK owns a pointer of this type.
        "driver/CommunicationManager.hpp",
    ),
    "src/capi": ("capi/",),
    "virtual-adapter": ("driver/UsbTransferProtocol.hpp", "protocol/CommandCode.hpp"),
    "preload": ("hidapi.h",),
    "usbip": (),
}
ROOMS = {
    "preload": ("preload/", "device/"),
    "usbip": ("usbip/", "bytes/"),
    "virtual-adapter/bytes": ("bytes/",),
    "virtual-adapter/cli": ("cli/", "ways/", "device/", "usbip/"),
    "virtual-adapter/device": ("device/", "model/", "bytes/"),
    "virtual-adapter/model": ("model/", "bytes/"),
    "virtual-adapter/ways": ("ways/", "device/", "usbip/"),
}
INCLUDE = re.compile(r'\s*#\s*include\s*["<]([^">]*)[">]')
LIBRARY = ("capi/", "sdk/", "protocol/", "driver/", "hidapi")
VIRTUAL_ADAPTER = (
    "bytes/",
    "cli/",
    "device/",
    "model/",
    "preload/",
    "usbip/",
    "ways/",
)


def includes(directory):
    """Each included file with the place of the directive."""
    for path in sorted(directory.rglob("*")):
        if path.suffix in (".h", ".hpp", ".cpp"):
            for number, line in enumerate(path.read_text().splitlines(), 1):
                if match := INCLUDE.match(line):
                    yield path, number, match[1]


def main(root):
    complaints = []
    watched = 0
    for rooms, names in ((FLOORS, LIBRARY), (ROOMS, VIRTUAL_ADAPTER)):
        for room, allowed in rooms.items():
            for path, number, included in includes(root / room):
                if included.startswith(names):
                    watched += 1
                    if not included.startswith(allowed):
                        complaints.append(f"{path}:{number}: {room} must not include {included}")

    for path, number, included in includes(root / "include"):
        if "/" in included and not included.startswith("veltrasdk/"):
            complaints.append(f"{path}:{number}: a public header must not include {included}")
        if path.suffix == ".h" and not included.endswith(".h"):
            complaints.append(f"{path}:{number}: a C header must not include {included}")

    print(f"{watched} includes between the rooms")
    print("\n".join(complaints))
    return bool(complaints) or not watched


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
