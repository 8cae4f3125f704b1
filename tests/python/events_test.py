# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Events: an own queue per consumer, from the descriptor of the library's."""

import asyncio
import logging
import select
import struct
import threading
import time
from collections.abc import Iterator

import pytest

import veltrasdk
from conftest import SECONDS
from veltrasdk import Adapter, Event, EventKind, GpioPin, events as module
from veltrasdk._native import NotificationKind


@pytest.fixture
def toggle(adapter: Adapter) -> Iterator[GpioPin]:
    """A pin whose changes are events."""
    out, watched = adapter.gpio(0), adapter.gpio(1)
    out.configure("out", value=0)
    watched.configure("in", edge="both")
    with adapter.events("gpio") as events:  # what another test has left on its way comes first
        began = time.monotonic()
        out.value = 1
        while all(event.time < began for event in events.wait(SECONDS)):
            pass
        out.value = 0
        events.wait(SECONDS)
    yield out
    watched.disarm()


def change(pin: GpioPin, times: int) -> None:
    for place in range(times):
        pin.value = (place + 1) % 2


def collect(events: veltrasdk.Events, count: int) -> list[Event]:
    seen: list[Event] = []
    while len(seen) < count:
        some = events.wait(SECONDS)
        assert some, "nothing came"
        seen += some
    return seen


def test_each_consumer_receives_every_event(adapter: Adapter, toggle: GpioPin) -> None:
    with adapter.events("gpio") as first, adapter.events() as second:
        change(toggle, 10)
        seen = collect(first, 10)
        assert collect(second, 10) == seen
        assert (first.lost, second.lost) == (0, 0)


def test_a_consumer_receives_the_kinds_that_it_wants(adapter: Adapter, toggle: GpioPin) -> None:
    with adapter.events("uart") as other, adapter.events("gpio") as wanted:
        change(toggle, 2)
        assert [event.kind for event in collect(wanted, 2)] == [EventKind.GPIO] * 2
        assert other.wait(0) == []


def test_events_have_the_time_at_which_they_came(adapter: Adapter, toggle: GpioPin) -> None:
    import time

    before = time.monotonic()
    with adapter.events("gpio") as events:
        change(toggle, 2)
        first, second = collect(events, 2)
    assert before <= first.time <= second.time <= time.monotonic()


def test_waiting_ends_with_nothing_when_the_time_is_up(adapter: Adapter) -> None:
    with adapter.events("gpio") as events:
        assert events.wait(0) == []
        assert events.wait(0.01) == []


class PutBetween:
    """A lock of events, behind whose first holder another thread puts an event."""

    def __init__(self, events: veltrasdk.Events, event: Event) -> None:
        self._same, self._events, self._event = events._changed, events, [event]

    def __enter__(self) -> None:
        self._same.__enter__()

    def __exit__(self, *_: object) -> None:
        self._same.__exit__(None, None, None)
        if self._event:
            self._events.put([self._event.pop()], 0)

    def __getattr__(self, name: str) -> object:
        return getattr(self._same, name)


def test_an_event_that_comes_when_a_wait_ends_is_kept(adapter: Adapter, monkeypatch: pytest.MonkeyPatch) -> None:
    event = Event(EventKind.GPIO, 1.0, b"\x03", pin=3)
    with adapter.events("gpio") as events:
        monkeypatch.setattr(events, "_changed", PutBetween(events, event))
        assert [*events.wait(0), *events.wait(0)] == [event]


def test_the_descriptor_is_readable_exactly_while_events_wait(adapter: Adapter, toggle: GpioPin) -> None:
    with adapter.events("gpio") as events:
        assert select.select([events], [], [], 0) == ([], [], [])
        change(toggle, 2)
        assert select.select([events], [], [], SECONDS)[0] == [events]
        collect(events, 2)
        assert select.select([events], [], [], 0) == ([], [], [])
    with pytest.raises(veltrasdk.VeltraError, match="have been closed"):
        events.fileno()


def test_an_event_loop_takes_the_descriptor(adapter: Adapter, toggle: GpioPin) -> None:
    async def first_event() -> Event:
        loop = asyncio.get_running_loop()
        came: asyncio.Future[Event] = loop.create_future()
        with adapter.events("gpio") as events:
            loop.add_reader(events, lambda: came.set_result(events.wait(0)[0]))
            toggle.value = 1
            event = await asyncio.wait_for(came, SECONDS)
            loop.remove_reader(events)
            return event

    assert asyncio.run(first_event()).pin == 1


def test_iterating_ends_when_the_events_are_closed(adapter: Adapter, toggle: GpioPin) -> None:
    events = adapter.events("gpio")
    change(toggle, 1)
    seen = []
    for event in events:
        seen.append(event)
        events.close()
    assert len(seen) == 1
    events.put(seen, 1)  # what the dispatcher was about to hand out
    assert (list(events), events.lost) == ([], 0)
    with pytest.raises(veltrasdk.DisconnectedError, match="have been closed"):
        events.wait()


def test_closing_wakes_a_thread_that_waits(adapter: Adapter) -> None:
    events = adapter.events("gpio")
    ended = threading.Event()

    def wait() -> None:
        list(events)
        ended.set()

    threading.Thread(target=wait).start()
    events.close()
    assert ended.wait(SECONDS)


def test_a_consumer_that_does_not_take_loses_the_newest_and_counts_them(
    adapter: Adapter, toggle: GpioPin, monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.setattr(module, "MAX_WAITING", 3)
    with adapter.events("gpio") as slow, adapter.events("gpio") as fast:
        taken = 0
        for _ in range(10):
            change(toggle, 1)
            toggle.value = 0
            taken += len(collect(fast, 2))
        assert (taken, fast.lost) == (20, 0)
        assert len(slow.wait(0)) == 3
        assert slow.lost == 17


def test_what_the_library_lost_is_counted_by_every_consumer(adapter: Adapter) -> None:
    with adapter.events("gpio") as one, adapter.events("uart") as other:
        for consumer in (one, other):
            consumer.put([], 5)
        assert (one.lost, other.lost) == (5, 5)


def test_a_function_is_called_with_each_event(adapter: Adapter, toggle: GpioPin) -> None:
    seen: list[Event] = []
    enough = threading.Event()

    def note(event: Event) -> None:
        seen.append(event)
        if len(seen) == 4:
            enough.set()

    subscription = adapter.on(note, "gpio")
    change(toggle, 4)
    assert enough.wait(SECONDS)
    subscription.close()
    change(toggle, 2)
    assert len(seen) == 4
    assert (subscription.failures, subscription.lost) == (0, 0)


def test_a_function_that_raises_ends_nothing_else(
    adapter: Adapter, toggle: GpioPin, caplog: pytest.LogCaptureFixture
) -> None:
    calls = threading.Semaphore(0)

    def fail(event: Event) -> None:
        calls.release()
        raise RuntimeError("a fault of the consumer's")

    with caplog.at_level(logging.ERROR, "veltrasdk"), adapter.events("gpio") as other:
        subscription = adapter.on(fail, "gpio")
        change(toggle, 3)
        assert len(collect(other, 3)) == 3
        for _ in range(3):
            assert calls.acquire(timeout=SECONDS)
        subscription.close()
    assert subscription.failures == 3
    assert caplog.text.count("RuntimeError: a fault of the consumer's") == 3


def test_a_function_may_close_its_own_subscription(adapter: Adapter, toggle: GpioPin) -> None:
    called = threading.Event()
    made = threading.Event()

    def once(event: Event) -> None:
        made.wait(SECONDS)
        subscription.close()
        called.set()

    subscription = adapter.on(once, "gpio")
    made.set()
    change(toggle, 2)
    assert called.wait(SECONDS)


def test_a_kind_that_does_not_exist_is_refused(adapter: Adapter) -> None:
    with pytest.raises(veltrasdk.ArgumentError, match="the kinds are hotjoin, ibi, gpio, uart, unknown"):
        adapter.events("gpio", "spi")


HEADER = bytes(6)


@pytest.mark.parametrize(
    ("kind", "body", "event"),
    [
        (NotificationKind.GPIO, b"\x03", Event(EventKind.GPIO, 1.0, b"\x03", pin=3)),
        (NotificationKind.GPIO, b"", Event(EventKind.UNKNOWN, 1.0, b"")),
        (NotificationKind.I3C_IBI, b"\x09\x02ab", Event(EventKind.IBI, 1.0, b"ab", address=9)),
        (NotificationKind.I3C_IBI, b"\x09\xffab", Event(EventKind.IBI, 1.0, b"ab", address=9)),
        (NotificationKind.I3C_IBI, b"\x09", Event(EventKind.UNKNOWN, 1.0, b"\x09")),
        (NotificationKind.UART_RX, b"\x02\x00abc", Event(EventKind.UART, 1.0, b"ab")),
        (NotificationKind.UART_RX, b"\xff\xffabc", Event(EventKind.UART, 1.0, b"abc")),
        (NotificationKind.UART_RX, b"\x02", Event(EventKind.UNKNOWN, 1.0, b"\x02")),
        (
            NotificationKind.I3C_HOT_JOIN,
            bytes.fromhex("fffe004010000141 0b"),
            Event(EventKind.HOTJOIN, 1.0, bytes.fromhex("fffe00401000"), 0x0B, None, 0xFFFE00401000, 0x01, 0x41),
        ),
        (NotificationKind.I3C_HOT_JOIN, bytes(8), Event(EventKind.UNKNOWN, 1.0, bytes(8))),
        (NotificationKind.UNKNOWN, struct.pack("4B", 1, 2, 3, 4), Event(EventKind.UNKNOWN, 1.0, b"\1\2\3\4")),
        (77, b"", Event(EventKind.UNKNOWN, 1.0, b"")),
    ],
)
def test_a_frame_is_read_no_further_than_it_reaches(kind: int, body: bytes, event: Event) -> None:
    assert module.decode(kind, 1.0, HEADER + body) == event


def test_closing_the_adapter_ends_its_events(adapter: Adapter) -> None:
    adapter.close()
    with Adapter() as opened:
        iterated, waited = opened.events(), opened.events()
        called = opened.on(print)
    assert list(iterated) == []
    with pytest.raises(veltrasdk.DisconnectedError, match="have been closed"):
        waited.wait(SECONDS)
    called.close()
    with pytest.raises(veltrasdk.DisconnectedError, match="the adapter is closed"):
        opened.events()
