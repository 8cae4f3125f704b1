# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Events, awaited."""

import asyncio

import veltrasdk.events
from veltrasdk.events import Event


class Events:
    """One consumer's events; made by :meth:`Adapter.events`.

    ``async for`` waits for each. It ends when this object or its adapter is closed, and raises
    :class:`veltrasdk.DisconnectedError` when the adapter has gone. It is an asynchronous context manager that closes
    itself. Tasks that wait at the same time take turns.
    """

    def __init__(self, same: veltrasdk.events.Events) -> None:
        self._same = same
        self._turn = asyncio.Lock()
        self._coming: asyncio.Future[None] | None = None

    async def __aenter__(self) -> "Events":
        return self

    async def __aexit__(self, *_: object) -> None:
        self.close()

    def __aiter__(self) -> "Events":
        return self

    async def __anext__(self) -> Event:
        async with self._turn:
            while True:
                closed = self._same.closed  # before it is asked for what it may still hold
                event = self._same.take(0)
                if event is not None:
                    return event
                if closed:
                    raise StopAsyncIteration
                await self._readable()

    @property
    def lost(self) -> int:
        """How many events of any kind were lost so far."""
        return self._same.lost

    async def wait(self, timeout: float | None = None) -> list[Event]:
        """Waits until there are events; see :meth:`veltrasdk.Events.wait`."""
        try:
            async with asyncio.timeout(timeout), self._turn:
                while not (events := self._same.wait(0)):
                    await self._readable()
        except TimeoutError:
            return []
        return events

    async def _readable(self) -> None:
        loop = asyncio.get_running_loop()
        coming = self._coming = loop.create_future()
        loop.add_reader(self._same.fileno(), _wake, coming)
        try:
            await coming
        finally:
            self._stop_waiting()

    def _stop_waiting(self) -> None:
        """Takes the descriptor out of the loop, as long as it is no other file's."""
        if self._coming is not None:
            self._coming.get_loop().remove_reader(self._same.fileno())
            _wake(self._coming)
            self._coming = None

    def close(self) -> None:
        """Ends the events: who waits for them waits no longer."""
        self._stop_waiting()
        self._same.close()


def _wake(coming: "asyncio.Future[None]") -> None:
    if not coming.done():
        coming.set_result(None)
