# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""I3C's Common Command Codes (MIPI I3C Basic v1.1.1, section 5.1.9.3)."""

import ctypes
from dataclasses import dataclass

from veltrasdk import _checks
from veltrasdk._checks import BytesLike
from veltrasdk._link import Link, buffer
from veltrasdk._native import (
    I3cCccType,
    I3cTargetResetDefByte,
    I3cTransferDirection,
    I3cTransferMode,
)
from veltrasdk._turns import Turns

BROADCAST = 0x7E
MAX_REPLY = 255


@dataclass(frozen=True)
class MaxReadLength:
    """What GETMRL tells.

    :ivar length: the maximum read length in bytes.
    :ivar ibi_payload: the maximum size of an in-band interrupt's payload in bytes; None when the target's
        interrupts carry none.
    """

    length: int
    ibi_payload: int | None


class _Ccc:
    """What broadcast and direct codes share."""

    def __init__(self, link: Link, turns: Turns, address: int) -> None:
        self._link = link
        self._turns = turns
        self._address = address

    def _call(self, name: str, function: str, *arguments: object) -> None:
        with self._turns.shared():
            place = "" if self._address == BROADCAST else f"0x{self._address:02x}"
            self._link.call(f"i3c.ccc.{name}", "I3cCcc" + function, *arguments, place=place)

    def _transfer(self, direction: int, code: int, count: int, defining_byte: int | None, data: bytes) -> bytes:
        number = _checks.number("i3c.ccc.transfer", "the code", code, 0xFF)
        kind = I3cCccType.WITHOUT_DEFINING_BYTE if defining_byte is None else I3cCccType.WITH_DEFINING_BYTE
        defined = _checks.number("i3c.ccc.transfer", "the defining byte", defining_byte or 0, 0xFF)
        reply, stored = buffer(MAX_REPLY), ctypes.c_uint8()
        self._call(
            "transfer",
            "Transfer",
            self._address,
            direction,
            I3cTransferMode.SDR,
            False,
            kind,
            _checks.number("i3c.ccc.transfer", "the number of bytes", count, 0xFF),
            number,
            defined,
            data,
            len(data),
            reply,
            MAX_REPLY,
            ctypes.byref(stored),
        )
        return bytes(reply)[: stored.value]


def _byte(name: str, what: str, value: int) -> int:
    return _checks.number(f"i3c.ccc.{name}", what, value, 0xFF)


def _word(name: str, what: str, value: int) -> int:
    return _checks.number(f"i3c.ccc.{name}", what, value, 0xFFFF)


class TargetCcc(_Ccc):
    """The codes that are addressed to one target; made as ``I3cTarget.ccc``."""

    def _query(self, name: str, defining_byte: int | None) -> bytes:
        reply, count = buffer(MAX_REPLY), ctypes.c_uint8()
        defined = _byte(name, "the defining byte", defining_byte or 0)
        arguments = self._address, reply, ctypes.byref(count), defining_byte is not None, defined
        self._call(name, name.upper(), *arguments)
        return bytes(reply)[: count.value]

    def getpid(self) -> int:
        """GETPID: the 48-bit provisioned identifier."""
        reply = buffer(MAX_REPLY)
        self._call("getpid", "GETPID", self._address, reply)
        return int.from_bytes(bytes(reply)[:6], "big")

    def _get_byte(self, name: str) -> int:
        value = ctypes.c_uint8()
        self._call(name, name.upper(), self._address, ctypes.byref(value))
        return value.value

    def getbcr(self) -> int:
        """GETBCR: the bus characteristics register."""
        return self._get_byte("getbcr")

    def getdcr(self) -> int:
        """GETDCR: the device characteristics register."""
        return self._get_byte("getdcr")

    def getmwl(self) -> int:
        """GETMWL: the maximum write length in bytes."""
        value = ctypes.c_uint16()
        self._call("getmwl", "GETMWL", self._address, ctypes.byref(value))
        return value.value

    def getmrl(self) -> MaxReadLength:
        """GETMRL: the maximum read length, and that of an interrupt's payload, in bytes."""
        length, payload, has_payload = ctypes.c_uint16(), ctypes.c_uint8(), ctypes.c_uint8()
        outputs = map(ctypes.byref, (length, payload, has_payload))
        self._call("getmrl", "GETMRL", self._address, *outputs)
        return MaxReadLength(length.value, payload.value if has_payload.value else None)

    def getcaps(self, defining_byte: int | None = None) -> bytes:
        """GETCAPS: the optional capabilities, in bus order; None asks without a defining byte."""
        return self._query("getcaps", defining_byte)

    def getstatus(self, defining_byte: int | None = None) -> bytes:
        """GETSTATUS: the status, in bus order; None asks without a defining byte."""
        return self._query("getstatus", defining_byte)

    def setmwl(self, length: int) -> None:
        """SETMWL: the maximum write length in bytes."""
        self._call("setmwl", "SETMWLDirect", self._address, _word("setmwl", "the length", length))

    def setmrl(self, length: int, ibi_payload: int | None = None) -> None:
        """SETMRL: the maximum read length, and that of an interrupt's payload, in bytes."""
        self._call("setmrl", "SETMRLDirect", self._address, *_mrl(length, ibi_payload))

    def setnewda(self, address: int) -> None:
        """SETNEWDA: another dynamic address, by which this object reaches the target from then on."""
        new = _checks.address("i3c.ccc.setnewda", address)
        self._call("setnewda", "SETNEWDA", self._address, new)
        self._address = new

    def enec(self, events: int) -> None:
        """ENEC: enables events: 0x01 in-band interrupts, 0x02 requests of the controller role, 0x08 hot-join."""
        self._call("enec", "ENECDirect", self._address, _byte("enec", "the events", events))

    def disec(self, events: int) -> None:
        """DISEC: disables events; see :meth:`enec`."""
        self._call("disec", "DISECDirect", self._address, _byte("disec", "the events", events))

    def rstact(self, action: I3cTargetResetDefByte) -> None:
        """RSTACT, written: arms what the next target reset pattern does."""
        arguments = self._address, _byte("rstact", "the action", action), I3cTransferDirection.WRITE, None
        self._call("rstact", "RSTACTDirect", *arguments)

    def rstact_read(self, what: I3cTargetResetDefByte) -> int:
        """RSTACT, read: one byte, of which the defining byte says what it tells."""
        reply = ctypes.c_uint8()
        asked = _byte("rstact", "the defining byte", what)
        self._call("rstact", "RSTACTDirect", self._address, asked, I3cTransferDirection.READ, ctypes.byref(reply))
        return reply.value

    def get(self, code: int, count: int, defining_byte: int | None = None) -> bytes:
        """Any direct code that reads.

        :param code: the code, 0x80 to 0xFF.
        :param count: how many bytes are asked for, at most 255.
        :param defining_byte: sent in front of the address; None sends none.
        """
        return self._transfer(I3cTransferDirection.READ, code, count, defining_byte, b"")

    def set(self, code: int, data: BytesLike = b"", defining_byte: int | None = None) -> None:
        """Any direct code that writes: at most 255 bytes behind the address."""
        made = _checks.data("i3c.ccc.transfer", data, MAX_REPLY)
        self._transfer(I3cTransferDirection.WRITE, code, len(made), defining_byte, made)


class BroadcastCcc(_Ccc):
    """The codes that are for every target, or for one without a dynamic address; made as ``I3cBus.ccc``."""

    def __init__(self, link: Link, turns: Turns) -> None:
        super().__init__(link, turns, BROADCAST)

    def rstdaa(self) -> None:
        """RSTDAA: takes the dynamic addresses of all targets away."""
        self._call("rstdaa", "RSTDAA")

    def entdaa(self) -> None:
        """ENTDAA: gives all targets without a dynamic address one."""
        self._call("entdaa", "ENTDAA")

    def setdasa(self, static_address: int, dynamic_address: int) -> None:
        """SETDASA: gives the target with a static address a dynamic one."""
        given = (_checks.address("i3c.ccc.setdasa", value) for value in (static_address, dynamic_address))
        self._call("setdasa", "SETDASA", *given)

    def setaasa(self, static_addresses: BytesLike = b"") -> None:
        """SETAASA: makes targets take their static address as dynamic address.

        :param static_addresses: which, at most 255; their meaning is the adapter's. None means all.
        """
        made = _checks.data("i3c.ccc.setaasa", static_addresses, MAX_REPLY)
        self._call("setaasa", "SETAASA", made, len(made))

    def enec(self, events: int) -> None:
        """ENEC: enables events: 0x01 in-band interrupts, 0x02 requests of the controller role, 0x08 hot-join."""
        self._call("enec", "ENECBroadcast", _byte("enec", "the events", events))

    def disec(self, events: int) -> None:
        """DISEC: disables events; see :meth:`enec`."""
        self._call("disec", "DISECBroadcast", _byte("disec", "the events", events))

    def setmwl(self, length: int) -> None:
        """SETMWL: the maximum write length in bytes."""
        self._call("setmwl", "SETMWLBroadcast", _word("setmwl", "the length", length))

    def setmrl(self, length: int, ibi_payload: int | None = None) -> None:
        """SETMRL: the maximum read length, and that of an interrupt's payload, in bytes."""
        self._call("setmrl", "SETMRLBroadcast", *_mrl(length, ibi_payload))

    def rstact(self, action: I3cTargetResetDefByte) -> None:
        """RSTACT: arms what the next target reset pattern does."""
        self._call("rstact", "RSTACTBroadcast", _byte("rstact", "the action", action))

    def send(self, code: int, data: BytesLike = b"", defining_byte: int | None = None) -> None:
        """Any broadcast code, 0x00 to 0x7F, with the bytes behind it, at most 255 with the defining byte."""
        made = _checks.data("i3c.ccc.transfer", data, MAX_REPLY)
        count = len(made) + (defining_byte is not None)
        self._transfer(I3cTransferDirection.WRITE, code, count, defining_byte, made)


def _mrl(length: int, ibi_payload: int | None) -> tuple[int, bool, int]:
    payload = _byte("setmrl", "the payload size", ibi_payload or 0)
    return _word("setmrl", "the length", length), ibi_payload is not None, payload
