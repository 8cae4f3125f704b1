# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Arguments are refused rather than clamped or cut, as ctypes would do in silence."""

import operator
from collections.abc import Iterable, Mapping
from typing import Any, TypeVar

from veltrasdk.errors import ArgumentError

#: What stands for bytes: a buffer, or integers from 0 to 255.
BytesLike = bytes | bytearray | memoryview | Iterable[int]

MAX_LENGTH = 0xFFFF  # the length fields of the protocol have 16 bits
MAX_REGISTER_BYTES = 4

Value = TypeVar("Value")


def number(operation: str, name: str, value: int, maximum: int, minimum: int = 0) -> int:
    """An integer between two limits."""
    try:
        value = operator.index(value)
    except TypeError:
        raise ArgumentError(operation, f"{name} must be an integer, not {value!r}") from None
    if not minimum <= value <= maximum:
        limits = f"{minimum} to {maximum}" if maximum < 256 else f"{minimum} to {maximum:,}"
        raise ArgumentError(operation, f"{name} must be {limits}, not {value}")
    return value


def address(operation: str, value: int) -> int:
    """A 7-bit address, unshifted."""
    try:
        return number(operation, "the address", value, 0x7F)
    except ArgumentError:
        raise ArgumentError(operation, f"the address must be 0x00 to 0x7F, not {value!r}") from None


def data(operation: str, value: BytesLike, maximum: int = MAX_LENGTH) -> bytes:
    """Bytes, of which the protocol can count so many."""
    if isinstance(value, (str, int)):
        raise ArgumentError(operation, f"the data must be bytes, not {value!r}")
    try:
        made = bytes(value)
    except (TypeError, ValueError) as problem:
        raise ArgumentError(operation, f"the data must be bytes: {problem}") from None
    if len(made) > maximum:
        raise ArgumentError(operation, f"{len(made):,} bytes are too many: at most {maximum:,}")
    return made


def register(operation: str, value: int | BytesLike | None, size: int) -> bytes:
    """A register's address as it goes over the bus: an integer of `size` bytes, or bytes as they are."""
    if value is None:
        return b""
    if not isinstance(value, int):
        return data(operation, value, MAX_REGISTER_BYTES)
    number(operation, "register_bytes", size, MAX_REGISTER_BYTES, 1)
    if not 0 <= value < 1 << 8 * size:
        cure = " (see register_bytes)" if size < MAX_REGISTER_BYTES else ""
        raise ArgumentError(operation, f"register {value:#x} does not fit {size} byte(s){cure}")
    return value.to_bytes(size, "big")


def word(operation: str, name: str, value: object, meanings: Mapping[Any, Value]) -> Value:
    """What one of a few words stands for."""
    try:
        return meanings[value]
    except (KeyError, TypeError):
        words = ", ".join(map(str, meanings))
        raise ArgumentError(operation, f"{name} must be one of {words}, not {value!r}") from None


def millivolts(operation: str, volts: float) -> int:
    """A voltage in mV."""
    if isinstance(volts, (int, float)) and 0 <= volts <= 65.535:
        return round(volts * 1000)
    raise ArgumentError(operation, f"the voltage must be in volts, 0 to 65.535, not {volts!r}")
