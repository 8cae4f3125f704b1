# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""I2C in the shape of the package smbus2, so that drivers written for it run over the adapter.

>>> from veltrasdk.compat import smbus2
>>> with veltrasdk.Adapter(voltage=3.3) as adapter:
...     smbus2.use(adapter, pull_up="4k7")
...     with smbus2.SMBus(0) as bus:
...         bus.read_byte_data(0x50, 0)
72

Without :func:`use` the first :class:`SMBus` opens the adapter that ``VELTRA_DEVICE`` names by its serial number
or path, or else the first one, and switches the I/O voltage of ``VELTRA_VOLTAGE`` on, in volts, if it is set;
the last to close closes it. A bus has no pull-up resistors then but its own.

Errors are :class:`OSError`: ``EREMOTEIO`` for what nobody acknowledges, ``ETIMEDOUT`` for a response that does
not come, ``ENODEV`` for an adapter that has gone, ``EINVAL`` for an argument, ``EIO`` for anything else.

The adapter cannot end a read by its first byte: :meth:`SMBus.read_block_data` and
:meth:`SMBus.block_process_call` read 33 bytes, whatever the target's count. There are no 10-bit addresses and
no packet error codes.
"""

import ctypes
import errno
import os
import threading
from collections.abc import Callable, Sequence
from functools import wraps
from typing import Any, Concatenate, ParamSpec, TypeVar

import veltrasdk
from veltrasdk.compat._smbus2_messages import FUNCS, I2C_M_RD, I2cFunc, i2c_msg
from veltrasdk.i2c import I2cBus, Read, Write

__all__ = ["FUNCS", "I2C_M_RD", "I2C_SMBUS_BLOCK_MAX", "I2cFunc", "MAX_MESSAGES", "SMBus", "i2c_msg", "use"]

I2C_SMBUS_BLOCK_MAX = 32
MAX_MESSAGES = 42
MAX_MESSAGE_BYTES = 8192

Given = ParamSpec("Given")
Result = TypeVar("Result")


class _Source:
    """The adapter that buses without one of their own share."""

    def __init__(self) -> None:
        self.lock = threading.Lock()
        self.users = 0
        self.given: veltrasdk.Adapter | None = None
        self.opened: veltrasdk.Adapter | None = None
        self.pull_up: str | None = None
        self.clock = 400_000

    def after_fork(self) -> None:
        """In the child: another thread of the parent may have held the lock."""
        self.lock = threading.Lock()

    def enter(self) -> veltrasdk.Adapter:
        """The adapter for one more user."""
        with self.lock:
            if self.given is not None:
                return self.given
            if self.opened is None:
                self.opened = _open()
            self.users += 1
            return self.opened

    def leave(self, adapter: veltrasdk.Adapter) -> None:
        """The last to leave an adapter that was opened here closes it."""
        with self.lock:
            if adapter is not self.opened:
                return
            self.users -= 1
            if not self.users:
                self.opened.close()
                self.opened = None


_source = _Source()
os.register_at_fork(after_in_child=_source.after_fork)


def _open() -> veltrasdk.Adapter:
    device, volts = os.environ.get("VELTRA_DEVICE") or None, os.environ.get("VELTRA_VOLTAGE")
    try:
        voltage = float(volts) if volts else None
    except ValueError:
        raise veltrasdk.ArgumentError("open", f"VELTRA_VOLTAGE must be in volts, such as 3.3, not {volts!r}") from None
    if any(device == adapter.path for adapter in veltrasdk.adapters()):
        return veltrasdk.Adapter(path=device, voltage=voltage)
    return veltrasdk.Adapter(device, voltage=voltage)


def use(adapter: veltrasdk.Adapter | None, *, pull_up: str | None = None, clock: int = 400_000) -> None:
    """Says which adapter every :class:`SMBus` that is opened from now on uses.

    :param adapter: an open one, which nobody but its owner closes; None opens one again when it is needed.
    :param pull_up: its pull-up resistors, as :meth:`veltrasdk.Adapter.i2c` takes them; None leaves them.
    :param clock: the clock rate in Hz.
    """
    with _source.lock:
        _source.given, _source.pull_up, _source.clock = adapter, pull_up, clock


def _as_os_error(
    method: Callable[Concatenate["SMBus", Given], Result],
) -> Callable[Concatenate["SMBus", Given], Result]:
    """The method, whose errors are those of the kernel's interface."""

    @wraps(method)
    def call(self: "SMBus", /, *positional: Given.args, **named: Given.kwargs) -> Result:
        try:
            return method(self, *positional, **named)
        except veltrasdk.ArgumentError as problem:
            raise OSError(errno.EINVAL, str(problem)) from problem
        except veltrasdk.VeltraError as problem:
            if isinstance(problem, OSError):
                raise
            raise OSError(errno.EIO, str(problem)) from problem

    return call


def _block(data: Sequence[int]) -> bytes:
    if len(data) > I2C_SMBUS_BLOCK_MAX:
        raise ValueError(f"Data length cannot exceed {I2C_SMBUS_BLOCK_MAX} bytes")
    return bytes(byte & 0xFF for byte in data)


def _counted(reply: bytes) -> list[int]:
    """A block that begins with its length."""
    if not 1 <= reply[0] <= I2C_SMBUS_BLOCK_MAX:
        raise OSError(errno.EPROTO, f"the target announces a block of {reply[0]} bytes: 1 to {I2C_SMBUS_BLOCK_MAX}")
    return list(reply[1 : 1 + reply[0]])


class SMBus:
    """One of the adapter's I2C buses.

    Values are cut to their width, as the kernel's interface does. ``force`` is accepted and does nothing: there
    is no kernel driver that could have an address to itself.

    :param bus: 0 or 1, or a path that ends so, such as ``"/dev/i2c-0"``; None opens none yet.
    """

    def __init__(self, bus: int | str | None = None, force: bool = False) -> None:
        self.force = force
        self.address: int | None = None
        self.funcs = I2cFunc(0)
        self._adapter: veltrasdk.Adapter | None = None
        self._bus: I2cBus | None = None
        if bus is not None:
            self.open(bus)

    def __enter__(self) -> "SMBus":
        return self

    def __exit__(self, exc_type: object, exc_val: object, exc_tb: object) -> None:
        self.close()

    @_as_os_error
    def open(self, bus: int | str) -> None:
        """Opens a bus: 0 or 1, or a path that ends so."""
        if not isinstance(bus, (int, str)):
            raise TypeError(f"Unexpected type(bus)={type(bus)}")
        number = bus.rpartition("-")[2] if isinstance(bus, str) else str(int(bus))
        if number not in ("0", "1"):
            raise FileNotFoundError(errno.ENOENT, "the adapter has the buses 0 and 1", str(bus))
        self.close()
        adapter = _source.enter()
        try:
            self._bus = adapter.i2c(int(number), _source.clock, _source.pull_up)
        except BaseException:
            _source.leave(adapter)
            raise
        self._adapter = adapter
        self.funcs = FUNCS

    def close(self) -> None:
        """Closes the bus; on a closed one nothing happens."""
        adapter, self._adapter, self._bus = self._adapter, None, None
        if adapter is not None:
            _source.leave(adapter)

    def enable_pec(self, enable: bool = True) -> None:
        """Packet error codes: OSError, as the adapter has none, unless they are switched off."""
        if enable:
            raise OSError(errno.EOPNOTSUPP, "SMBUS_PEC is not a feature")

    @property
    def pec(self) -> int:
        """Whether packet error codes are on, which they never are; setting does what :meth:`enable_pec` does."""
        return 0

    @pec.setter
    def pec(self, enable: int) -> None:
        self.enable_pec(bool(enable))

    def _at(self, address: int) -> tuple[I2cBus, int]:
        if self._bus is None:
            raise OSError(errno.EBADF, "the bus is not open")
        if not 0 <= address <= 0x7F:
            raise OSError(errno.EINVAL, f"the address must be 0x00 to 0x7F, not {address:#x}")
        self.address = address
        return self._bus, address

    @_as_os_error
    def write_quick(self, i2c_addr: int, force: bool | None = None) -> None:  # pylint: disable=unused-argument
        """Writes nothing, and tells whether the address is acknowledged."""
        bus, address = self._at(i2c_addr)
        bus.write(address)

    @_as_os_error
    def read_byte(self, i2c_addr: int, force: bool | None = None) -> int:  # pylint: disable=unused-argument
        """Reads one byte."""
        bus, address = self._at(i2c_addr)
        return bus.read(address, 1)[0]

    @_as_os_error
    def write_byte(
        self, i2c_addr: int, value: int, force: bool | None = None  # pylint: disable=unused-argument
    ) -> None:
        """Writes one byte."""
        bus, address = self._at(i2c_addr)
        bus.write(address, [value & 0xFF])

    @_as_os_error
    def read_byte_data(
        self, i2c_addr: int, register: int, force: bool | None = None  # pylint: disable=unused-argument
    ) -> int:
        """Reads one byte of a register."""
        bus, address = self._at(i2c_addr)
        return bus.read(address, 1, register & 0xFF)[0]

    @_as_os_error
    def write_byte_data(
        self, i2c_addr: int, register: int, value: int, force: bool | None = None  # pylint: disable=unused-argument
    ) -> None:
        """Writes one byte to a register."""
        bus, address = self._at(i2c_addr)
        bus.write(address, [register & 0xFF, value & 0xFF])

    @_as_os_error
    def read_word_data(
        self, i2c_addr: int, register: int, force: bool | None = None  # pylint: disable=unused-argument
    ) -> int:
        """Reads two bytes of a register, low byte first."""
        bus, address = self._at(i2c_addr)
        return int.from_bytes(bus.read(address, 2, register & 0xFF), "little")

    @_as_os_error
    def write_word_data(
        self, i2c_addr: int, register: int, value: int, force: bool | None = None  # pylint: disable=unused-argument
    ) -> None:
        """Writes two bytes to a register, low byte first."""
        bus, address = self._at(i2c_addr)
        bus.write(address, [register & 0xFF, value & 0xFF, value >> 8 & 0xFF])

    @_as_os_error
    def process_call(
        self, i2c_addr: int, register: int, value: int, force: bool | None = None  # pylint: disable=unused-argument
    ) -> int:
        """Writes two bytes to a register and reads two, low byte first."""
        bus, address = self._at(i2c_addr)
        sent = Write(address, [register & 0xFF, value & 0xFF, value >> 8 & 0xFF])
        return int.from_bytes(bus.transfer(sent, Read(address, 2))[0], "little")

    @_as_os_error
    def read_block_data(
        self, i2c_addr: int, register: int, force: bool | None = None  # pylint: disable=unused-argument
    ) -> list[int]:
        """Reads a block that the target announces, of 1 to 32 bytes."""
        bus, address = self._at(i2c_addr)
        return _counted(bus.read(address, 1 + I2C_SMBUS_BLOCK_MAX, register & 0xFF))

    @_as_os_error
    def write_block_data(
        self,
        i2c_addr: int,
        register: int,
        data: Sequence[int],
        force: bool | None = None,  # pylint: disable=unused-argument
    ) -> None:
        """Writes a block with its length in front, at most 32 bytes."""
        bus, address = self._at(i2c_addr)
        block = _block(data)
        bus.write(address, bytes([register & 0xFF, len(block)]) + block)

    @_as_os_error
    def block_process_call(
        self,
        i2c_addr: int,
        register: int,
        data: Sequence[int],
        force: bool | None = None,  # pylint: disable=unused-argument
    ) -> list[int]:
        """Writes a block with its length in front and reads one, each at most 32 bytes."""
        bus, address = self._at(i2c_addr)
        block = _block(data)
        sent = Write(address, bytes([register & 0xFF, len(block)]) + block)
        return _counted(bus.transfer(sent, Read(address, 1 + I2C_SMBUS_BLOCK_MAX))[0])

    @_as_os_error
    def read_i2c_block_data(
        self, i2c_addr: int, register: int, length: int, force: bool | None = None  # pylint: disable=unused-argument
    ) -> list[int]:
        """Reads so many bytes of a register, at most 32."""
        if length > I2C_SMBUS_BLOCK_MAX:
            raise ValueError(f"Desired block length over {I2C_SMBUS_BLOCK_MAX} bytes")
        bus, address = self._at(i2c_addr)
        return list(bus.read(address, length, register & 0xFF))

    @_as_os_error
    def write_i2c_block_data(
        self,
        i2c_addr: int,
        register: int,
        data: Sequence[int],
        force: bool | None = None,  # pylint: disable=unused-argument
    ) -> None:
        """Writes bytes to a register, at most 32."""
        bus, address = self._at(i2c_addr)
        bus.write(address, bytes([register & 0xFF]) + _block(data))

    @_as_os_error
    def i2c_rdwr(self, *i2c_msgs: Any) -> None:
        """Runs up to 42 messages of at most 8,192 bytes as one transaction; reads are stored in the messages."""
        if not 1 <= len(i2c_msgs) <= MAX_MESSAGES:
            raise OSError(errno.EINVAL, f"{len(i2c_msgs)} messages: 1 to {MAX_MESSAGES} are possible")
        steps: list[Read | Write] = []
        bus = None
        for message in i2c_msgs:
            bus, address = self._at(message.addr)
            if message.flags & ~I2C_M_RD:
                raise OSError(errno.EOPNOTSUPP, f"flags {message.flags:#06x}: only reading is possible")
            if message.len > MAX_MESSAGE_BYTES:
                raise OSError(errno.EINVAL, f"{message.len} bytes in a message: at most {MAX_MESSAGE_BYTES}")
            read = message.flags & I2C_M_RD
            steps.append(Read(address, message.len) if read else Write(address, bytes(message)))
        assert bus is not None
        results = iter(bus.transfer(*steps))
        for message in i2c_msgs:
            if message.flags & I2C_M_RD:
                ctypes.memmove(message.buf, next(results), message.len)
