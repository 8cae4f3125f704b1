# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Parts for the board of a virtual adapter, written in Python.

A part is a program of its own, which the board file names (``part = "program"``). The virtual adapter tells it
what happens on its bus and asks what it answers; one line of JSON goes each way.

.. code-block:: python

    from veltrasdk.parts import I2cPart, main

    class Echo(I2cPart):
        def write(self, data):
            self.kept = data

        def read(self, count):
            return self.kept

    main(Echo())

What a part prints goes to its standard error output. It is asked one thing after the other, and has 5 s for
each answer; one that ends or takes longer no longer acknowledges. Needs neither the library nor an adapter.
"""

import json
import sys
from collections.abc import Callable
from contextlib import redirect_stdout
from typing import IO, Any

PROTOCOL = 1


class Nack(Exception):
    """Raised by a part that does not acknowledge: its address, or a byte.

    :param acknowledged: of a write, how many bytes were acknowledged before.
    """

    def __init__(self, acknowledged: int = 0) -> None:
        super().__init__(f"not acknowledged after {acknowledged} byte(s)")
        self.acknowledged = acknowledged


class _Part:
    """What every part has."""

    def set(self, name: str, value: str) -> None:
        """A user changes a setting, such as a sensor's temperature, by ``tell``.

        :raises KeyError: when there is no such setting.
        :raises ValueError: with what is wrong with the value.
        """
        raise KeyError(name)


class I2cPart(_Part):
    """A target of an I2C bus: whole messages, not bytes. Override what it does."""

    def start(self, read: bool, restart: bool) -> None:
        """The part is addressed.

        :param read: whether it is to be read.
        :param restart: whether a repeated START came before, in place of a STOP.
        :raises Nack: when it does not acknowledge its address.
        """

    def write(self, data: bytes) -> None:
        """Bytes came.

        :raises Nack: with the number of bytes that were acknowledged, when not all were.
        """

    def read(self, count: int) -> bytes:  # pylint: disable=unused-argument
        """So many bytes are read; those that are not returned read as 0xFF, as nobody drives the line."""
        return b""

    def stop(self) -> None:
        """A STOP came."""


class SpiPart(_Part):
    """A device of an SPI bus. Override what it does."""

    def transfer(self, data: bytes) -> bytes:  # pylint: disable=unused-argument
        """One transfer, from the first clock to the last.

        :returns: what comes back for each byte; 0xFF for those that are not returned.
        """
        return b""


def _filled(data: bytes, count: int) -> str:
    return bytes(data)[:count].ljust(count, b"\xff").hex()


def _start(part: Any, request: dict[str, Any]) -> dict[str, Any]:
    try:
        part.start(bool(request["read"]), bool(request["restart"]))
    except Nack:
        return {"ack": False}
    return {"ack": True}


def _write(part: Any, request: dict[str, Any]) -> dict[str, Any]:
    data = bytes.fromhex(request["data"])
    try:
        part.write(data)
    except Nack as refused:
        return {"ack": min(refused.acknowledged, len(data))}
    return {"ack": len(data)}


def _read(part: Any, request: dict[str, Any]) -> dict[str, Any]:
    return {"data": _filled(part.read(request["count"]), request["count"])}


def _stop(part: Any, _: dict[str, Any]) -> dict[str, Any]:
    part.stop()
    return {}


def _transfer(part: Any, request: dict[str, Any]) -> dict[str, Any]:
    data = bytes.fromhex(request["data"])
    return {"data": _filled(part.transfer(data), len(data))}


def _set(part: Any, request: dict[str, Any]) -> dict[str, Any]:
    try:
        part.set(request["name"], request["value"])
    except KeyError:
        return {"error": "no such setting"}
    except ValueError as problem:
        return {"error": str(problem)}
    return {}


_ANSWERS: dict[str, Callable[[Any, dict[str, Any]], dict[str, Any]]] = {
    "start": _start,
    "write": _write,
    "read": _read,
    "stop": _stop,
    "transfer": _transfer,
    "set": _set,
}


def main(part: I2cPart | SpiPart, requests: IO[str] | None = None, answers: IO[str] | None = None) -> None:
    """Plays the part until the virtual adapter ends.

    :param part: who answers.
    :param requests: where the lines come from, standard input unless given.
    :param answers: where the answers go, standard output unless given.
    """
    coming, going = requests or sys.stdin, answers or sys.stdout

    def answer(line: dict[str, Any]) -> None:
        print(json.dumps(line, separators=(",", ":")), file=going, flush=True)

    with redirect_stdout(sys.stderr):
        greeting = json.loads(coming.readline() or "{}")
        if greeting.get("veltra-part") != PROTOCOL:
            sys.exit(f"a part speaks version {PROTOCOL} with a virtual adapter, and {greeting} came")
        answer({"veltra-part": PROTOCOL})
        for line in coming:
            request = json.loads(line)
            handler = _ANSWERS.get(request.get("op"))
            answer({"error": "unknown"} if handler is None else handler(part, request))
