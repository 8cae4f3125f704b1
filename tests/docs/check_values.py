#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Checks that the page of the virtual adapter's values leaves nothing out that the public headers leave
to the adapter: check_values.py HEADERS PAGE

Every enumerator that can be sent has a row with its value, in the table of its enumeration; every argument
whose meaning is the adapter's has one with the operations that take it. The headers name no adapter.
"""

import pathlib
import re
import sys

# What the adapter is never sent.
NOT_SENT = {
    "NotificationKind": "told by the library",
    "ResultCode": "returned by the library",
    "VeltraStatus": "answered by the adapter",
}

headers = {path.name: path.read_text() for path in sorted(pathlib.Path(sys.argv[1]).iterdir())}
page = pathlib.Path(sys.argv[2]).read_text()
failures = []


def rows(table):
    for line in table.splitlines():
        yield [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]


def tables(first, second):
    """Yields the second cell of each table's head, and the rows below."""
    for head, body in re.findall(rf"^\| {first} \| ({second}) \|.*\n\|[-|]+\n((?:\|.*\n?)+)", page, re.M):
        yield head.strip("`"), rows(body)


def enumerators():
    for text in headers.values():
        code = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
        for name, body in re.findall(r"^VELTRASDK_ENUM\((\w+), \w+\)\{(.*?)\}", code, re.M | re.DOTALL):
            if name not in NOT_SENT:
                for enumerator, value in re.findall(r"(\w+) = (\w+)", body):
                    yield f"{enumerator}, {int(value, 0)} of {name}"


def enumerators_on_page():
    for enumeration, body in tables("Value", r"`\w+`"):
        for value, enumerator, meaning in body:
            if meaning:
                yield f"{enumerator.strip('`')}, {int(value, 0)} of {enumeration}"


def left_to_the_adapter():
    for text in headers.values():
        for comment, function in re.findall(r"/\*\*((?:(?!\*/).)*)\*/[^;(]*?\b(\w+)\(", text, re.DOTALL):
            words = " ".join(re.sub(r"^ *\*", "", comment, flags=re.M).split())
            for name, description in re.findall(r"@param(?:\[out\])? (\w+) ((?:(?!@param).)*)", words):
                if "meaning is the adapter's" in description:
                    yield f"{name} of {function.removeprefix('VeltraSDK_').lower()}"


def left_on_page():
    for _, body in tables("Operations", "Argument"):
        for operations, argument, meaning in body:
            if meaning:
                for operation in re.findall(r"`(\w+)`", operations):
                    yield f"{argument.strip('`')} of {operation.lower()}"


def compare(declared, listed):
    declared, listed = set(declared), list(listed)
    failures.extend(f"the page lacks {entry}" for entry in sorted(declared.difference(listed)))
    failures.extend(f"the headers lack {entry}" for entry in sorted(set(listed) - declared))
    failures.extend(f"twice on the page: {entry}" for entry in sorted(set(listed)) if listed.count(entry) > 1)
    if not declared:
        failures.append("nothing was found to be compared")
    return len(declared)


numbers = compare(enumerators(), enumerators_on_page()), compare(left_to_the_adapter(), left_on_page())
for name, text in headers.items():
    if re.search(r"virtual\W+adapter", text, re.IGNORECASE):
        failures.append(f"{name} speaks of the virtual adapter, whose meanings stand on the page")

print("\n".join(failures) or "{} enumerators, {} arguments".format(*numbers))
sys.exit(bool(failures))
