# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Virtual adapters that tests plug in, and the fixture that does it."""

import os
import pathlib
import subprocess
import sys
from collections.abc import Callable

import pytest

import veltrasdk
from conftest import SECONDS, VIRTUAL_ADAPTER
from veltrasdk import I3cPushPullRate, virtual
from veltrasdk.virtual import Board, BoardError

#: The temperature sensor of the I3C bus, and the event with which a target asks to join.
SENSOR, HOT_JOIN = 0xFFFE00301000, 0x08


def test_a_board_is_an_adapter_of_its_own(model: str) -> None:
    with Board(program=VIRTUAL_ADAPTER, model=model) as board, board.adapter(voltage=3.3) as adapter:
        assert (adapter.info.serial, adapter.info.model) == ("VA-0001", model)
        assert adapter.i2c(0, pull_up="4k7").read(0x50, 5, register=0) == b"Hello"
        assert repr(board) == "<veltrasdk.virtual.Board 'VA-0001'>"


def test_several_boards_stand_side_by_side() -> None:
    with Board(program=VIRTUAL_ADAPTER) as one, Board(program=VIRTUAL_ADAPTER, model="high-speed") as other:
        assert (one.serial, other.serial) == ("VA-0001", "VA-0002")
        with one.adapter(voltage=3.3) as first, other.adapter(voltage=3.3) as second:
            first.i2c(0, pull_up="4k7").write(0x50, b"\x80changed")
            assert second.i2c(0, pull_up="4k7").read(0x50, 7, register=0x80) == b"\xff" * 7
            assert [first.info.model, second.info.model] == ["full-speed", "high-speed"]


def test_a_board_that_is_closed_is_gone() -> None:
    before = veltrasdk.adapters()
    board = Board(program=VIRTUAL_ADAPTER, serial="BENCH-7")
    assert len(veltrasdk.adapters()) == len(before) + 1
    board.close()
    board.close()
    assert veltrasdk.adapters() == before


def test_unplugging_a_board_ends_what_waits() -> None:
    with Board(program=VIRTUAL_ADAPTER) as board:
        with board.adapter(timeout=None) as adapter:
            events = adapter.events()
            board.unplug()
            with pytest.raises(veltrasdk.DisconnectedError, match="the adapter has gone"):
                events.wait(SECONDS)
            with pytest.raises(veltrasdk.DisconnectedError, match="strings 1: the adapter has gone"):
                adapter.strings()
            assert not adapter.connected
        board.plug()
        board.adapter().close()


def test_the_world_around_a_board_is_driven() -> None:
    with Board(program=VIRTUAL_ADAPTER) as board, board.adapter(voltage=3.3, timeout=SECONDS) as adapter:
        pin = adapter.gpio(4)
        pin.configure("in")
        board.gpio.drive(4, 1)
        assert pin.value == 1
        board.gpio.release(4)
        assert pin.value == 0
        with adapter.uart() as uart:
            board.uart.receive(b"\x00hi")
            assert uart.read(3, timeout=SECONDS) == b"\x00hi"


def test_a_part_is_set_and_keeps_back_acknowledges() -> None:
    with Board(program=VIRTUAL_ADAPTER) as board, board.adapter(voltage=3.3) as adapter:
        bus, sensor, eeprom = adapter.i2c(0, pull_up="4k7"), board.i2c(0, 0x48), board.i2c(0, 0x50)
        sensor.set("temperature", 85.5)
        assert bus.read(0x48, 2, register=0) == b"\x55\x80"
        sensor.nack()
        with pytest.raises(veltrasdk.NackError):
            bus.read(0x48, 2, register=0)
        assert bus.read(0x48, 2, register=0) == b"\x55\x80"
        eeprom.nack("data:2", times=2)
        for _ in range(2):
            with pytest.raises(veltrasdk.NackError):
                bus.write(0x50, b"\x80x")
        bus.write(0x50, b"\x80x")


def test_a_target_interrupts_and_joins_and_leaves() -> None:
    with Board(program=VIRTUAL_ADAPTER) as board, board.adapter(timeout=SECONDS) as adapter:
        bus = adapter.i3c(voltage=1.8, push_pull=I3cPushPullRate.RATE_8_MHZ)
        (sensor,) = [target for target in bus.init() if target.pid == SENSOR]
        bus.ccc.enec(HOT_JOIN)
        sensor.interrupts(True)
        with adapter.events("ibi") as events:
            board.i3c(pid=SENSOR).interrupt(b"\x42\x19")
            (event,) = events.wait(SECONDS)
            assert (event.address, event.payload) == (sensor.dynamic_address, b"\x42\x19")
        board.i3c(address=sensor.dynamic_address).leave()
        with pytest.raises(veltrasdk.NackError):
            sensor.read(2, register=0)
        with adapter.events("hotjoin") as events:
            board.i3c(pid=SENSOR).join()
            (event,) = events.wait(SECONDS)
            assert event.pid == SENSOR


def test_resetting_a_board_begins_again() -> None:
    with Board(program=VIRTUAL_ADAPTER) as board:
        with board.adapter(voltage=3.3) as adapter:
            adapter.i2c(0, pull_up="4k7").write(0x48, b"\x01\x1f")
        board.reset()
        with board.adapter(voltage=3.3) as adapter:
            assert adapter.i2c(0, pull_up="4k7").read(0x48, 1, register=1) == b"\x00"


def test_a_fault_strikes_where_it_is_asked_for() -> None:
    with Board(program=VIRTUAL_ADAPTER, faults=["lost-response"]) as board, board.adapter(timeout=1) as adapter:
        with pytest.raises(veltrasdk.NoResponseError, match="strings 3: no response within 1 s"):
            adapter.strings()


@pytest.mark.parametrize(
    ("fault", "kind", "text"),
    [
        ("address-nack@i2c-read:2", veltrasdk.NackError, "i2c.read 0x50: not acknowledged"),
        ("stuck-bus@i2c-read:2", veltrasdk.StatusError, r"a line of the bus low \(status 0x0009\). Initialising"),
        ("lost-response@i2c-read:2", veltrasdk.NoResponseError, "i2c.read 0x50: no response within 1 s"),
        ("unplug@i2c-read:2", veltrasdk.DisconnectedError, "i2c.read 0x50: the adapter has gone"),
    ],
)
def test_a_fault_is_aimed_at_an_operation(fault: str, kind: type[veltrasdk.VeltraError], text: str) -> None:
    with Board(program=VIRTUAL_ADAPTER, faults=[fault]) as board:
        with board.adapter(voltage=3.3, timeout=1) as adapter:
            bus = adapter.i2c(0, pull_up="4k7")
            assert bus.read(0x50, 5, register=0) == b"Hello"
            with pytest.raises(kind, match=text):
                bus.read(0x50, 5, register=0)


def test_what_the_adapter_refuses_is_an_error_with_its_words() -> None:
    with pytest.raises(BoardError, match="board: .*: --model: expected one of full-speed, high-speed"):
        Board(program=VIRTUAL_ADAPTER, model="snail-speed")
    with Board(program=VIRTUAL_ADAPTER) as board, pytest.raises(BoardError, match="board: .*dance"):
        board.tell("dance")


def test_a_missing_program_is_named_with_its_package() -> None:
    with pytest.raises(BoardError, match="no-such-program cannot be run .*Install the package veltra-virtual-adapter"):
        Board(program="no-such-program")


def test_the_client_must_come_before_the_library(monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(virtual, "_clients", {})
    monkeypatch.setenv("LD_PRELOAD", "")
    veltrasdk.adapters()
    with pytest.raises(BoardError, match="has used the library before"):
        virtual.load_client(VIRTUAL_ADAPTER)


def test_an_adapter_ends_with_the_process_that_started_it() -> None:
    program = (
        "import os, signal, sys, veltrasdk.virtual as v\n"
        f"board = v.Board(program={VIRTUAL_ADAPTER!r})\n"
        "print(board._directory, flush=True)\nos.kill(os.getpid(), signal.SIGKILL)"
    )
    ended = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, check=False)
    socket = pathlib.Path(ended.stdout.strip()) / "socket"
    assert socket.is_absolute()
    tell = [VIRTUAL_ADAPTER, "tell", "--socket", str(socket), "reset"]
    while subprocess.run(tell, capture_output=True, check=False).returncode == 0:
        pass
    for file in socket.parent.iterdir():
        file.unlink()
    socket.parent.rmdir()


def test_the_fixture_looks_for_the_program_where_the_tests_have_it(veltra_board: Callable[..., Board]) -> None:
    board = veltra_board(serial="BENCH-8")
    with board.adapter() as adapter:
        assert adapter.strings()[2] == "BENCH-8"


OTHERS_TESTS = """
import veltrasdk

def test_the_fixture_makes_boards(veltra_board):
    first, second = veltra_board(), veltra_board(model="high-speed")
    with first.adapter(voltage=3.3) as adapter:
        assert adapter.i2c(0, pull_up="4k7").scan() == [0x48, 0x50, 0x51]
    assert [adapter.serial for adapter in veltrasdk.adapters()] == [first.serial, second.serial]

def test_the_next_test_meets_none_of_them(veltra_board):
    assert veltrasdk.adapters() == []
"""


def run_pytest(directory: pathlib.Path, tests: str, *options: str) -> "subprocess.CompletedProcess[str]":
    """A run of pytest as a user's: not under any virtual adapter."""
    (directory / "users_test.py").write_text(tests)
    environment = {k: v for k, v in os.environ.items() if k not in ("LD_PRELOAD", virtual.SOCKETS)}
    command = [sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", "-p", "veltrasdk.pytest_plugin"]
    command += [*options, "users_test.py"]
    return subprocess.run(command, cwd=directory, env=environment, capture_output=True, text=True, check=False)


def test_the_fixture_works_without_anything_around_pytest(tmp_path: pathlib.Path) -> None:
    ended = run_pytest(tmp_path, OTHERS_TESTS)
    assert (ended.returncode, ended.stdout.splitlines()[-1][:8]) == (0, "2 passed"), ended.stdout


def test_the_program_is_an_option(tmp_path: pathlib.Path) -> None:
    ended = run_pytest(tmp_path, OTHERS_TESTS, "--veltra-virtual-adapter=no-such-program")
    assert ended.returncode == 1
    assert "no-such-program cannot be run" in ended.stdout
    assert "Install the package veltra-virtual-adapter" in ended.stdout


def test_a_module_that_uses_the_library_when_it_is_imported_is_told_so(tmp_path: pathlib.Path) -> None:
    ended = run_pytest(tmp_path, "import veltrasdk\nveltrasdk.adapters()\n" + OTHERS_TESTS)
    assert "Let no module open or list adapters when it is imported" in ended.stdout


def test_without_the_fixture_the_library_is_left_alone(tmp_path: pathlib.Path) -> None:
    source = "import sys\ndef test_nothing_is_loaded(): assert 'veltrasdk.virtual' not in sys.modules\n"
    assert run_pytest(tmp_path, source).returncode == 0
