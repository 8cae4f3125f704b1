# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The same, awaited."""

import asyncio
import inspect
import threading
from collections.abc import Callable, Coroutine
from typing import Any

import pytest

import veltrasdk
import veltrasdk.aio
from conftest import SECONDS
from veltrasdk import I3cRecord, I3cTargetConfiguration, Read, Write
from veltrasdk.aio._worker import Worker

Body = Callable[[veltrasdk.aio.Adapter], Coroutine[Any, Any, Any]]


def with_adapter(body: Body, **options: Any) -> Any:
    """What a coroutine makes of an open adapter."""

    async def run() -> Any:
        async with veltrasdk.aio.Adapter(voltage=3.3, **options) as adapter:
            return await body(adapter)

    return asyncio.run(run())


# What is awaited under another name, or not there, and why.
DIFFERENT = {
    "Adapter": {"on": "a task is what calls a function here"},
}


@pytest.mark.parametrize("name", veltrasdk.aio.__all__)
def test_everything_public_is_awaited_too(name: str) -> None:
    same, mine = getattr(veltrasdk, name), getattr(veltrasdk.aio, name)
    public = {member for member in dir(same) if not member.startswith("_")}
    if name == "Events":
        public -= {"fileno", "put", "end", "take", "closed"}  # for those who wait otherwise, and for the dispatcher
    if name == "GpioPin":
        public -= {"value"}  # read() and write() are what can be awaited
    assert public - set(dir(mine)) == set(DIFFERENT.get(name, {}))


@pytest.mark.parametrize("name", ["I2cBus", "SpiDevice", "GpioPin", "TargetCcc", "BroadcastCcc", "I3cTarget"])
def test_an_awaited_method_has_the_signature_and_text_of_its_own(name: str) -> None:
    same, mine = getattr(veltrasdk, name), getattr(veltrasdk.aio, name)
    for member, method in inspect.getmembers(mine, inspect.iscoroutinefunction):
        original = getattr(same, member)
        assert inspect.signature(method) == inspect.signature(original)
        assert method.__doc__ == original.__doc__


def test_i2c_is_awaited() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        bus = await adapter.i2c(0, pull_up="4k7")
        assert await bus.scan() == [0x48, 0x50, 0x51]
        assert await bus.read(0x50, 5, register=0) == b"Hello"
        assert await bus.transfer(Write(0x50, b"\x00"), Read(0x50, 2)) == [b"He"]
        with pytest.raises(veltrasdk.NackError):
            await bus.write(0x22, b"")
        assert repr(bus).startswith("<veltrasdk.aio.")

    with_adapter(body)


def test_spi_and_gpio_are_awaited() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        device = await adapter.spi(cs=1)
        assert await device.transfer(b"abc") == b"abc"
        out, back = adapter.gpio(0), adapter.gpio(1)
        await out.configure("out", value=1)
        await back.configure("in")
        assert (await back.read(), out.number) == (1, 0)
        await out.write(0)
        assert await back.read() == 0

    with_adapter(body)


def test_the_uart_is_awaited() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        async with await adapter.uart() as uart:
            await uart.write(b"hello")
            assert await uart.read(2, SECONDS) == b"he"
            assert await uart.read(3, None) == b"llo"
            assert await uart.read(1, 0.01) == b""
            waiting = asyncio.create_task(uart.read(2, None))
            await asyncio.sleep(0)
            assert await uart.read(1, 0.01) == b""  # behind the one that waits
            await uart.write(b"end")
            assert await waiting == b"en"
            assert uart.lost == 0
            uart.close()
            assert await uart.read(2) == b"d"
            with pytest.raises(veltrasdk.DisconnectedError, match="have been closed"):
                await uart.read(1)

    with_adapter(body)


def test_i3c_is_awaited() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        bus = await adapter.i3c(voltage=1.8)
        _, _, sensor = await bus.init()
        assert (sensor.address, sensor.pid, sensor.is_legacy) == (0x0A, 0xFFFE00301000, False)
        assert await sensor.read(2, register=0) == b"\x19\x80"
        assert await sensor.ccc.getdcr() == 0x63
        await bus.ccc.rstdaa()
        assert await bus.targets() == []
        legacy = I3cRecord(static_address=0x4F, configuration=I3cTargetConfiguration.LEGACY_I2C)
        (device,) = await bus.init([legacy])
        assert await device.read(2, register=0) == b"\x14\x00"
        await bus.set_voltage(0)

    with_adapter(body)


def test_an_open_adapter_tells_what_it_is(model: str) -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        assert adapter.info.model == model
        assert (await adapter.strings())[0] == "Veltra"
        assert (adapter.connected, adapter.unmatched_responses) == (True, 0)
        await adapter.voltage_off()
        await adapter.set_voltage(3.3)

    with_adapter(body)


def test_an_adapter_that_is_not_open_says_so() -> None:
    async def run() -> None:
        adapter = veltrasdk.aio.Adapter()
        assert not adapter.connected
        with pytest.raises(veltrasdk.DisconnectedError, match="use it in an async with block"):
            adapter.gpio(0)
        await adapter.close()
        await adapter.close()

    asyncio.run(run())


def test_a_closed_adapter_refuses_everything() -> None:
    async def run() -> None:
        async with veltrasdk.aio.Adapter(voltage=3.3) as adapter:
            bus = await adapter.i2c(0)
        for _ in range(2):
            with pytest.raises(veltrasdk.DisconnectedError, match="the adapter is closed"):
                await bus.scan()
        with pytest.raises(veltrasdk.DisconnectedError, match="the adapter is closed"):
            adapter.events()
        await adapter.close()

    asyncio.run(run())


def test_what_cannot_be_opened_is_told() -> None:
    with pytest.raises(veltrasdk.NotFoundError):
        with_adapter(None, serial="BENCH-7")  # type: ignore[arg-type]


async def changing(adapter: veltrasdk.aio.Adapter) -> veltrasdk.aio.GpioPin:
    """A pin whose changes are events."""
    out = adapter.gpio(0)
    await out.configure("out", value=0)
    await adapter.gpio(1).configure("in", edge="both")
    return out


def test_events_are_iterated() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        out = await changing(adapter)
        async with adapter.events("gpio") as events:
            for level in (1, 0, 1):
                await out.write(level)
            seen = []
            async for event in events:
                seen.append(event.pin)
                if len(seen) == 3:
                    events.close()
            assert (seen, events.lost) == ([1, 1, 1], 0)

    with_adapter(body)


def test_events_are_waited_for() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        out = await changing(adapter)
        async with adapter.events("gpio") as events:
            assert await events.wait(0) == await events.wait(0.01) == []
            waiting = asyncio.create_task(events.wait(SECONDS))
            await out.write(1)
            assert len(await waiting) == 1
            await out.write(0)
            await out.write(1)
            first = await anext(aiter(events))
            assert first.pin == 1 and len(await events.wait(SECONDS)) == 1

    with_adapter(body)


def test_tasks_that_iterate_at_the_same_time_take_turns() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        events = adapter.events("gpio")
        waiting = [asyncio.create_task(anext(aiter(events))) for _ in range(2)]
        while events._coming is None:
            await asyncio.sleep(0)
        both = [veltrasdk.Event(veltrasdk.EventKind.GPIO, float(i), b"\x01", pin=1) for i in range(2)]
        events._same.put(both, 0)
        assert await asyncio.wait_for(asyncio.gather(*waiting), SECONDS) == both
        events.close()

    with_adapter(body)


def test_events_that_follow_closed_ones_are_waited_for() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        out = await changing(adapter)
        closed = adapter.events("gpio")
        ended = asyncio.create_task(closed.wait())
        while closed._coming is None:
            await asyncio.sleep(0)
        closed.close()
        async with adapter.events("gpio") as following:  # with the descriptor that has just become free
            change = asyncio.create_task(out.write(1))
            assert len(await following.wait(SECONDS)) == 1
            await change
        with pytest.raises(veltrasdk.DisconnectedError, match="have been closed"):
            await ended

    with_adapter(body)


def test_closing_wakes_a_task_that_waits_for_events() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        events = adapter.events("gpio")

        async def iterate() -> list[veltrasdk.Event]:
            return [event async for event in events]

        waiting = asyncio.create_task(iterate())
        await asyncio.sleep(0)
        while events._coming is None:
            await asyncio.sleep(0)
        events.close()
        assert await asyncio.wait_for(waiting, SECONDS) == []

    with_adapter(body)


def test_closing_the_adapter_ends_its_events() -> None:
    async def run() -> list[veltrasdk.Event]:
        async with veltrasdk.aio.Adapter() as adapter:
            events = adapter.events("gpio")

            async def iterate() -> list[veltrasdk.Event]:
                return [event async for event in events]

            waiting = asyncio.create_task(iterate())
            while events._coming is None:
                await asyncio.sleep(0)
        return await asyncio.wait_for(waiting, SECONDS)

    assert asyncio.run(run()) == []


def test_a_cancelled_operation_leaves_the_adapter_usable() -> None:
    async def body(adapter: veltrasdk.aio.Adapter) -> None:
        bus = await adapter.i2c(0, pull_up="4k7")
        reads = [asyncio.create_task(bus.read(0x50, 200, register=0)) for _ in range(20)]
        await asyncio.sleep(0)
        for read in reads[::2]:
            read.cancel()
        done = await asyncio.gather(*reads, return_exceptions=True)
        assert all(isinstance(result, asyncio.CancelledError) for result in done[::2])
        assert all(isinstance(result, bytes) and result[:5] == b"Hello" for result in done[1::2])
        with pytest.raises(TimeoutError):
            async with asyncio.timeout(0):
                await bus.scan()
        assert await bus.scan() == [0x48, 0x50, 0x51]

    with_adapter(body)


def test_cancelling_while_the_adapter_is_opened_closes_it() -> None:
    async def run() -> None:
        adapter = veltrasdk.aio.Adapter()
        opening = asyncio.create_task(adapter.open())
        await asyncio.sleep(0)
        opening.cancel()
        with pytest.raises(asyncio.CancelledError):
            await opening
        veltrasdk.Adapter().close()

    asyncio.run(run())


def test_a_job_that_was_cancelled_before_its_turn_is_not_begun() -> None:
    async def run() -> list[str]:
        worker, begun, go = Worker(), [], threading.Event()

        def first() -> None:
            begun.append("first")
            go.wait(SECONDS)

        running = asyncio.create_task(worker.run(first))
        cancelled = asyncio.create_task(worker.run(lambda: begun.append("cancelled")))
        last = asyncio.create_task(worker.run(lambda: begun.append("last")))
        await asyncio.sleep(0)
        cancelled.cancel()
        await asyncio.sleep(0)
        go.set()
        await asyncio.gather(running, last)
        return begun

    assert asyncio.run(run()) == ["first", "last"]


def test_a_result_that_nobody_waits_for_is_dropped() -> None:
    go = threading.Event()
    worker = Worker()

    async def leave() -> None:
        task = asyncio.create_task(worker.run(lambda: go.wait(SECONDS)))
        await asyncio.sleep(0)
        task.cancel()

    asyncio.run(leave())  # the loop is closed while the job runs
    go.set()

    async def again() -> int:
        return await worker.run(lambda: 7)

    assert asyncio.run(again()) == 7
