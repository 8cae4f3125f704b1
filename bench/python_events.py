#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Receives an event a millisecond while the main thread computes, and prints latency and loss.

usage: python_events.py EVENT_SOURCE [SECONDS]

EVENT_SOURCE is the stand-in for hidapi that sends them. First the package's queue receives them, then a ctypes
callback, which the library's own thread calls: that thread waits for the interpreter meanwhile, and what the
adapter sends is lost. Fails when the queue has lost one.
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

Seen = list[tuple[int, int, float]]  # number, due, received


def compute(seconds: float) -> int:
    """Keeps the interpreter busy."""
    until = time.monotonic() + seconds
    total = 0
    while time.monotonic() < until:
        total += sum(value * value for value in range(1000))
    return total


def from_queue() -> Seen:
    """What a consumer receives."""
    seen: Seen = []

    def receive(events: veltrasdk.Events) -> None:
        for event in events:
            seen.append((*PAYLOAD.unpack(event.payload), time.monotonic_ns()))

    with veltrasdk.Adapter() as adapter:
        events = adapter.events("uart")
        thread = threading.Thread(target=receive, args=(events,))
        thread.start()
        compute(SECONDS)
        events.close()
        thread.join()
        if events.lost:
            print(f"the queue counts {events.lost} lost", file=sys.stderr)
    return seen


def from_callback() -> Seen:
    """What a callback on the library's thread receives."""
    seen: Seen = []

    @_native.VeltraSDK_NotificationCallback
    def receive(notification: "ctypes._Pointer[_native.Notification]") -> None:
        frame = ctypes.string_at(ctypes.cast(notification, ctypes.POINTER(ctypes.c_void_p))[1], 24)
        seen.append((*PAYLOAD.unpack(frame[8:]), time.monotonic_ns()))

    handle = library().VeltraSDK_Create(1000)
    library().VeltraSDK_onNotification(handle, receive)
    library().VeltraSDK_Connect(handle, None)
    compute(SECONDS)
    library().VeltraSDK_Disconnect(handle)
    library().VeltraSDK_Destroy(handle)
    return seen


def report(way: str, receive: Callable[[], Seen]) -> int:
    """Prints a line; returns how many events were lost between the first and the last."""
    seen = receive()
    numbers = [number for number, _, _ in seen]
    lost = numbers[-1] - numbers[0] + 1 - len(numbers)
    latencies = sorted((received - due) / 1e6 for _, due, received in seen)
    median, ninetieth, worst = (latencies[int(len(latencies) * part)] for part in (0.5, 0.9, 0.9999))
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
