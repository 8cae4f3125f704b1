#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that the built reference leaves nothing of the public interface undescribed:
check_reference.py XML_DIRECTORY

Doxygen warns of undocumented functions and classes, but not of undocumented enumerators, nor of a
description that is there and empty.
"""

import collections
import pathlib
import sys
import xml.etree.ElementTree

DESCRIPTIONS = ("briefdescription", "detaileddescription")
DESCRIBED = {"function", "enum", "variable", "typedef", "define"}


def is_described(element):
    return any("".join(part.itertext()).strip() for name in DESCRIPTIONS for part in element.findall(name))


def parameter_problems(function):
    described = {
        name.text
        for item in function.iterfind(".//parameterlist[@kind='param']/parameteritem")
        if "".join(item.find("parameterdescription").itertext()).strip()
        for name in item.iter("parametername")
    }
    for number, parameter in enumerate(function.findall("param"), 1):
        name = parameter.findtext("declname")
        if parameter.findtext("type") != "void" and name not in described:
            yield f"parameter {name or number} is not described"


def return_problems(function):
    returned = "".join(function.find("type").itertext()).strip()
    sections = function.iterfind(".//simplesect[@kind='return']")
    if returned not in ("", "void") and not any("".join(section.itertext()).strip() for section in sections):
        yield "the return value is not described"


def problems_of(member, counts):
    counts[member.get("kind")] += 1
    if not is_described(member):
        yield "not described"
    if member.find(".//orderedlist") is not None:
        yield "a number that ends a sentence at the beginning of a line is taken for a list's"
    if member.get("kind") == "function":
        yield from parameter_problems(member)
        yield from return_problems(member)
    for enumerator in member.findall("enumvalue"):
        counts["enumerator"] += 1
        if not is_described(enumerator):
            yield f"{enumerator.findtext('name')} is not described"


def public_members(directory):
    """Yields (where, member), each once: a file repeats the members of its groups."""
    seen = set()
    for file in sorted(pathlib.Path(directory).glob("*.xml")):
        for compound in xml.etree.ElementTree.parse(file).iter("compounddef"):
            for member in compound.iter("memberdef"):
                deleted = member.findtext("argsstring", "").endswith("=delete")
                if member.get("prot") != "public" or member.get("kind") not in DESCRIBED or deleted:
                    continue
                if member.get("id") not in seen:
                    seen.add(member.get("id"))
                    yield f"{compound.findtext('compoundname')}: {member.findtext('name')}", member


counted = collections.Counter()
complaints = [
    f"{where}: {problem}"
    for where, member in public_members(sys.argv[1])
    for problem in problems_of(member, counted)
]
print("\n".join(complaints) or ", ".join(f"{kind} {number}" for kind, number in sorted(counted.items())))
sys.exit(bool(complaints) or not {"function", "enumerator", "variable", "typedef"} <= set(counted))
