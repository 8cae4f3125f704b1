# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""One thread that carries out, in turn, what coroutines wait for."""

import asyncio
import queue
import threading
from collections.abc import Callable, Coroutine
from functools import wraps
from typing import Any, Concatenate, Generic, ParamSpec, TypeVar

from veltrasdk.errors import DisconnectedError

Given = ParamSpec("Given")
Result = TypeVar("Result")
Same = TypeVar("Same")

Job = tuple[asyncio.AbstractEventLoop, "asyncio.Future[Any]", Callable[[], Any]]


class Worker:
    """The thread of one adapter. It keeps no program from ending.

    :ivar stopped: whether it has been told to end.
    """

    def __init__(self) -> None:
        self._jobs: queue.SimpleQueue[Job | None] = queue.SimpleQueue()
        self.stopped = False
        threading.Thread(target=_work, args=(self._jobs,), name="veltrasdk aio", daemon=True).start()

    def __del__(self) -> None:
        self.stop()

    def stop(self) -> None:
        """Ends the thread behind what it has to do."""
        self.stopped = True
        self._jobs.put(None)

    async def run(self, job: Callable[[], Result]) -> Result:
        """Waits until the job is done.

        A wait that is cancelled ends at once: a job that has begun is carried out to its end, and its result
        dropped; one that has not is not begun.

        :raises DisconnectedError: when the thread has been ended.
        """
        if self.stopped:
            raise DisconnectedError("aio", "the adapter is closed")
        loop = asyncio.get_running_loop()
        future: asyncio.Future[Result] = loop.create_future()
        self._jobs.put((loop, future, job))
        return await future


def _work(jobs: "queue.SimpleQueue[Job | None]") -> None:
    while (job := jobs.get()) is not None:
        loop, future, function = job
        if future.cancelled():
            continue
        result, problem = None, None
        try:
            result = function()
        except BaseException as raised:  # pylint: disable=broad-exception-caught
            problem = raised
        try:
            loop.call_soon_threadsafe(_finish, future, result, problem)
        except RuntimeError:
            pass  # the loop is closed, and nobody waits any more
        del job, future, function, result, problem  # nothing is kept alive while the next is waited for


def _finish(future: "asyncio.Future[Any]", result: Any, problem: BaseException | None) -> None:
    if future.cancelled():
        return
    if problem is None:
        future.set_result(result)
    else:
        future.set_exception(problem)


class Awaited(Generic[Same]):
    """An object of the package whose operations are awaited.

    :param worker: the adapter's.
    :param same: the object that does the same without being awaited.
    """

    def __init__(self, worker: Worker, same: Same) -> None:
        self._worker = worker
        self._same = same

    def __repr__(self) -> str:
        return repr(self._same).replace("<veltrasdk.", "<veltrasdk.aio.", 1)


def awaited(
    method: Callable[Concatenate[Same, Given], Result],
) -> Callable[Concatenate[Awaited[Same], Given], Coroutine[Any, Any, Result]]:
    """The method, carried out by the worker."""

    @wraps(method)
    async def call(self: Awaited[Same], /, *positional: Given.args, **named: Given.kwargs) -> Result:
        # pylint: disable-next=protected-access
        return await self._worker.run(lambda: method(self._same, *positional, **named))

    return call
