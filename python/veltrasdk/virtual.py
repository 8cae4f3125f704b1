# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Virtual adapters that a test plugs in, lets things happen to, and pulls out again.

:class:`Board` starts the program ``veltra-virtual-adapter`` for itself. Programs that are run as a whole need
none of this: ``veltra-virtual-adapter run -- PROGRAM``.
"""

import ctypes
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
from collections.abc import Iterable
from typing import Any

from veltrasdk import _library
from veltrasdk._checks import BytesLike
from veltrasdk.adapter import Adapter
from veltrasdk.errors import VeltraError

PROGRAM = "veltra-virtual-adapter"
SOCKETS = "VELTRA_VIRTUAL_ADAPTER_SOCKET"

# Ends the adapter when its standard input does: with this process, however that ends.
_KEEPER = '"$@" & exec >/dev/null; cat; kill "$!" 2>/dev/null; wait "$!"'

_clients: dict[str, ctypes.CDLL] = {}


class BoardError(VeltraError):
    """The virtual adapter is missing, does not start, or refuses what it is told."""


def load_client(program: str = PROGRAM) -> None:
    """Puts virtual adapters in the place of real ones, for the whole process and until it ends.

    It must come before the first use of the library: what ``hidapi`` is has been decided then. Nothing happens
    when it has been done.

    :param program: the program ``veltra-virtual-adapter``, which knows where its client is.
    """
    if program in _clients:
        return
    # A program that is run under it has the client as the last of what is preloaded.
    shown = _output(program, "run", "--", "/usr/bin/env")
    preloaded = [line for line in shown.splitlines() if line.startswith("LD_PRELOAD=")]
    client = preloaded[-1].removeprefix("LD_PRELOAD=").split(":")[-1]
    if _library.is_loaded() and client not in os.environ.get("LD_PRELOAD", "").split(":"):
        raise BoardError(
            "board",
            "this process has used the library before the virtual adapter was put in front of it. Let no module"
            " open or list adapters when it is imported",
        )
    _clients[program] = ctypes.CDLL(client, mode=ctypes.RTLD_GLOBAL)


def _output(program: str, *arguments: str) -> str:
    try:
        run = subprocess.run([program, *arguments], capture_output=True, text=True, check=False)
    except OSError as problem:
        raise BoardError(
            "board", f"{program} cannot be run ({problem.strerror}). Install the package veltra-virtual-adapter"
        ) from None
    if run.returncode != 0:
        raise BoardError("board", run.stderr.strip().removeprefix(f"{PROGRAM}: ") or f"{program} has failed")
    return run.stdout


class Board:
    """A virtual adapter of its own, with what stands on its board; a context manager that pulls it out.

    :param board: the board file; None takes the factory board.
    :param model: ``"full-speed"`` or ``"high-speed"``.
    :param serial: the serial number; one that no other board of this process has unless given.
    :param faults: what goes wrong, as ``--fault`` takes it: ``"lost-response@i2c-read"``.
    :param program: the program ``veltra-virtual-adapter``.
    :raises BoardError: when it cannot be started; with what it says.
    """

    _serials: set[str] = set()

    def __init__(
        self,
        board: str | os.PathLike[str] | None = None,
        *,
        model: str = "full-speed",
        serial: str | None = None,
        faults: Iterable[str] = (),
        program: str = PROGRAM,
    ) -> None:
        load_client(program)
        self._program = program
        self.serial = serial or self._free_serial()
        #: The pins, as seen from outside of the adapter.
        self.gpio = BoardGpio(self)
        #: What is at the other end of the UART's line.
        self.uart = BoardUart(self)
        # A path of a socket is short; that of a test's directory may not be.
        self._directory = pathlib.Path(tempfile.mkdtemp(prefix="veltra-"))
        self._socket = str(self._directory / "socket")
        self._said = self._directory / "said"
        options = ["--socket", self._socket, "--model", model, "--serial", self.serial]
        options += ["--board", os.fspath(board)] if board is not None else []
        for fault in faults:
            options += ["--fault", fault]
        with self._said.open("w") as said:
            self._process = subprocess.Popen(  # pylint: disable=consider-using-with
                ["/bin/sh", "-c", _KEEPER, "sh", program, "serve", *options],
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                stderr=said,
                start_new_session=True,  # Ctrl+C is for the tests, which then end it
            )
        assert self._process.stdout is not None
        if not self._process.stdout.readline():
            complaint = self._end().strip().removeprefix(f"{PROGRAM}: ")
            raise BoardError("board", complaint or "the virtual adapter has ended without a word")
        self._serials.add(self.serial)
        _change_sockets(add=self._socket)

    def __enter__(self) -> "Board":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<veltrasdk.virtual.Board {self.serial!r}>"

    def _free_serial(self) -> str:
        number = 1
        while (serial := f"VA-{number:04}") in self._serials:
            number += 1
        return serial

    def adapter(self, **options: Any) -> Adapter:
        """Opens the adapter; the options are those of :class:`veltrasdk.Adapter`."""
        # A path counts the sockets, from 1; serial numbers may be the same.
        number = _sockets().index(self._socket) + 1
        return Adapter(path=f"{number}-1:1.0", **options)

    def tell(self, *words: object) -> None:
        """Lets something happen to the adapter or its board; returns when it has happened.

        :param words: those of ``veltra-virtual-adapter tell``.
        :raises BoardError: when the adapter does not know or refuses it.
        """
        _output(self._program, "tell", "--socket", self._socket, *map(str, words))

    def i2c(self, bus: int, address: int) -> "BoardI2c":
        """A part on an I2C bus."""
        return BoardI2c(self, bus, address)

    def i3c(self, *, address: int | None = None, pid: int | None = None) -> "BoardI3c":
        """A target of the I3C bus, by its dynamic address or its provisioned identifier."""
        return BoardI3c(self, f"0x{address:02x}" if pid is None else f"{pid:012x}")

    def fault(self, fault: str) -> None:
        """Lets something go wrong, as ``--fault`` takes it: ``"lost-response@i2c-read"``."""
        self.tell("fault", fault)

    def reset(self) -> None:
        """Switches the adapter off and on: everything is as at the start."""
        self.tell("reset")

    def unplug(self) -> None:
        """Pulls the adapter out; :meth:`plug` plugs it in again."""
        self.tell("unplug")

    def plug(self) -> None:
        """Plugs the adapter in again."""
        self.tell("plug")

    def _end(self) -> str:
        """Ends the process and tells what it has said."""
        self._process.communicate()
        said = self._said.read_text(errors="replace")
        shutil.rmtree(self._directory, ignore_errors=True)
        return said

    def close(self) -> None:
        """Pulls the adapter out for good; what it had to say goes to the standard error output."""
        if self._process.returncode is None:
            _change_sockets(remove=self._socket)
            self._serials.discard(self.serial)
            sys.stderr.write(self._end())


class BoardGpio:
    """The pins, as seen from outside of the adapter; made as :attr:`Board.gpio`."""

    def __init__(self, board: Board) -> None:
        self._board = board

    def drive(self, pin: int, value: int) -> None:
        """Drives a pin's line to 0 or 1 from outside."""
        self._board.tell("gpio", "drive", pin, value)

    def release(self, pin: int) -> None:
        """Drives a pin's line no longer."""
        self._board.tell("gpio", "drive", pin, "release")


class BoardUart:
    """What is at the other end of the UART's line; made as :attr:`Board.uart`."""

    def __init__(self, board: Board) -> None:
        self._board = board

    def receive(self, data: BytesLike) -> None:
        """Has the adapter receive bytes."""
        self._board.tell("uart", "receive", f"hex:{bytes(data).hex()}")


class BoardI2c:
    """A part on an I2C bus; made by :meth:`Board.i2c`."""

    def __init__(self, board: Board, bus: int, address: int) -> None:
        self._board = board
        self._place = "i2c", bus, f"0x{address:02x}"

    def set(self, name: str, value: object) -> None:
        """Changes a setting of the part, such as a sensor's temperature."""
        self._board.tell(*self._place, "set", name, value)

    def nack(self, what: str = "address", times: int | None = None) -> None:
        """Has the part not acknowledge: ``"address"``, or ``"data:N"`` for the Nth byte of a write.

        :param times: how often; as the virtual adapter has it unless given.
        """
        self._board.tell(*self._place, "nack", what, *([] if times is None else [times]))


class BoardI3c:
    """A target of the I3C bus; made by :meth:`Board.i3c`."""

    def __init__(self, board: Board, target: str) -> None:
        self._board = board
        self._place = "i3c", target

    def interrupt(self, payload: BytesLike = b"") -> None:
        """Has the target raise an in-band interrupt."""
        self._board.tell(*self._place, "interrupt", bytes(payload).hex())

    def join(self) -> None:
        """Has the target join the bus."""
        self._board.tell(*self._place, "join")

    def leave(self) -> None:
        """Has the target leave the bus."""
        self._board.tell(*self._place, "leave")


def _sockets() -> list[str]:
    return [socket for socket in os.environ.get(SOCKETS, "").split(":") if socket]


def _change_sockets(add: str | None = None, remove: str | None = None) -> None:
    """The client reads the variable whenever adapters are listed."""
    sockets = [socket for socket in _sockets() if socket != remove]
    if add is not None:
        sockets.append(add)
    if sockets:
        os.environ[SOCKETS] = ":".join(sockets)
    else:
        os.environ.pop(SOCKETS, None)
