#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Receives an event a millisecond while the main thread computes, and prints latency and loss.

usage: python_events.py EVENT_SOURCE [SECONDS]

EVENT_SOURCE is the stand-in for hidapi that sends them. First the package's queue receives them, then a ctypes
callback, which the library's own thread calls: that thread waits for the interpreter meanwhile, and what the
adapter sends is lost. Lost is what was due between the first event that came and the end of the computing, and
never came. Fails when the queue has lost one.
"""

import ctypes
import struct
import sys
import threading
import time
from collections.abc import Callable

ctypes.CDLL(sys.argv[1], mode=ctypes.RTLD_GLOBAL)  # before the library, which finds it in hidapi's place

# pylint: disable=wrong-import-position
import veltrasdk  # noqa: E402
from veltrasdk import _native  # noqa: E402
from veltrasdk._library import library  # noqa: E402

SECONDS = float(sys.argv[2]) if len(sys.argv) > 2 else 10.0
PAYLOAD = struct.Struct("<qq")  # the event's number, and when it was due in ns

PERIOD = 1_000_000  # ns
PATIENCE = 10.0  # s, for what was due when the computing ended and has not come yet

Seen = list[tuple[int, int, int]]  # number, due, received


def compute(seconds: float) -> int:
    """Keeps the interpreter busy."""
    until = time.monotonic() + seconds
    total = 0
    while time.monotonic() < until:
        total += sum(value * value for value in range(1000))
    return total


def until_nothing_is_due(seen: Seen) -> int:
    """Computes, waits for what is still to come, and returns when the computing ended, in ns."""
    compute(SECONDS)
    ended = time.monotonic_ns()
    limit = time.monotonic() + PATIENCE
    while (not seen or seen[-1][1] < ended) and time.monotonic() < limit:
        time.sleep(0.01)
    return ended


def from_queue() -> tuple[Seen, int]:
    """What a consumer receives, and when the computing ended."""
    seen: Seen = []

    def receive(events: veltrasdk.Events) -> None:
        for event in events:
            seen.append((*PAYLOAD.unpack(event.payload), time.monotonic_ns()))

    with veltrasdk.Adapter() as adapter:
        events = adapter.events("uart")
        thread = threading.Thread(target=receive, args=(events,))
        thread.start()
        ended = until_nothing_is_due(seen)
        events.close()
        thread.join()
        if events.lost:
            print(f"the queue counts {events.lost} lost", file=sys.stderr)
    return seen, ended


def from_callback() -> tuple[Seen, int]:
    """What a callback on the library's thread receives, and when the computing ended."""
    seen: Seen = []

    @_native.VeltraSDK_NotificationCallback
    def receive(notification: "ctypes._Pointer[_native.Notification]") -> None:
        frame = ctypes.string_at(ctypes.cast(notification, ctypes.POINTER(ctypes.c_void_p))[1], 24)
        seen.append((*PAYLOAD.unpack(frame[8:]), time.monotonic_ns()))

    handle = library().VeltraSDK_Create(1000)
    library().VeltraSDK_onNotification(handle, receive)
    library().VeltraSDK_Connect(handle, None)
    ended = until_nothing_is_due(seen)
    library().VeltraSDK_Disconnect(handle)
    library().VeltraSDK_Destroy(handle)
    return seen, ended


def report(way: str, receive: Callable[[], tuple[Seen, int]]) -> int:
    """Prints a line; returns how many events were lost."""
    everything, ended = receive()
    seen = [event for event in everything if event[1] <= ended]
    if not seen:
        sys.exit(f"{way}: nothing came")
    lost = (ended - seen[0][1]) // PERIOD + 1 - len(seen)
    latencies = sorted((received - due) / 1e6 for _, due, received in seen)
    median, ninetieth = (latencies[int(len(latencies) * part)] for part in (0.5, 0.9))
    worst = latencies[-1]
    print(f"{way:<10}{len(seen):>8}{lost:>8}{median:>10.1f}{ninetieth:>10.1f}{worst:>10.1f}", flush=True)
    return lost


def main() -> int:
    """Both ways, one after the other."""
    print(f"1,000 events/s for {SECONDS:g} s while the main thread computes; latency in ms")
    print(f"{'':<10}{'received':>8}{'lost':>8}{'median':>10}{'90 %':>10}{'worst':>10}")
    lost = report("queue", from_queue)
    report("callback", from_callback)
    return 1 if lost else 0


if __name__ == "__main__":
    sys.exit(main())
