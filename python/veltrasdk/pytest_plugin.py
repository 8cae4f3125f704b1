# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The fixture ``veltra_board``: virtual adapters for tests, each of its own.

.. code-block:: python

    def test_boot(veltra_board):
        board = veltra_board("board.toml")
        with board.adapter(voltage=3.3) as adapter:
            assert adapter.i2c(0).read(0x76, 1, register=0xD0) == b"\\x60"

Where a test of the session asks for it, virtual adapters take the place of real ones in the whole process:
tests on hardware belong into a session of their own.
"""

import os
from collections.abc import Callable, Iterator
from typing import TYPE_CHECKING

import pytest

if TYPE_CHECKING:
    # A run of pytest without the fixture loads nothing but this file.
    from veltrasdk.virtual import Board

OPTION = "--veltra-virtual-adapter"
FIXTURE = "veltra_board"


def pytest_addoption(parser: pytest.Parser) -> None:
    """The program, where it is not in the path."""
    parser.getgroup("veltra").addoption(
        OPTION,
        metavar="PROGRAM",
        default=os.environ.get("VELTRA_VIRTUAL_ADAPTER", "veltra-virtual-adapter"),
        help="the program veltra-virtual-adapter, which the fixture veltra_board starts",
    )


def pytest_collection_finish(session: pytest.Session) -> None:
    """Puts virtual adapters in front of the library, before any test has loaded it."""
    if any(FIXTURE in getattr(item, "fixturenames", ()) for item in session.items):
        from veltrasdk import virtual  # pylint: disable=import-outside-toplevel

        try:
            virtual.load_client(session.config.getoption(OPTION))
        except virtual.BoardError:
            pass  # the fixture says it, in the tests that need it


@pytest.fixture
def veltra_board(request: pytest.FixtureRequest) -> "Iterator[Callable[..., Board]]":
    """Starts virtual adapters, which are pulled out when the test ends.

    Called as ``veltra_board(board=None, *, model="full-speed", serial=None, faults=())``, it returns a
    :class:`veltrasdk.virtual.Board`. The board file is looked for beside the test.
    """
    from veltrasdk.virtual import Board  # pylint: disable=import-outside-toplevel

    boards: list[Board] = []

    def make(board: str | os.PathLike[str] | None = None, **options: object) -> Board:
        file = None if board is None else request.path.parent / board
        made = Board(file, program=request.config.getoption(OPTION), **options)  # type: ignore[arg-type]
        boards.append(made)
        return made

    yield make
    for made in boards:
        made.close()
