#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Writes veltrasdk/_native.py: what the C headers declare, as ctypes has it.

usage: generate.py [--check]

The headers are read by clang, so that types, values and texts are those that a C compiler sees. With
--check nothing is written, and the exit status says whether the file is what the headers make it.
"""

import difflib
import json
import pathlib
import re
import subprocess
import sys
import textwrap
from collections.abc import Iterator
from typing import Any

ROOT = pathlib.Path(__file__).resolve().parents[1]
OUTPUT = ROOT / "python/veltrasdk/_native.py"

Node = dict[str, Any]

SCALARS = {
    "uint8_t": "c_uint8",
    "uint16_t": "c_uint16",
    "uint32_t": "c_uint32",
    "uint64_t": "c_uint64",
    "int16_t": "c_int16",
    "int32_t": "c_int32",
    "int": "c_int",
    "size_t": "c_size_t",
    "_Bool": "c_bool",
    "bool": "c_bool",
    "char": "c_char",
    "unsigned char": "c_uint8",
}
FLAGS = {"I3cTransferFlags"}  # an enumeration whose values may be combined

HEAD = '''# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# Written by python/generate.py from the public C headers. Do not edit: change those and run it.
# pylint: disable=invalid-name
"""What the C headers declare: enumerations, records and functions."""

from ctypes import (
    CDLL,
    CFUNCTYPE,
    POINTER,
    Structure,
    {scalars},
    c_char_p,
    c_void_p,
)
from enum import IntEnum, IntFlag
from typing import Any

VERSION = "{version}"
'''

TAIL = '''

def declare(library: CDLL) -> None:
    """Gives every function of the library its types; AttributeError when it has not got one."""
    for name, (result, arguments) in FUNCTIONS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
'''


def syntax_tree() -> list[Node]:
    """What the headers declare, in their order."""
    command = ["clang", "-std=c11", f"-I{ROOT}/include", "-fsyntax-only", "-Xclang", "-ast-dump=json", "-x", "c", "-"]
    run = subprocess.run(
        command, input="#include <veltrasdk/veltrasdk.h>\n", capture_output=True, text=True, check=True
    )
    nodes: list[Node] = json.loads(run.stdout)["inner"]
    return nodes


def text_of(node: Node) -> str:
    """The words of a node's comment."""
    if node["kind"] == "TextComment":
        return str(node["text"]).strip()
    if node["kind"] == "FullComment":
        # The first paragraph is the summary.
        return next(filter(None, map(text_of, node.get("inner", []))), "")
    return " ".join(filter(None, map(text_of, node.get("inner", []))))


def comment(node: Node) -> str:
    """The first paragraph of a declaration's documentation, with C's null as Python's None."""
    found = [inner for inner in node.get("inner", []) if inner["kind"] == "FullComment"]
    return re.sub(r"\s+", " ", text_of(found[0])) if found else ""


def enumeration_text(name: str) -> str:
    """An enumeration's documentation, which the macro that opens it hides from clang."""
    for header in sorted((ROOT / "include/veltrasdk").glob("*.h")):
        found = re.search(rf"/\*\*((?:(?!\*/).)*)\*/\nVELTRASDK_ENUM\({name},", header.read_text(), re.DOTALL)
        if found:
            summary = found[1].split("\n *\n")[0]
            return re.sub(r"\s+\*?\s*", " ", summary).strip()
    raise ValueError(f"no header documents {name}")


def value_of(node: Node) -> int:
    """The value of an enumerator."""
    for inner in node["inner"]:
        if inner["kind"] == "ConstantExpr":
            return int(inner["value"])
    raise ValueError(f"{node['name']} has no value of its own")


def member_name(enumeration: str, enumerator: str) -> str:
    """The enumerator in Python: upper case, without its type; a number behind the type's last word."""
    word = enumerator.removeprefix(enumeration + "_").replace("MHz", "MHZ").replace("mA", "MA")
    name = re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", word).upper()
    if name[0].isdigit():
        last_word = re.findall("[A-Z][a-z0-9]*", enumeration)[-1]
        name = f"{last_word.upper()}_{name}"
    return name


class Headers:
    """The declarations that the package needs, turned into Python."""

    def __init__(self) -> None:
        self.types = dict(SCALARS)
        self.used: set[str] = {"c_uint8"}
        self.enumerations: list[str] = []
        self.records: list[str] = []
        self.functions: list[str] = []
        self.statuses: list[str] = []
        self.read(syntax_tree())

    def read(self, nodes: list[Node]) -> None:
        """Takes in what is ours, in the order of the headers."""
        for before, node in zip(nodes, nodes[1:]):
            if node["kind"] == "EnumDecl" and "name" not in node and before["kind"] == "TypedefDecl":
                self.add_enumeration(before, node)
            elif node["kind"] == "RecordDecl" and node.get("completeDefinition") and self.is_ours(node):
                self.add_record(node)
            elif node["kind"] == "TypedefDecl" and node["name"].endswith("Callback"):
                self.add_callback(node)
            elif node["kind"] == "FunctionDecl" and node["name"].startswith("VeltraSDK_"):
                if node.get("storageClass") != "static":
                    self.add_function(node)

    @staticmethod
    def is_ours(node: Node) -> bool:
        """Whether a record stands in our headers: those of the system have other names."""
        return str(node.get("name", "")).startswith(("VeltraSDK_", "I3c", "Gpio", "Uart", "Notification"))

    def ctype(self, text: str) -> str:
        """A C type as ctypes has it."""
        text = text.removeprefix("struct ").strip()
        if array := re.fullmatch(r"(.*?)\s*\[(\d+)\]", text):
            return f"{self.ctype(array[1])} * {array[2]}"
        if text.endswith("*"):
            target = text[:-1].strip()
            constant = target.startswith("const ")
            target = target.removeprefix("const ")
            if target == "VeltraSDK_Handle":
                return "c_void_p"
            if target == "char" or (constant and self.types.get(target) == "c_uint8"):
                return "c_char_p"
            return f"POINTER({self.ctype(target)})"
        found = self.types[text]
        if found.startswith("c_"):
            self.used.add(found)
        return found

    def add_enumeration(self, typedef: Node, node: Node) -> None:
        """An enumeration: a type, and the list of constants behind it."""
        name = typedef["name"]
        self.types[name] = self.types[typedef["type"]["qualType"]]
        lines = [f"\nclass {name}({'IntFlag' if name in FLAGS else 'IntEnum'}):"]
        lines += docstring(enumeration_text(name))
        for constant in node["inner"]:
            if constant["kind"] != "EnumConstantDecl":
                continue
            value, member = value_of(constant), member_name(name, constant["name"])
            lines += wrapped(comment(constant), "    #: ")
            number = str(value) if value < 10 else f"0x{value:02X}"
            lines.append(f"    {member} = {number}")
            if name in ("ResultCode", "VeltraStatus"):
                self.statuses.append(f'    {number}: "{constant["name"].removeprefix(name + "_")}",')
        self.enumerations.append("\n".join(lines))

    def add_record(self, node: Node) -> None:
        """A record, laid out as the C compiler does."""
        self.types[node["name"]] = node["name"]
        fields = [field for field in node["inner"] if field["kind"] == "FieldDecl"]
        lines = [f"\nclass {node['name']}(Structure):"]
        # The comment in front of `typedef struct` belongs to the record.
        lines += docstring(comment(node) or f"The record {node['name']}.")
        lines += ["    _fields_ = ["]
        for field in fields:
            lines.append(f'        ("{field["name"]}", {self.ctype(field["type"]["qualType"])}),')
        self.records.append("\n".join([*lines, "    ]"]))

    def add_callback(self, node: Node) -> None:
        """The type of a function that C calls."""
        self.types[node["name"]] = node["name"]
        self.records.append(f"\n{node['name']} = CFUNCTYPE(None, POINTER(Notification))")

    def add_function(self, node: Node) -> None:
        """A function's result and arguments."""
        result = node["type"]["qualType"].split("(")[0].strip()
        arguments = [p["type"]["qualType"] for p in node.get("inner", []) if p["kind"] == "ParmVarDecl"]
        shown = "None" if result == "void" else self.ctype(result)
        listed = ", ".join(self.ctype(argument) for argument in arguments)
        line = f'    "{node["name"]}": ({shown}, [{listed}]),'
        if len(line) > 100:
            listed = "".join(f"            {self.ctype(argument)},\n" for argument in arguments)
            line = f'    "{node["name"]}": (\n        {shown},\n        [\n{listed}        ],\n    ),'
        self.functions.append(line)


def wrapped(text: str, prefix: str) -> Iterator[str]:
    """A text in lines that fit."""
    yield from textwrap.wrap(text, 100, initial_indent=prefix, subsequent_indent=prefix)


def docstring(text: str) -> Iterator[str]:
    """A class's own, with an empty line behind it."""
    lines = textwrap.wrap(text, 90)
    if len(lines) == 1:
        yield f'    """{lines[0]}"""'
    else:
        yield f'    """{lines[0]}'
        yield from (f"    {line}" for line in lines[1:])
        yield '    """'
    yield ""


def version() -> str:
    """The version, written once in CMakeLists.txt."""
    found = re.search(r"^project\(veltrasdk VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)
    assert found, "CMakeLists.txt names no version"
    return found[1]


def generated() -> str:
    """The whole file."""
    headers = Headers()
    parts = [HEAD.format(version=version(), scalars=",\n    ".join(sorted(headers.used)))]
    parts += [f"\n{part}\n" for part in headers.enumerations + headers.records]
    parts += ["\n\n#: The names of all known result codes.\nSTATUS_NAMES: dict[int, str] = {\n"]
    parts += [line + "\n" for line in headers.statuses]
    parts += ["}\n\n#: Each function's result and arguments.\n"]
    parts += ["FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {\n", "\n".join(headers.functions), "\n}\n", TAIL]
    return "".join(parts)


def main(arguments: list[str]) -> int:
    """Writes the file, or compares it."""
    text = generated()
    if arguments == ["--check"]:
        lines = difflib.unified_diff(
            OUTPUT.read_text().splitlines(True), text.splitlines(True), str(OUTPUT), "what the headers say"
        )
        difference = "".join(lines)
        if difference:
            print(f"{difference}run python/generate.py", file=sys.stderr)
        return 1 if difference else 0
    OUTPUT.write_text(text)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
