# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""I3C: the controller, its bus and the targets on it."""

import ctypes
from collections.abc import Iterable
from dataclasses import dataclass
from typing import TYPE_CHECKING

from veltrasdk import _checks
from veltrasdk._checks import BytesLike
from veltrasdk._link import Link, buffer
from veltrasdk._native import (
    I2cTransferRate,
    I3cDriveStrength,
    I3cOpenDrainTransferRate,
    I3cPushPullRate,
    I3cTargetConfiguration,
    I3cTargetInfo,
    I3cTransferFlags,
)
from veltrasdk._turns import Turns
from veltrasdk.ccc import BroadcastCcc, TargetCcc

if TYPE_CHECKING:
    from veltrasdk.adapter import Adapter

MAX_TARGETS = 255
EVENT_INTERRUPT = 0x01
PID_BYTES = 6


@dataclass(frozen=True)
class I3cRecord:
    """What the controller is to know of a target before it initialises the bus.

    :ivar static_address: the target's static address, 7 bits; 0 when it has none.
    :ivar dynamic_address: the address to assign, 7 bits; 0 leaves the choice to the controller.
    :ivar pid: its 48-bit provisioned identifier; 0 when it is found by its static address.
    :ivar max_write: its maximum write length in bytes; 0 leaves it.
    :ivar max_read: its maximum read length in bytes; 0 leaves it.
    :ivar max_ibi_payload: the maximum size of its in-band interrupts' payload in bytes; 0 leaves it.
    :ivar configuration: how the controller treats it.
    """

    static_address: int = 0
    dynamic_address: int = 0
    pid: int = 0
    max_write: int = 0
    max_read: int = 0
    max_ibi_payload: int = 0
    configuration: I3cTargetConfiguration = I3cTargetConfiguration.ACCEPT_IBI

    def native(self) -> I3cTargetInfo:
        """The record as the library takes it."""
        operation = "i3c.init"
        pid = _checks.number(operation, "the pid", self.pid, (1 << 8 * PID_BYTES) - 1)
        return I3cTargetInfo(
            _checks.address(operation, self.static_address),
            _checks.address(operation, self.dynamic_address),
            (ctypes.c_uint8 * PID_BYTES)(*pid.to_bytes(PID_BYTES, "big")),
            0,
            0,
            _checks.number(operation, "max_write", self.max_write, 0xFFFF),
            _checks.number(operation, "max_read", self.max_read, 0xFFFF),
            _checks.number(operation, "max_ibi_payload", self.max_ibi_payload, 0xFF),
            _checks.number(operation, "the configuration", self.configuration, 0xFF),
        )


class I3cTarget:
    """A device of the bus, as the controller's table had it; made by :attr:`I3cBus.targets`.

    :ivar dynamic_address: its dynamic address, 7 bits; 0 for a legacy I2C device.
    :ivar static_address: its static address, 7 bits; 0 when it has none.
    :ivar pid: its 48-bit provisioned identifier.
    :ivar bcr: its bus characteristics register.
    :ivar dcr: its device characteristics register.
    :ivar max_write: its maximum write length in bytes.
    :ivar max_read: its maximum read length in bytes.
    :ivar max_ibi_payload: the maximum size of its in-band interrupts' payload in bytes.
    :ivar configuration: how the controller treats it, an :class:`I3cTargetConfiguration` if the value is known.
    :ivar ccc: the Common Command Codes that are addressed to it.
    """

    def __init__(self, bus: "I3cBus", record: I3cTargetInfo) -> None:
        self._bus = bus
        self.dynamic_address: int = record.dynamicAddress
        self.static_address: int = record.staticAddress
        self.pid = int.from_bytes(bytes(record.pid), "big")
        self.bcr: int = record.bcr
        self.dcr: int = record.dcr
        self.max_write: int = record.maxWriteLength
        self.max_read: int = record.maxReadLength
        self.max_ibi_payload: int = record.maxIbiPayloadSize
        self.configuration: int = record.configuration
        self.ccc = TargetCcc(bus.link, bus.turns, self.address)

    def __repr__(self) -> str:
        return f"<veltrasdk.I3cTarget 0x{self.address:02x}, pid {self.pid:012x}>"

    @property
    def is_legacy(self) -> bool:
        """Whether it is a legacy I2C device, reached by its static address."""
        return self.configuration == I3cTargetConfiguration.LEGACY_I2C

    @property
    def address(self) -> int:
        """The address that reaches it, 7 bits: the static one of a legacy device, else the dynamic one."""
        return self.static_address if self.is_legacy else self.dynamic_address

    def read(
        self,
        length: int,
        register: int | BytesLike | None = None,
        *,
        register_bytes: int = 1,
        flags: I3cTransferFlags = I3cTransferFlags.NONE,
    ) -> bytes:
        """Reads in SDR mode, or as legacy I2C; see :meth:`I3cBus.read`."""
        read = self._bus.i2c_read if self.is_legacy else self._bus.read
        return read(self.address, length, register, register_bytes=register_bytes, flags=flags)

    def write(
        self,
        data: BytesLike = b"",
        register: int | BytesLike | None = None,
        *,
        register_bytes: int = 1,
        flags: I3cTransferFlags = I3cTransferFlags.NONE,
    ) -> None:
        """Writes in SDR mode, or as legacy I2C; see :meth:`I3cBus.write`."""
        write = self._bus.i2c_write if self.is_legacy else self._bus.write
        write(self.address, data, register, register_bytes=register_bytes, flags=flags)

    def hdr_read(self, code: int, count: int) -> bytes:
        """Reads in HDR-DDR mode; see :meth:`I3cBus.hdr_read`."""
        return self._bus.hdr_read(self.address, code, count)

    def hdr_write(self, code: int, data: BytesLike) -> None:
        """Writes in HDR-DDR mode; see :meth:`I3cBus.hdr_write`."""
        self._bus.hdr_write(self.address, code, data)

    def configure(self, configuration: I3cTargetConfiguration) -> None:
        """Changes how the controller treats the target."""
        value = _checks.number("i3c.configure_target", "the configuration", configuration, 0xFF)
        arguments = self.address, value
        place = f"0x{self.address:02x}"
        self._bus.link.call("i3c.configure_target", "I3cSetTargetDeviceConfiguration", *arguments, place=place)

    def interrupts(self, on: bool) -> None:
        """Lets the target raise in-band interrupts, which then come as events of kind ``ibi``, or forbids it."""
        if on:
            self.configure(I3cTargetConfiguration.ACCEPT_IBI)
            self.ccc.enec(EVENT_INTERRUPT)
        else:
            self.ccc.disec(EVENT_INTERRUPT)


class I3cBus:
    """The initialised I3C controller; made by :meth:`Adapter.i3c`.

    Addresses have 7 bits and are not shifted. What nobody acknowledges raises :class:`NackError`.

    :ivar ccc: the Common Command Codes that are broadcast.
    """

    def __init__(
        self,
        adapter: "Adapter",
        voltage: float | None,
        push_pull: I3cPushPullRate,
        open_drain: I3cOpenDrainTransferRate,
        i2c: I2cTransferRate,
        drive: I3cDriveStrength,
    ) -> None:
        self._adapter = adapter
        self.link: Link = adapter.link
        self.turns: Turns = adapter.i3c_turns
        self.ccc = BroadcastCcc(self.link, self.turns)
        if voltage is not None:
            self.set_voltage(voltage)
        self._set("I3cControllerInit", push_pull, open_drain, i2c, drive)

    def _set(self, function: str, *rates: int) -> None:
        names = "push_pull", "open_drain", "i2c", "drive"
        values = [_checks.number("i3c.configure", name, rate, 0xFF) for name, rate in zip(names, rates)]
        with self.turns.alone():
            self.link.call("i3c.configure", function, *values)

    def set_voltage(self, volts: float) -> None:
        """Sets the supply of the bus, in volts; the reference firmware switches it off for 0."""
        millivolts = _checks.millivolts("i3c.voltage", volts)
        self.link.call("i3c.voltage", "I3cSetBusVoltage", millivolts, place=f"{volts:g} V")

    def configure(
        self,
        *,
        push_pull: I3cPushPullRate = I3cPushPullRate.RATE_12_5_MHZ,
        open_drain: I3cOpenDrainTransferRate = I3cOpenDrainTransferRate.RATE_1_MHZ,
        i2c: I2cTransferRate = I2cTransferRate.RATE_0_4_MHZ,
        drive: I3cDriveStrength = I3cDriveStrength.STRENGTH_8_MA,
    ) -> None:
        """Changes the rates and the drive strength; see :meth:`Adapter.i3c`."""
        self._set("I3cSetParameters", push_pull, open_drain, i2c, drive)

    def init(self, records: Iterable[I3cRecord] = ()) -> list[I3cTarget]:
        """Brings the bus up: resets it and assigns dynamic addresses.

        :param records: what is expected on the bus, at most 255; none lets the controller find everything.
        :returns: the targets, as :attr:`targets` has them.
        """
        given = [record.native() for record in records]
        _checks.number("i3c.init", "the number of records", len(given), MAX_TARGETS)
        with self.turns.alone():
            self.link.call("i3c.init", "I3cInitBus", (I3cTargetInfo * len(given))(*given), len(given))
        return self.targets

    def reset(self) -> None:
        """Resets the bus: it must be initialised again."""
        with self.turns.alone():
            self.link.call("i3c.reset", "I3cResetBus")

    @property
    def targets(self) -> list[I3cTarget]:
        """The devices in the controller's table, which is read anew each time."""
        table, count = (I3cTargetInfo * MAX_TARGETS)(), ctypes.c_uint8()
        with self.turns.shared():
            self.link.call("i3c.targets", "I3cGetDeviceTable", table, MAX_TARGETS, ctypes.byref(count))
        return [I3cTarget(self, record) for record in table[: count.value]]

    def read(
        self,
        address: int,
        length: int,
        register: int | BytesLike | None = None,
        *,
        register_bytes: int = 1,
        flags: I3cTransferFlags = I3cTransferFlags.NONE,
    ) -> bytes:
        """Reads from a target in SDR mode.

        :param address: its dynamic address.
        :param length: how many bytes, at most 65,535; the target may end the read earlier.
        :param register: what is written first: a register address, most significant byte first, or up to 4
            bytes as they are.
        :param register_bytes: how many bytes a register address has, 1 to 4.
        :param flags: options of the transfer.
        """
        return self._read("i3c.read", "I3cSdrRead", address, length, register, register_bytes, flags)

    def write(
        self,
        address: int,
        data: BytesLike = b"",
        register: int | BytesLike | None = None,
        *,
        register_bytes: int = 1,
        flags: I3cTransferFlags = I3cTransferFlags.NONE,
    ) -> None:
        """Writes to a target in SDR mode, at most 65,535 bytes; the others as for :meth:`read`."""
        self._write("i3c.write", "I3cSdrWrite", address, data, register, register_bytes, flags)

    def i2c_read(
        self,
        address: int,
        length: int,
        register: int | BytesLike | None = None,
        *,
        register_bytes: int = 1,
        flags: I3cTransferFlags = I3cTransferFlags.NONE,
    ) -> bytes:
        """Reads from a legacy I2C device at its static address; the others as for :meth:`read`."""
        return self._read("i3c.i2c_read", "I3cLegacyI2CRead", address, length, register, register_bytes, flags)

    def i2c_write(
        self,
        address: int,
        data: BytesLike = b"",
        register: int | BytesLike | None = None,
        *,
        register_bytes: int = 1,
        flags: I3cTransferFlags = I3cTransferFlags.NONE,
    ) -> None:
        """Writes to a legacy I2C device at its static address; the others as for :meth:`write`."""
        self._write("i3c.i2c_write", "I3cLegacyI2CWrite", address, data, register, register_bytes, flags)

    def hdr_read(self, address: int, code: int, count: int) -> bytes:
        """Reads from a target in HDR-DDR mode.

        :param address: its dynamic address.
        :param code: the HDR command code, 0 to 127; bit 7, which says that it is a read, is set for you.
        :param count: how many bytes, at most 65,535.
        """
        place = _checks.address("i3c.hdr_read", address)
        command = 0x80 | _checks.number("i3c.hdr_read", "the code", code, 0x7F)
        length = _checks.number("i3c.hdr_read", "the count", count, _checks.MAX_LENGTH)
        data, stored = buffer(_checks.MAX_LENGTH), ctypes.c_uint16()
        arguments = place, command, length, ctypes.byref(stored), data
        with self.turns.shared():
            self.link.call("i3c.hdr_read", "I3cHdrDdrRead", *arguments, place=f"0x{place:02x}")
        return bytes(memoryview(data)[: stored.value])

    def hdr_write(self, address: int, code: int, data: BytesLike) -> None:
        """Writes to a target in HDR-DDR mode, at most 65,535 bytes; the code is 0 to 127."""
        place = _checks.address("i3c.hdr_write", address)
        command = _checks.number("i3c.hdr_write", "the code", code, 0x7F)
        made = _checks.data("i3c.hdr_write", data)
        with self.turns.shared():
            self.link.call("i3c.hdr_write", "I3cHdrDdrWrite", place, command, made, len(made), place=f"0x{place:02x}")

    def target_reset_pattern(self) -> None:
        """Drives the target reset pattern: each target carries out the action that RSTACT has armed."""
        with self.turns.alone():
            self.link.call("i3c.target_reset_pattern", "I3cTargetResetPattern")

    def hdr_exit_pattern(self) -> None:
        """Drives the HDR exit pattern."""
        with self.turns.alone():
            self.link.call("i3c.hdr_exit_pattern", "I3cHdrExitPattern")

    def _read(
        self,
        operation: str,
        function: str,
        address: int,
        length: int,
        register: int | BytesLike | None,
        register_bytes: int,
        flags: int,
    ) -> bytes:
        place = _checks.address(operation, address)
        first = _checks.register(operation, register, register_bytes)
        size = _checks.number(operation, "the length", length, _checks.MAX_LENGTH)
        options = _checks.number(operation, "the flags", flags, 0x1F)
        data, count = buffer(_checks.MAX_LENGTH), ctypes.c_uint16()  # the count is the adapter's word
        arguments = place, first, len(first), size, data, ctypes.byref(count), options
        with self.turns.shared():
            self.link.call(operation, function, *arguments, place=f"0x{place:02x}")
        return bytes(memoryview(data)[: count.value])

    def _write(
        self,
        operation: str,
        function: str,
        address: int,
        data: BytesLike,
        register: int | BytesLike | None,
        register_bytes: int,
        flags: int,
    ) -> None:
        place = _checks.address(operation, address)
        first = _checks.register(operation, register, register_bytes)
        made = _checks.data(operation, data)
        options = _checks.number(operation, "the flags", flags, 0x1F)
        arguments = place, first, len(first), made, len(made), options
        with self.turns.shared():
            self.link.call(operation, function, *arguments, place=f"0x{place:02x}")
