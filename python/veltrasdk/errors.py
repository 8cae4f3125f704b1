# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What goes wrong, as exceptions with names.

Each is a :class:`VeltraError`, and also the standard exception that programs already expect: a missing
acknowledge is an :class:`OSError` with ``EREMOTEIO``, a response that does not come a
:class:`TimeoutError`. The text says what failed, at what and why, and what to do where that is known.
"""

import errno
from typing import Any

from veltrasdk._native import STATUS_NAMES, ResultCode, VeltraStatus

#: What a status says to a person; further ones are told by their name and number.
_MEANINGS: dict[int, str] = {
    VeltraStatus.NO_VOLTAGE: "the I/O voltage is off",
    VeltraStatus.NOT_INITIALISED: "not initialised",
    VeltraStatus.NOT_ACKNOWLEDGED: "not acknowledged",
    VeltraStatus.DATA_NOT_ACKNOWLEDGED: "data not acknowledged",
    VeltraStatus.NO_PULL_UP: "the bus has no pull-up resistors",
    VeltraStatus.BUS_STUCK: "something holds a line of the bus low",
    VeltraStatus.INVALID_PARAMETER: "the adapter refuses a value",
    VeltraStatus.LENGTH_ABOVE_LIMIT: "longer than the target's maximum write length",
    VeltraStatus.ADDRESS_IN_USE: "the address belongs to another device",
    VeltraStatus.ADDRESS_RESERVED: "I3C reserves the address",
}

#: What to do about a status, by the family of the operation or for all.
_CURES: dict[tuple[str, int], str] = {
    ("i3c", VeltraStatus.NO_VOLTAGE): "Say which your board takes: adapter.i3c(voltage=1.8)",
    ("", VeltraStatus.NO_VOLTAGE): "Say which your board takes: Adapter(voltage=3.3)",
    ("i2c", VeltraStatus.NO_PULL_UP): 'Switch the adapter\'s on: adapter.i2c(0, pull_up="4k7")',
    ("i2c", VeltraStatus.BUS_STUCK): "Initialising the controller may free it: adapter.i2c(0)",
    ("i3c", VeltraStatus.NOT_INITIALISED): "Initialise the bus: i3c.init()",
}


class VeltraError(Exception):
    """Anything that this package reports; the base of all its exceptions.

    :ivar operation: what was asked for, such as ``"i2c.read"``.
    """

    operation: str
    #: What is handed to :class:`OSError` as errno by the exceptions that are one.
    _number = 0

    def __init__(self, operation: str, reason: str, place: str = "") -> None:
        where = f"{operation} {place}" if place else operation
        text = f"{where}: {reason}"
        if isinstance(self, OSError):
            super().__init__(self._number, text)
        else:
            super().__init__(text)
        self.operation = operation
        self._text = text
        self._given: tuple[Any, ...] = (operation, reason, place)

    def __str__(self) -> str:
        return self._text

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), self._given


class NotFoundError(VeltraError, ConnectionError):
    """No adapter could be opened.

    :ivar reason: ``"absent"``: none is plugged in; ``"serial"``: none with that serial number or path;
        ``"permission"``: you may not open it; ``"busy"``: another process or object has it open.
    """

    reason: str

    _NUMBERS = {
        "absent": errno.ENODEV,
        "serial": errno.ENODEV,
        "permission": errno.EACCES,
        "busy": errno.EBUSY,
    }

    def __init__(self, reason: str, text: str) -> None:
        self._number = self._NUMBERS[reason]
        super().__init__("open", text)
        self.reason = reason
        self._given = (reason, text)


class NoResponseError(VeltraError, TimeoutError):
    """No response came within the time-out; what was asked for may or may not have been done."""

    _number = errno.ETIMEDOUT


class DisconnectedError(VeltraError, ConnectionError):
    """The adapter has gone, or has been closed."""

    _number = errno.ENODEV


class ForkedError(VeltraError, RuntimeError):
    """The object belongs to another process: it came here by a fork."""


class ArgumentError(VeltraError, ValueError):
    """An argument was refused; nothing was sent."""


class StatusError(VeltraError):
    """The adapter refused the operation or could not carry it out.

    :ivar status: its word, 16 bits.
    :ivar name: what the status is called; None for one that this package does not know.
    """

    status: int
    name: str | None

    def __init__(self, operation: str, status: int, place: str = "") -> None:
        super().__init__(operation, _status_text(operation, status), place)
        self.status = status
        self.name = STATUS_NAMES.get(status)
        self._given = (operation, status, place)


class NackError(StatusError, OSError):
    """No target acknowledged its address, or one refused a byte; ``errno`` is ``EREMOTEIO``."""

    _number = errno.EREMOTEIO


def _status_text(operation: str, status: int) -> str:
    name = STATUS_NAMES.get(status)
    family = operation.split(".")[0]
    meaning = _MEANINGS.get(status, f"refused: {name}" if name else "refused")
    text = f"{meaning} (status 0x{status:04X})"
    cure = _CURES.get((family, status)) or _CURES.get(("", status))
    return f"{text}. {cure}" if cure else text


def error_for(operation: str, result: int, place: str = "", doing: str = "") -> VeltraError:
    """The exception for a result code other than 0; ``doing`` is said of a missing response."""
    if result == ResultCode.NO_RESPONSE:
        return NoResponseError(operation, f"no response{doing}", place)
    if result == ResultCode.NOT_CONNECTED:
        return DisconnectedError(operation, "the adapter has gone", place)
    if result == ResultCode.INVALID_ARGUMENT:
        return ArgumentError(operation, "an argument was refused", place)
    if result in (VeltraStatus.NOT_ACKNOWLEDGED, VeltraStatus.DATA_NOT_ACKNOWLEDGED):
        return NackError(operation, result, place)
    return StatusError(operation, result, place)
