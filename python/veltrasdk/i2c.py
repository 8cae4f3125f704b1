# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""I2C: a controller of the adapter, and what goes over its bus."""

import ctypes
from dataclasses import dataclass
from typing import TYPE_CHECKING

from veltrasdk import _checks
from veltrasdk._checks import BytesLike
from veltrasdk._link import buffer

if TYPE_CHECKING:
    from veltrasdk.adapter import Adapter

PULL_UPS = {"none": 0, "10k": 1, "4k7": 2, "2k2": 3}
#: A read may carry so many bytes to write in front of it.
MAX_REGISTER_BYTES = _checks.MAX_REGISTER_BYTES


@dataclass(frozen=True)
class Write:
    """A part of a transaction: bytes for a target.

    :ivar address: the target's address, 7 bits, unshifted.
    :ivar data: the bytes, at most 65,535.
    """

    address: int
    data: BytesLike = b""


@dataclass(frozen=True)
class Read:
    """A part of a transaction: bytes from a target.

    :ivar address: the target's address, 7 bits, unshifted.
    :ivar length: how many bytes, at most 65,535.
    """

    address: int
    length: int


class I2cBus:
    """An initialised I2C controller; made by :meth:`Adapter.i2c`.

    Addresses have 7 bits and are not shifted. An address that nobody acknowledges raises :class:`NackError`.
    """

    def __init__(
        self, adapter: "Adapter", bus: int, clock: int, pull_up: str | None, retry_busy: bool
    ) -> None:
        self._adapter = adapter
        self._link = adapter.link
        self._bus = _checks.number("i2c", "the bus", bus, 1)
        self._turns = adapter.bus_turns[self._bus]
        if pull_up is not None:
            self.set_pull_up(pull_up)
        self._set("ControllerInit", clock, retry_busy)

    def _set(self, function: str, clock: int, retry_busy: bool) -> None:
        rate = _checks.number("i2c", "the clock", clock, 0xFFFFFFFF, 1)
        with self._turns.alone():
            self._link.call("i2c.configure", "I2c" + function, self._bus, rate, bool(retry_busy), place=f"{rate:,} Hz")

    def configure(self, clock: int, *, retry_busy: bool = False) -> None:
        """Changes the clock rate, in Hz, and whether a busy target is waited out; see :meth:`Adapter.i2c`."""
        self._set("SetParameters", clock, retry_busy)

    def set_pull_up(self, pull_up: str) -> None:
        """Sets the adapter's pull-up resistors: ``"none"``, ``"10k"``, ``"4k7"`` or ``"2k2"``."""
        setting = _checks.word("i2c.pull_up", "pull_up", pull_up, PULL_UPS)
        self._link.call("i2c.pull_up", "I2cSetPullUpResistors", self._bus, setting, place=pull_up)

    def scan(self) -> list[int]:
        """The 7-bit addresses that are acknowledged, in ascending order."""
        return self._scan(False)[0]

    def scan_ten_bit(self) -> list[int]:
        """The 10-bit addresses that are acknowledged, in ascending order; no transfer reaches them."""
        return self._scan(True)[1]

    def _scan(self, ten_bit: bool) -> tuple[list[int], list[int]]:
        addresses, seven, ten = buffer(255), ctypes.c_uint8(), ctypes.c_uint8()
        outputs = addresses, len(addresses), ctypes.byref(seven), ctypes.byref(ten)
        with self._turns.shared():
            self._link.call("i2c.scan", "I2cScanBus", *outputs, self._bus, ten_bit, place=f"bus {self._bus}")
        found = bytes(addresses)
        places = range(seven.value, seven.value + 2 * ten.value, 2)
        return list(found[: seven.value]), [int.from_bytes(found[at : at + 2], "little") for at in places]

    def read(
        self, address: int, length: int, register: int | BytesLike | None = None, *, register_bytes: int = 1
    ) -> bytes:
        """Reads from a target.

        :param address: the target's address.
        :param length: how many bytes, at most 65,535.
        :param register: what is written first, behind which the read begins with a repeated START: a register
            address, most significant byte first, or up to 4 bytes as they are. None reads at once.
        :param register_bytes: how many bytes a register address has, 1 to 4.
        """
        first = _checks.register("i2c.read", register, register_bytes)
        with self._turns.shared():
            return self._read(_checks.address("i2c.read", address), first, length, False)

    def write(
        self, address: int, data: BytesLike = b"", register: int | BytesLike | None = None, *, register_bytes: int = 1
    ) -> None:
        """Writes to a target.

        :param address: the target's address.
        :param data: the bytes, at most 65,535; none asks for the acknowledge only.
        :param register: a register address that goes first, most significant byte first, or up to 4 bytes.
        :param register_bytes: how many bytes a register address has, 1 to 4.
        """
        first = _checks.register("i2c.write", register, register_bytes)
        with self._turns.shared():
            self._write(_checks.address("i2c.write", address), first, _checks.data("i2c.write", data), False)

    def transfer(self, *messages: Write | Read) -> list[bytes]:
        """Runs one transaction: a repeated START between its messages, a STOP behind the last.

        No other thread's operation on this bus comes between.

        :returns: what each :class:`Read` has read.
        """
        steps: list[tuple[int, bytes, int | None]] = []  # address, bytes to write, bytes to read
        for message in messages:
            address = _checks.address("i2c.transfer", message.address)
            if isinstance(message, Write):
                steps.append((address, _checks.data("i2c.transfer", message.data), None))
                continue
            length = _checks.number("i2c.transfer", "the length", message.length, _checks.MAX_LENGTH)
            # The adapter does a short write and the read behind it as one.
            before, data, read = steps[-1] if steps else (None, b"", None)
            if before == address and read is None and 1 <= len(data) <= MAX_REGISTER_BYTES:
                steps[-1] = address, data, length
            else:
                steps.append((address, b"", length))
        results = []
        with self._turns.alone():
            for place, (address, data, read) in enumerate(steps, 1):
                held = place < len(steps)
                if read is None:
                    self._write(address, b"", data, held)
                else:
                    results.append(self._read(address, data, read, held))
        return results

    def _read(self, address: int, first: bytes, length: int, held: bool) -> bytes:
        size = _checks.number("i2c.read", "the length", length, _checks.MAX_LENGTH)
        data = buffer(max(size, 1))  # null is refused, also for no bytes
        arguments = self._bus, address, first, len(first), size, data, held
        self._link.call("i2c.read", "I2cRead", *arguments, place=f"0x{address:02x}")
        return bytes(data)[:size]

    def _write(self, address: int, first: bytes, data: bytes, held: bool) -> None:
        arguments = self._bus, address, first, len(first), data, len(data), held
        self._link.call("i2c.write", "I2cWrite", *arguments, place=f"0x{address:02x}")
