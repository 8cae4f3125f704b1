# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Events, awaited."""

import asyncio
from collections import deque

import veltrasdk.events
from veltrasdk.errors import DisconnectedError
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
        self._taken: deque[Event] = deque()
        self._coming: asyncio.Future[None] | None = None

    async def __aenter__(self) -> "Events":
        return self

    async def __aexit__(self, *_: object) -> None:
        self.close()

    def __aiter__(self) -> "Events":
        return self

    async def __anext__(self) -> Event:
        if not self._taken:
            try:
                self._taken.extend(await self.wait())
            except DisconnectedError:
                if self._same.closed:
                    raise StopAsyncIteration from None
                raise
        return self._taken.popleft()

    @property
    def lost(self) -> int:
        """How many events of any kind were lost so far."""
        return self._same.lost

    async def wait(self, timeout: float | None = None) -> list[Event]:
        """Waits until there are events; see :meth:`veltrasdk.Events.wait`."""
        if self._taken:
            taken = list(self._taken)
            self._taken.clear()
            return taken
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
        descriptor = self._same.fileno()
        loop.add_reader(descriptor, _wake, coming)
        try:
            await coming
        finally:
            loop.remove_reader(descriptor)
            self._coming = None

    def close(self) -> None:
        """Ends the events: who waits for them waits no longer."""
        if self._coming is not None:
            _wake(self._coming)
        self._same.close()


def _wake(coming: "asyncio.Future[None]") -> None:
    if not coming.done():
        coming.set_result(None)
