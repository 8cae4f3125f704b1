# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Which adapters there are, and why one cannot be opened."""

from collections.abc import Sequence
from dataclasses import dataclass

from veltrasdk._library import User, library
from veltrasdk._native import VeltraSDK_AdapterInfo
from veltrasdk.errors import NotFoundError

_MODELS = {64: "full-speed", 1024: "high-speed"}

_DOCTOR = "the udev rule 70-veltra-adapter.rules of the package libveltrasdk1 gives it to you: install it, then replug"


@dataclass(frozen=True)
class AdapterInfo:
    """An adapter that is plugged in.

    :ivar path: its HID device path; another port has another path.
    :ivar serial: its USB serial number; empty when it has none or it cannot be read.
    :ivar model: ``"full-speed"`` (64-byte reports) or ``"high-speed"`` (1024-byte reports).
    :ivar accessible: whether you may open it.
    """

    path: str
    serial: str
    model: str
    accessible: bool


def adapters() -> list[AdapterInfo]:
    """Every adapter that is plugged in, also those that are open; nothing is sent.

    hidapi opens every HID device of the machine to read its strings.

    :raises ImportError: when the library is not installed.
    :raises ForkedError: in a process forked from one that has an adapter open.
    """
    loaded = library()
    user = User("adapters")
    try:
        capacity = 0
        there: int = loaded.VeltraSDK_Enumerate(None, 0)
        while there > capacity:  # more may be plugged in meanwhile
            capacity = there
            found = (VeltraSDK_AdapterInfo * capacity)()
            there = loaded.VeltraSDK_Enumerate(found, capacity)
    finally:
        user.leave()
    return [
        AdapterInfo(
            path=entry.path.decode(errors="replace"),
            serial=entry.serialNumber.decode(errors="replace"),
            model=_MODELS.get(entry.reportSize, f"{entry.reportSize}-byte reports"),
            accessible=entry.accessible,
        )
        for entry in (found[:there] if there else [])
    ]


def find(there: Sequence[AdapterInfo], serial: str | None, path: str | None) -> AdapterInfo:
    """The first adapter that is meant.

    :raises NotFoundError: with the reason why there is none, or none that may be opened.
    """
    meant = [one for one in there if serial in (None, one.serial) and path in (None, one.path)]
    for one in meant[:1]:
        if one.accessible:
            return one
        raise NotFoundError("permission", f"you may not open the adapter at {one.path}: {_DOCTOR}")
    hidden = [one for one in there if not one.accessible]
    if serial is not None and path is None and hidden:
        raise NotFoundError(
            "permission",
            f"the serial number of the adapter at {hidden[0].path} cannot be read, as you may not open it: {_DOCTOR}",
        )
    if not there:
        raise NotFoundError("absent", "no adapter is plugged in. Without one: veltra-virtual-adapter run -- PROGRAM")
    wanted = " and ".join(
        f"the {what} {value!r}" for what, value in (("serial number", serial), ("path", path)) if value is not None
    )
    present = ", ".join(f"{one.serial!r} at {one.path}" for one in there)
    raise NotFoundError("serial", f"no adapter has {wanted}. There is {present}")


def why_not_connected(meant: AdapterInfo) -> NotFoundError:
    """Why an adapter that could be opened when it was listed could not be connected."""
    if any(one.path == meant.path for one in adapters()):
        return NotFoundError(
            "busy", f"the adapter {meant.serial!r} at {meant.path} is open already, here or in another process"
        )
    return NotFoundError("absent", f"the adapter {meant.serial!r} at {meant.path} has just been pulled out")
