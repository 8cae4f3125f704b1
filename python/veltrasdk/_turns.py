# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Who may use a bus at a time: single operations beside each other, a sequence of them alone."""

import os
import threading
from collections.abc import Iterator
from contextlib import contextmanager


class Turns:
    """A lock that many share or one has alone, in which a thread that waits to be alone comes next.

    After a fork nobody waits in the child, where those who had it are gone: the link refuses the operation.
    """

    def __init__(self) -> None:
        self._process = os.getpid()
        self._changed = threading.Condition()
        self._sharing = 0
        self._waiting = 0
        self._alone = False

    @contextmanager
    def shared(self) -> Iterator[None]:
        """Beside others that share."""
        if self._process != os.getpid():
            yield
            return
        with self._changed:
            self._changed.wait_for(lambda: not self._alone and not self._waiting)
            self._sharing += 1
        try:
            yield
        finally:
            with self._changed:
                self._sharing -= 1
                self._changed.notify_all()

    @contextmanager
    def alone(self) -> Iterator[None]:
        """Beside nobody."""
        if self._process != os.getpid():
            yield
            return
        with self._changed:
            self._waiting += 1
            try:
                self._changed.wait_for(lambda: not self._alone and not self._sharing)
            finally:
                self._waiting -= 1
            self._alone = True
        try:
            yield
        finally:
            with self._changed:
                self._alone = False
                self._changed.notify_all()
