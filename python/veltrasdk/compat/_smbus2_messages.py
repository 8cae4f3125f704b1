# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What a bus can do and what it carries, in the shape of the package smbus2."""

import ctypes
from collections.abc import Iterator, Sequence
from enum import IntFlag

I2C_M_RD = 0x0001


class I2cFunc(IntFlag):
    """What a bus can do; ``SMBus.funcs`` has them."""

    I2C = 0x00000001
    ADDR_10BIT = 0x00000002
    PROTOCOL_MANGLING = 0x00000004
    SMBUS_PEC = 0x00000008
    NOSTART = 0x00000010
    SLAVE = 0x00000020
    SMBUS_BLOCK_PROC_CALL = 0x00008000
    SMBUS_QUICK = 0x00010000
    SMBUS_READ_BYTE = 0x00020000
    SMBUS_WRITE_BYTE = 0x00040000
    SMBUS_READ_BYTE_DATA = 0x00080000
    SMBUS_WRITE_BYTE_DATA = 0x00100000
    SMBUS_READ_WORD_DATA = 0x00200000
    SMBUS_WRITE_WORD_DATA = 0x00400000
    SMBUS_PROC_CALL = 0x00800000
    SMBUS_READ_BLOCK_DATA = 0x01000000
    SMBUS_WRITE_BLOCK_DATA = 0x02000000
    SMBUS_READ_I2C_BLOCK = 0x04000000
    SMBUS_WRITE_I2C_BLOCK = 0x08000000
    SMBUS_HOST_NOTIFY = 0x10000000

    SMBUS_BYTE = 0x00060000
    SMBUS_BYTE_DATA = 0x00180000
    SMBUS_WORD_DATA = 0x00600000
    SMBUS_BLOCK_DATA = 0x03000000
    SMBUS_I2C_BLOCK = 0x0C000000
    SMBUS_EMUL = 0x0EFF0008


FUNCS = I2cFunc(0x0FFF8001)


class i2c_msg(ctypes.Structure):  # pylint: disable=invalid-name
    """A message of :meth:`SMBus.i2c_rdwr`; made by :meth:`read` or :meth:`write`."""

    _fields_ = [
        ("addr", ctypes.c_uint16),
        ("flags", ctypes.c_uint16),
        ("len", ctypes.c_uint16),
        ("buf", ctypes.POINTER(ctypes.c_char)),
    ]

    def __iter__(self) -> Iterator[int]:
        return iter(bytes(self))

    def __len__(self) -> int:
        return int(self.len)

    def __bytes__(self) -> bytes:
        return ctypes.string_at(self.buf, self.len)

    def __repr__(self) -> str:
        return f"i2c_msg({self.addr},{self.flags},{bytes(self)!r})"

    def __str__(self) -> str:
        return bytes(self).decode(errors="ignore")

    @staticmethod
    def read(address: int, length: int) -> "i2c_msg":
        """A message that reads so many bytes from a target."""
        return _message(address, I2C_M_RD, ctypes.create_string_buffer(length), length)

    @staticmethod
    def write(address: int, buf: str | bytes | Sequence[int]) -> "i2c_msg":
        """A message that writes bytes to a target; of a string, its characters' numbers."""
        data = bytes(map(ord, buf)) if isinstance(buf, str) else bytes(buf)
        return _message(address, 0, ctypes.create_string_buffer(data, len(data)), len(data))


def _message(address: int, flags: int, buf: "ctypes.Array[ctypes.c_char]", length: int) -> i2c_msg:
    return i2c_msg(address, flags, length, ctypes.cast(buf, ctypes.POINTER(ctypes.c_char)))
