#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Compares what a shared library exports and imports with what its headers promise.

The exported C functions are exactly those that the headers declare; everything else exported
belongs to the public classes; of hidapi exactly eight functions are used.
"""

import pathlib
import re
import subprocess
import sys

PUBLIC_CLASSES = ("VeltraSDK", "VeltraAsyncSDK", "Notification", "NotificationQueue")
HIDAPI_FUNCTIONS = {
    "hid_close",
    "hid_enumerate",
    "hid_exit",
    "hid_free_enumeration",
    "hid_init",
    "hid_open_path",
    "hid_read_timeout",
    "hid_write",
}


def symbols(library, *options):
    """The names in the library's dynamic symbol table, without their versions."""
    output = subprocess.run(
        ["nm", "--dynamic", "--format=just-symbols", *options, library],
        check=True,
        capture_output=True,
        text=True,
    ).stdout
    return {line.split("@")[0] for line in output.splitlines()}


def declared_functions(headers):
    text = "\n".join(path.read_text() for path in headers.glob("*.h"))
    declarations = re.sub(r"/\*.*?\*/|^#.*?$", "", text, flags=re.DOTALL | re.MULTILINE)
    return set(re.findall(r"\bVELTRASDK_API\s[^;]*?\b(\w+)\(", declarations))


def belongs_to_public_class(symbol):
    demangled = subprocess.run(
        ["c++filt", symbol], check=True, capture_output=True, text=True
    ).stdout.strip()
    return demangled.startswith(tuple(f"{name}::" for name in PUBLIC_CLASSES))


def main(library, headers):
    exported = symbols(library, "--defined-only")
    exported_cpp = {name for name in exported if name.startswith("_Z")}
    # The name of the version itself is listed beside the symbols that carry it.
    exported_c = {name for name in exported - exported_cpp if not name.startswith("VELTRASDK_")}
    declared = declared_functions(headers)
    imported = {name for name in symbols(library, "--undefined-only") if name.startswith("hid_")}

    complaints = {
        "declared but not exported": declared - exported_c,
        "exported but not declared": exported_c - declared,
        "exported though of no public class": {
            name for name in exported_cpp if not belongs_to_public_class(name)
        },
        "imported from hidapi beyond the eight functions": imported - HIDAPI_FUNCTIONS,
        "not imported from hidapi": HIDAPI_FUNCTIONS - imported,
    }
    if not declared or not exported_cpp:
        complaints["missing"] = {"any declared function or any exported class"}
    for what, names in complaints.items():
        for name in sorted(names):
            print(f"{what}: {name}")
    print(f"{len(declared)} C functions, {len(exported_cpp)} symbols of the classes")
    return any(complaints.values())


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], pathlib.Path(sys.argv[2])))
