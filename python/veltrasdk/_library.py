# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The shared library of the process: loaded at first use, with hidapi shared between its adapters."""

import ctypes
import os
import threading

from veltrasdk import _native
from veltrasdk.errors import ForkedError, VeltraError

NAME = "libveltrasdk.so.1"


class _Process:
    """What holds for the whole process."""

    def __init__(self) -> None:
        self.lock = threading.RLock()  # a finaliser may run where it is held
        self.library: ctypes.CDLL | None = None
        self.users = 0  # of hidapi: open adapters, and enumerations under way
        self.forked_in_use = False

    def after_fork(self) -> None:
        """In the child: libusb does not survive a fork while it is used."""
        self.forked_in_use = self.forked_in_use or self.users > 0
        self.users = 0
        self.lock = threading.RLock()  # another thread of the parent may have held it


_process = _Process()
os.register_at_fork(after_in_child=_process.after_fork)


def library() -> ctypes.CDLL:
    """The library with its functions declared.

    :raises ImportError: when it is not installed or too old.
    :raises VeltraError: when another part of the process uses it without sharing hidapi.
    """
    if _process.library is None:
        with _process.lock:
            if _process.library is None:
                _process.library = load()
    return _process.library


def is_loaded() -> bool:
    """Whether the process has loaded the library through this package."""
    return _process.library is not None


def load() -> ctypes.CDLL:
    """Loads the library, or says what to install."""
    try:
        loaded = ctypes.CDLL(NAME)
    except OSError as problem:
        raise ImportError(
            f"veltrasdk: {NAME} cannot be loaded ({problem}). Install the package libveltrasdk1, or say in"
            " LD_LIBRARY_PATH where the library is."
        ) from None
    try:
        _native.declare(loaded)
    except AttributeError as problem:
        raise ImportError(
            f"veltrasdk: {NAME} is older than this package ({problem}). Install the package libveltrasdk1,"
            f" version {_native.VERSION} or later."
        ) from None
    if not loaded.VeltraSDK_ShareHidapi():
        raise VeltraError("load", f"another part of this process already uses {NAME} without sharing hidapi")
    return loaded


def version() -> str:
    """The version of the library, such as ``"1.2.3"``; that of this package is ``veltrasdk.__version__``."""
    text: bytes = library().VeltraSDK_GetVersion()
    return text.decode()


class User:
    """One user of hidapi, from construction to :meth:`leave`."""

    def __init__(self, operation: str) -> None:
        if _process.forked_in_use:
            raise ForkedError(
                operation,
                "this process was forked from one that has an adapter open. Open adapters after the fork, or start"
                " processes afresh: multiprocessing.get_context('spawn')",
            )
        with _process.lock:
            _process.users += 1

    def leave(self) -> None:
        """Ends the use; called once."""
        with _process.lock:
            _process.users -= 1
