# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What the package says about the library is what the headers say."""

import ctypes
import pathlib
import re
import subprocess
import sys

import pytest

from veltrasdk import _native
from veltrasdk._library import library

ROOT = pathlib.Path(__file__).resolve().parents[2]
PACKAGE = ROOT / "python/veltrasdk"

# Functions that the package does without, and why.
UNUSED = {
    "ConnectWithSerialNumber": "the package lists the adapters first, so as to say why one cannot be opened",
    "GetDeviceInfo": "GetUsbString hands out nothing that must be released",
    "SpiSetBusVoltage": "the request of I2cSetBusVoltage",
    "UartSetBusVoltage": "the request of I2cSetBusVoltage",
    "GpioSetVoltage": "the request of I2cSetBusVoltage",
    "onNotification": "no Python code runs on the library's thread",
    "notificationAsI3cHotJoin": "frames are decoded in Python, which reads no further than they reach",
    "notificationAsI3cIbi": "frames are decoded in Python",
    "notificationAsGpio": "frames are decoded in Python",
    "notificationAsUartRx": "frames are decoded in Python",
}
RECORDS = [value for value in vars(_native).values() if isinstance(value, type(ctypes.Structure))]


def sources() -> str:
    return "".join(file.read_text() for file in PACKAGE.rglob("*.py") if file.name != "_native.py")


def test_the_declarations_are_those_that_the_headers_make() -> None:
    subprocess.run([sys.executable, ROOT / "python/generate.py", "--check"], check=True)


@pytest.mark.parametrize("record", [record for record in RECORDS if hasattr(record, "_fields_")])
def test_a_record_is_laid_out_as_the_compiler_does(record: type[ctypes.Structure]) -> None:
    name = record.__name__
    checks = [f"_Static_assert(sizeof({name}) == {ctypes.sizeof(record)}, \"size\");"]
    for field, *_ in record._fields_:
        offset = getattr(record, field).offset
        checks.append(f"_Static_assert(offsetof({name}, {field}) == {offset}, \"{field}\");")
    program = "#include <veltrasdk/veltrasdk.h>\n" + "\n".join(checks)
    command = ["cc", f"-I{ROOT}/include", "-fsyntax-only", "-x", "c", "-"]
    subprocess.run(command, input=program, text=True, check=True)


def test_every_function_of_the_library_is_declared() -> None:
    listing = subprocess.run(
        ["nm", "--dynamic", "--defined-only", library()._name], capture_output=True, text=True, check=False
    ).stdout or subprocess.run(
        ["sh", "-c", 'nm --dynamic --defined-only "${LD_LIBRARY_PATH%%:*}/libveltrasdk.so.1"'],
        capture_output=True,
        text=True,
        check=True,
    ).stdout
    exported = set(re.findall(r" T (VeltraSDK_\w+)", listing))
    assert len(exported) > 70
    assert set(_native.FUNCTIONS) == exported


def test_every_function_is_used_or_named_here_with_the_reason() -> None:
    # A code's name in capitals is made of the method's name.
    text = sources()
    text += "".join(f'"{word.upper()}"' for word in re.findall(r'_(?:query|get_byte)\("(\w+)"', text))
    unused = {
        name.removeprefix("VeltraSDK_")
        for name in _native.FUNCTIONS
        if not re.search(rf'(VeltraSDK_|")(I2c|I3cCcc|)?{name.removeprefix("VeltraSDK_")}\b', text)
        and not re.search(rf'"{re.sub("^(VeltraSDK_)(I2c|I3cCcc)?", "", name)}"', text)
    }
    assert unused == set(UNUSED)


def test_every_known_result_has_the_name_of_its_enumerator() -> None:
    for enumeration in (_native.ResultCode, _native.VeltraStatus):
        for member in enumeration:
            assert _native.STATUS_NAMES[member].upper() == member.name.replace("_", "")
