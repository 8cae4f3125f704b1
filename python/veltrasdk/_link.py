# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The link to one adapter: who may call it, and how it ends.

A link belongs to the process that made it. It may be used from several threads, and closed from any
while others wait in it: their calls then end. It holds no reference to the adapter's object, so that
this one can be collected and close it.
"""

import ctypes
import os
import threading
from collections.abc import Iterator
from contextlib import contextmanager

from veltrasdk._library import User, library
from veltrasdk.errors import ArgumentError, DisconnectedError, ForkedError, error_for

#: What calls may need, at most, to leave a link that has been closed.
LEAVING_SECONDS = 10.0


class Link:
    """A handle of the library in strict mode.

    :param timeout: how long an operation waits for its response, in seconds; None waits without limit.
    :param overlap: how many small requests of several threads may be outstanding, 1 to 4.
    """

    def __init__(self, timeout: float | None, overlap: int) -> None:
        milliseconds = _milliseconds(timeout)
        if overlap not in (1, 2, 3, 4):
            raise ArgumentError("open", f"overlap must be 1 to 4, not {overlap!r}")
        self.timeout = timeout
        self._library = library()
        self._user = User("open")
        self._process = os.getpid()
        # A finaliser may run anywhere in this thread, also where it holds the lock.
        self._changed = threading.Condition(threading.RLock())
        self._inside: list[int] = []  # the threads whose calls have not left
        self._closed = False
        self._released = False
        self._handle: int = self._library.VeltraSDK_Create(milliseconds)
        self._library.VeltraSDK_SetStrict(self._handle, True)
        self._library.VeltraSDK_SetOverlap(self._handle, overlap)

    def check(self, operation: str) -> None:
        """Raises when the link is another process's or closed."""
        if self._process != os.getpid():
            raise ForkedError(operation, "the adapter was opened by the process that this one was forked from")
        if self._closed:
            raise DisconnectedError(operation, "the adapter is closed")

    @property
    def is_closed(self) -> bool:
        """Whether :meth:`close` has been called."""
        return self._closed

    @property
    def is_foreign(self) -> bool:
        """Whether the link belongs to the process that this one was forked from."""
        return self._process != os.getpid()

    @contextmanager
    def entered(self, operation: str) -> Iterator[int]:
        """The handle, which is not destroyed as long as the context lasts."""
        self.check(operation)  # before the lock, which a fork may have left held
        with self._changed:
            self.check(operation)
            self._inside.append(threading.get_ident())
        try:
            yield self._handle
        finally:
            self._leave()

    def _leave(self) -> None:
        """The last one to leave a closed link releases it."""
        with self._changed:
            self._inside.remove(threading.get_ident())
            if not self._closed or self._inside:
                return
        self._library.VeltraSDK_Destroy(self._handle)
        self._user.leave()
        with self._changed:
            self._released = True
            self._changed.notify_all()

    def call(self, operation: str, function: str, *arguments: object, place: str = "") -> None:
        """Carries an operation out.

        :param operation: its name for people.
        :param function: that of the C function, without its prefix.
        :param arguments: those behind the handle.
        :param place: at what, for the error's text.
        :raises VeltraError: for any result but success.
        """
        with self.entered(operation) as handle:
            result = getattr(self._library, "VeltraSDK_" + function)(handle, *arguments) & 0xFFFF
        if result == 0:
            return
        if self._closed:
            raise DisconnectedError(operation, "the adapter has been closed meanwhile", place)
        raise error_for(operation, result, place, f" within {self.timeout:g} s" if self.timeout else "")

    def connect(self, path: str) -> bool:
        """Opens the adapter at a path; False when that fails."""
        with self.entered("open") as handle:
            return bool(self._library.VeltraSDK_Connect(handle, path.encode()))

    @property
    def is_connected(self) -> bool:
        """Whether the adapter can be reached, as far as the link knows."""
        if self._closed or self.is_foreign:
            return False
        with self.entered("connected") as handle:
            return bool(self._library.VeltraSDK_IsConnected(handle))

    @property
    def unmatched_responses(self) -> int:
        """How many responses were nobody's."""
        with self.entered("unmatched_responses") as handle:
            return int(self._library.VeltraSDK_GetUnmatchedResponses(handle))

    def close(self) -> None:
        """Ends the calls of other threads and the link; does nothing on a closed or foreign one.

        It returns when the handle has been released, but waits neither for its own thread's call, in which
        a finaliser or a signal handler may run, nor without limit for another's.
        """
        if self.is_foreign:
            return
        with self._changed:
            if self._closed:
                return
            waits = threading.get_ident() not in self._inside
            self._inside.append(threading.get_ident())
            self._closed = True
        self._library.VeltraSDK_Disconnect(self._handle)
        self._library.VeltraSDK_CloseNotificationQueue(self._handle)
        self._leave()
        if waits:
            with self._changed:
                self._changed.wait_for(lambda: self._released, LEAVING_SECONDS)


def _milliseconds(timeout: float | None) -> int:
    """A time-out as the library takes it: at least 1 ms, -1 for none."""
    if timeout is None:
        return -1
    if not isinstance(timeout, (int, float)) or not 0 < timeout <= 2_147_483:
        raise ArgumentError("open", f"the timeout must be seconds above 0, or None, not {timeout!r}")
    return max(1, round(timeout * 1000))


def buffer(size: int) -> "ctypes.Array[ctypes.c_uint8]":
    """Room for what the library stores."""
    return (ctypes.c_uint8 * size)()
