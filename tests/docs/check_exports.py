#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that the functions that the reference describes are those that the library exports:
check_exports.py XML_DIRECTORY LIBRARY
"""

import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree


def described(directory):
    for file in pathlib.Path(directory).glob("*.xml"):
        for compound in xml.etree.ElementTree.parse(file).iter("compounddef"):
            owner = compound.findtext("compoundname") + "::" if compound.get("kind") != "file" else ""
            for member in compound.iter("memberdef"):
                # A function that the header itself defines, or that nobody does.
                inline = "yes" in (member.get("inline"), member.get("constexpr"))
                defined_elsewhere = inline or "=delete" in member.findtext("argsstring", "")
                if member.get("kind") == "function" and member.get("prot") == "public" and not defined_elsewhere:
                    yield owner + member.findtext("name")


def exported(library):
    names = subprocess.run(
        ["nm", "--dynamic", "--defined-only", "--demangle", "--format=just-symbols", library],
        check=True,
        capture_output=True,
        text=True,
    ).stdout
    return {re.split(r"[(@]", name)[0] for name in names.splitlines() if not name.startswith("VELTRASDK_")}


in_reference = set(described(sys.argv[1]))
in_library = exported(sys.argv[2])
complaints = {
    "described but not exported": in_reference - in_library,
    "exported but not described": in_library - in_reference,
}
for complaint, names in complaints.items():
    for name in sorted(names):
        print(f"{complaint}: {name}")
print(f"{len(in_reference)} functions described")
sys.exit(any(complaints.values()) or not in_reference)
