# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What the adapter sends of its own accord: interrupts, hot-joins, received bytes.

The library keeps every notification in a queue of its own, filled without Python. One thread takes them
out and hands each to every consumer that wants it; no Python code runs on the library's thread.
"""

import ctypes
import logging
import os
import select
import threading
import weakref
from collections import deque
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from enum import StrEnum

from veltrasdk._library import library
from veltrasdk._link import Link, buffer
from veltrasdk._native import NotificationKind, VeltraSDK_QueuedNotification
from veltrasdk.errors import ArgumentError, DisconnectedError, VeltraError

#: The memory that the library's queue may take, in bytes: some 30,000 interrupts.
QUEUE_BYTES = 1 << 20
#: The longest frame: the length field of a packet has 16 bits.
MAX_FRAME = 1 << 16
#: How many events wait for one consumer before further ones are lost.
MAX_WAITING = 100_000

HEADER_BYTES = 6

_log = logging.getLogger("veltrasdk")


class EventKind(StrEnum):
    """What an event tells; the words are those that :meth:`Adapter.events` takes."""

    #: An I3C target joined the bus.
    HOTJOIN = "hotjoin"
    #: An I3C target raised an in-band interrupt.
    IBI = "ibi"
    #: A GPIO interrupt fired.
    GPIO = "gpio"
    #: The UART received bytes.
    UART = "uart"
    #: A notification that this package does not know.
    UNKNOWN = "unknown"


_KINDS = {
    NotificationKind.I3C_HOT_JOIN: EventKind.HOTJOIN,
    NotificationKind.I3C_IBI: EventKind.IBI,
    NotificationKind.GPIO: EventKind.GPIO,
    NotificationKind.UART_RX: EventKind.UART,
}


@dataclass(frozen=True, slots=True)
class Event:
    """One event.

    :ivar kind: what it tells.
    :ivar time: when its last report was read, in seconds of :func:`time.monotonic`.
    :ivar payload: the interrupt's payload, the bytes that the UART received, the GPIO event byte, the
        provisioned identifier of a target that joined; of an unknown one all bytes behind the header.
    :ivar address: the I3C target's address, 7 bits, of ``ibi`` and ``hotjoin``; else None.
    :ivar pin: the pin of ``gpio``; else None.
    :ivar pid: the provisioned identifier of ``hotjoin``, 48 bits; else None.
    :ivar bcr: the bus characteristics register of ``hotjoin``; else None.
    :ivar dcr: the device characteristics register of ``hotjoin``; else None.
    """

    kind: EventKind
    time: float
    payload: bytes
    address: int | None = None
    pin: int | None = None
    pid: int | None = None
    bcr: int | None = None
    dcr: int | None = None


def decode(kind: int, time: float, frame: bytes) -> Event:
    """An event of a notification's frame. Counts are the adapter's word: no more is taken than came."""
    known = _KINDS.get(kind)  # type: ignore[call-overload]
    body = frame[HEADER_BYTES:]
    if known == EventKind.GPIO and len(body) >= 1:
        return Event(known, time, body[:1], pin=body[0])
    if known == EventKind.IBI and len(body) >= 2:
        return Event(known, time, body[2 : 2 + body[1]], address=body[0])
    if known == EventKind.UART and len(body) >= 2:
        return Event(known, time, body[2 : 2 + int.from_bytes(body[:2], "little")])
    if known == EventKind.HOTJOIN and len(body) >= 9:
        pid = int.from_bytes(body[:6], "big")
        return Event(known, time, body[:6], body[8], pid=pid, bcr=body[6], dcr=body[7])
    return Event(EventKind.UNKNOWN, time, body)


class Events:
    """One consumer's events, in the order in which they came; made by :meth:`Adapter.events`.

    Iterating waits for each. It ends when this object or its adapter is closed, and raises
    :class:`DisconnectedError` when the adapter has gone. It is a context manager that closes itself, may be
    used from several threads, and is closed when nothing refers to it any more.
    """

    def __init__(self, owner: object, link: Link, kinds: frozenset[EventKind]) -> None:
        self._owner = owner  # the adapter stays open as long as somebody waits for its events
        self._link = link
        self._kinds = kinds
        self._changed = threading.Condition(threading.RLock())
        self._waiting: deque[Event] = deque()
        self._lost = 0
        self._ended: str | None = None  # why nothing more comes; empty when this program has closed it
        # A pipe holds one byte exactly while there is something to see.
        self._descriptor, self._filling = os.pipe2(os.O_CLOEXEC)
        self._readable = False
        self._close_pipe = weakref.finalize(self, _close_all, self._descriptor, self._filling)
        self._close_pipe.atexit = False

    def __enter__(self) -> "Events":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __iter__(self) -> Iterator[Event]:
        return self

    def __next__(self) -> Event:
        event = self.take(None)
        if event is None:
            raise StopIteration
        return event

    def fileno(self) -> int:
        """A descriptor that is readable while events wait, and for good once nothing more comes.

        It is for select, poll and event loops. Do not read, write or close it.

        :raises VeltraError: when this object has been closed.
        """
        if self._link.is_foreign:
            self._link.check("events")
        if not self._close_pipe.alive:
            raise VeltraError("events", "the events have been closed")
        return self._descriptor

    @property
    def closed(self) -> bool:
        """Whether this program has ended the events: closed them or their adapter."""
        return self._ended == ""

    @property
    def lost(self) -> int:
        """How many events of any kind were lost so far: for want of room here or in the library."""
        return self._lost

    def wait(self, timeout: float | None = None) -> list[Event]:
        """Waits until there are events.

        :param timeout: how long, in seconds; None waits without limit, 0 does not wait.
        :returns: all that wait, oldest first; empty when none came in time.
        :raises DisconnectedError: when none waits and none will come.
        """
        with self._waited(timeout):
            events = list(self._waiting)
            self._waiting.clear()
            self._set_readable()
            if not events and self._ended is not None:
                raise DisconnectedError("events", self._ended or "the events have been closed")
        return events

    def take(self, timeout: float | None) -> Event | None:
        """The oldest; None when none came in time, or this program has ended the events. For iterators."""
        with self._waited(timeout):
            if self._waiting:
                event = self._waiting.popleft()
                self._set_readable()
                return event
            if self._ended:
                raise DisconnectedError("events", self._ended)
            return None

    @contextmanager
    def _waited(self, timeout: float | None) -> Iterator[None]:
        """The lock, held from the end of the wait on: nothing comes between."""
        if self._link.is_foreign:  # before the lock, which a fork may have left held
            self._link.check("events")
        with self._changed:
            self._changed.wait_for(lambda: self._waiting or self._ended is not None, timeout)
            yield

    def _set_readable(self) -> None:
        """Makes the descriptor tell whether there is anything to see."""
        if not self._close_pipe.alive:
            return
        readable = bool(self._waiting) or self._ended is not None
        if readable and not self._readable:
            os.write(self._filling, b".")
        elif self._readable and not readable:
            os.read(self._descriptor, 1)
        self._readable = readable

    def put(self, events: list[Event], lost: int) -> None:
        """Takes what is wanted of what came. For the dispatcher."""
        with self._changed:
            if self._ended is not None:
                return
            wanted = [event for event in events if event.kind in self._kinds]
            room = max(0, MAX_WAITING - len(self._waiting))
            self._lost += lost + len(wanted[room:])
            self._waiting.extend(wanted[:room])
            if wanted:
                self._set_readable()
                self._changed.notify_all()

    def end(self, reason: str) -> None:
        """Nothing more comes. For the dispatcher."""
        with self._changed:
            if self._ended is None:
                self._ended = reason
            self._set_readable()
            self._changed.notify_all()

    def close(self) -> None:
        """Ends the events: who waits for them waits no longer. The adapter stays open."""
        if self._link.is_foreign:
            return
        with self._changed:
            self._ended = ""
            self._waiting.clear()
            self._changed.notify_all()
            self._close_pipe()


def _close_all(*descriptors: int) -> None:
    for descriptor in descriptors:
        os.close(descriptor)


class Dispatcher:
    """Takes the notifications of one adapter and hands them to its consumers."""

    def __init__(self, link: Link) -> None:
        self._link = link
        self._lock = threading.RLock()
        self._consumers: weakref.WeakSet[Events] = weakref.WeakSet()
        self._ended: str | None = None
        self._thread: threading.Thread | None = None

    def add(self, owner: object, kinds: frozenset[EventKind]) -> Events:
        """A new consumer; the first one starts the thread."""
        self._link.check("events")
        events = Events(owner, self._link, kinds)
        with self._lock:
            if self._thread is None:
                self._start()
            self._consumers.add(events)
            if self._ended is not None:
                events.end(self._ended)
        return events

    def _start(self) -> None:
        with self._link.entered("events") as handle:
            descriptor = library().VeltraSDK_OpenNotificationQueue(handle, QUEUE_BYTES)
        if descriptor < 0:
            raise VeltraError("events", "no memory or descriptor is left for the queue")
        self._thread = threading.Thread(target=self._run, args=(descriptor,), name="veltrasdk events", daemon=True)
        self._thread.start()

    def _run(self, descriptor: int) -> None:
        reason = ""
        frame = buffer(MAX_FRAME)
        try:
            with self._link.entered("events") as handle:
                poll = select.poll()
                poll.register(descriptor, select.POLLIN)
                # Closing the link closes the queue, which makes the descriptor readable for good.
                while not self._link.is_closed and not reason:
                    poll.poll()
                    reason = self._hand_out(handle, frame)
        except DisconnectedError:
            pass  # closed before the thread had begun
        finally:
            with self._lock:
                self._ended = "" if self._link.is_closed else reason or "the dispatcher has ended"
                for consumer in list(self._consumers):
                    consumer.end(self._ended)

    def _hand_out(self, handle: int, frame: "ctypes.Array[ctypes.c_uint8]") -> str:
        """Empties the queue; tells why nothing more comes, if so."""
        taken = VeltraSDK_QueuedNotification()
        events: list[Event] = []
        lost = 0
        reason = ""
        while not reason and library().VeltraSDK_TakeNotification(
            handle, ctypes.byref(taken), frame, len(frame)
        ):
            lost += taken.lostBefore
            if taken.frameSize == 0:
                reason = "the adapter has gone"
            else:
                size = min(taken.frameSize, len(frame))
                events.append(decode(taken.kind, taken.timeNanoseconds / 1e9, ctypes.string_at(frame, size)))
        with self._lock:
            consumers = list(self._consumers)
        for consumer in consumers:
            consumer.put(events, lost)
        return reason


class Subscription:
    """A function that is called with each event; made by :meth:`Adapter.on`.

    It has a thread and a queue of its own: however long it takes, and whatever it raises, no other consumer
    notices. What it raises is logged by the logger ``veltrasdk`` and counted.

    :ivar failures: how many of its calls have raised.
    """

    def __init__(self, events: Events, function: Callable[[Event], object]) -> None:
        self.failures = 0
        self._events = events
        self._function = function
        name = f"veltrasdk {getattr(function, '__name__', 'function')}"
        self._thread = threading.Thread(target=self._run, name=name, daemon=True)
        self._thread.start()

    def _run(self) -> None:
        try:
            for event in self._events:
                try:
                    self._function(event)
                except Exception:  # pylint: disable=broad-exception-caught
                    self.failures += 1
                    _log.exception("a function that was called with %s has failed", event)
        except DisconnectedError as gone:
            _log.info("%s", gone)

    @property
    def lost(self) -> int:
        """How many events were lost so far."""
        return self._events.lost

    def close(self) -> None:
        """Ends the calls; a running one is waited for, unless it is this thread's."""
        self._events.close()
        if threading.current_thread() is not self._thread:
            self._thread.join()


def kinds_of(words: tuple[str, ...]) -> frozenset[EventKind]:
    """The kinds that are meant; none means all."""
    try:
        return frozenset(map(EventKind, words)) or frozenset(EventKind)
    except ValueError:
        listed = ", ".join(EventKind)
        raise ArgumentError("events", f"the kinds are {listed}, not {words!r}") from None
