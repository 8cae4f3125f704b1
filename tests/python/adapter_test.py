# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Opening, listing, closing; what the errors say."""

import errno
import gc
import pickle
import weakref

import pytest

import veltrasdk
from veltrasdk import Adapter, AdapterInfo, _discovery, errors

HERE = AdapterInfo("1-1:1.0", "VA-0001", "full-speed", True)
HIDDEN = AdapterInfo("1-2:1.0", "", "high-speed", False)


def test_the_library_and_the_package_have_one_version() -> None:
    assert veltrasdk.library_version() == veltrasdk.__version__


def test_every_adapter_is_listed(model: str) -> None:
    assert veltrasdk.adapters() == [AdapterInfo("1-1:1.0", "VA-0001", model, True)]


def test_an_adapter_tells_what_it_is(adapter: Adapter, model: str) -> None:
    assert adapter.info == AdapterInfo("1-1:1.0", "VA-0001", model, True)
    assert adapter.strings() == ["Veltra", model, "VA-0001", "virtual", "1.0.0"]
    assert repr(adapter) == "<veltrasdk.Adapter 'VA-0001' at 1-1:1.0, open>"
    assert (adapter.connected, adapter.unmatched_responses) == (True, 0)


def test_an_adapter_that_is_open_already_is_busy(adapter: Adapter) -> None:
    with pytest.raises(veltrasdk.NotFoundError, match="is open already") as caught:
        Adapter()
    assert (caught.value.reason, caught.value.errno, caught.value.operation) == ("busy", errno.EBUSY, "open")


def test_a_voltage_is_switched_on_and_off(adapter: Adapter) -> None:
    bus = adapter.i2c(0, pull_up="4k7")
    adapter.voltage_off()
    with pytest.raises(veltrasdk.StatusError, match=r"the I/O voltage is off.*Adapter\(voltage=3.3\)"):
        bus.scan()
    adapter.set_voltage(1.8)
    assert bus.scan()
    with pytest.raises(veltrasdk.StatusError, match="voltage 5 V: the adapter refuses a value"):
        adapter.set_voltage(5)


@pytest.mark.parametrize(
    ("there", "serial", "path", "reason", "text"),
    [
        ([], None, None, "absent", "no adapter is plugged in"),
        ([], "BENCH-7", None, "absent", "no adapter is plugged in"),
        ([HERE], "BENCH-7", None, "serial", "no adapter has the serial number 'BENCH-7'. There is 'VA-0001' at 1-1:1.0"),
        ([HERE, HIDDEN], None, "1-3:1.0", "serial", "no adapter has the path '1-3:1.0'"),
        ([HIDDEN], None, None, "permission", "you may not open the adapter at 1-2:1.0: the udev rule"),
        ([HERE, HIDDEN], None, "1-2:1.0", "permission", "you may not open the adapter at 1-2:1.0"),
        ([HERE, HIDDEN], "BENCH-7", None, "permission", "the serial number of the adapter at 1-2:1.0 cannot be read"),
    ],
)
def test_the_reason_why_none_is_found_is_told(
    there: list[AdapterInfo], serial: str, path: str, reason: str, text: str
) -> None:
    with pytest.raises(veltrasdk.NotFoundError) as caught:
        _discovery.find(there, serial, path)
    assert caught.value.reason == reason
    assert text in str(caught.value)
    assert isinstance(caught.value, ConnectionError)


@pytest.mark.parametrize(("serial", "path"), [(None, None), ("VA-0001", None), (None, "1-1:1.0"), ("VA-0001", "1-1:1.0")])
def test_the_first_adapter_that_is_meant_is_taken(serial: str, path: str) -> None:
    assert _discovery.find([HERE, HIDDEN], serial, path) is HERE


def test_an_adapter_that_was_pulled_out_meanwhile_is_absent() -> None:
    assert _discovery.why_not_connected(HIDDEN).reason == "absent"


@pytest.mark.parametrize(
    ("options", "text"),
    [
        ({"timeout": 0}, "the timeout must be seconds above 0, or None, not 0"),
        ({"timeout": "soon"}, "the timeout must be seconds above 0, or None, not 'soon'"),
        ({"overlap": 5}, "overlap must be 1 to 4, not 5"),
    ],
)
def test_an_option_that_does_not_fit_is_refused(options: dict[str, float], text: str) -> None:
    with pytest.raises(veltrasdk.ArgumentError, match=f"open: {text}"):
        Adapter(**options)  # type: ignore[arg-type]


def test_an_adapter_cannot_be_pickled(adapter: Adapter) -> None:
    with pytest.raises(TypeError, match="open it where it is used"):
        pickle.dumps(adapter)


def test_what_another_process_has_opened_is_refused(adapter: Adapter, monkeypatch: pytest.MonkeyPatch) -> None:
    bus, uart = adapter.i2c(0, pull_up="4k7"), adapter.uart()
    events = uart.events
    for owned in (adapter.link, *adapter.bus_turns):  # as a fork leaves them in the child
        monkeypatch.setattr(owned, "_process", 0)
    for call in (
        bus.scan,
        lambda: bus.transfer(veltrasdk.Read(0x50, 1)),
        lambda: uart.read(1),
        events.wait,
        events.fileno,
        lambda: next(events),
        adapter.events,
        adapter.strings,
    ):
        with pytest.raises(veltrasdk.ForkedError, match="was opened by the process that this one was forked from"):
            call()
    uart.close()
    adapter.link.close()
    assert not adapter.connected
    monkeypatch.undo()
    assert (adapter.connected, events.closed) == (True, False)
    uart.close()
    assert bus.scan()


@pytest.mark.parametrize(
    "problem",
    [
        veltrasdk.NackError("i2c.read", 6, "0x22"),
        veltrasdk.StatusError("i2c.read", 0x77),
        veltrasdk.NotFoundError("busy", "open already"),
        veltrasdk.NoResponseError("strings", "no response"),
        veltrasdk.ArgumentError("i2c.read", "no"),
    ],
)
def test_an_exception_is_the_same_in_another_process(problem: veltrasdk.VeltraError) -> None:
    there = pickle.loads(pickle.dumps(problem))
    assert (type(there), str(there), vars(there)) == (type(problem), str(problem), vars(problem))
    assert getattr(there, "errno", None) == getattr(problem, "errno", None)


@pytest.mark.parametrize(
    ("result", "kind", "standard", "text"),
    [
        (0x2000, veltrasdk.NoResponseError, TimeoutError, "spi.transfer cs 0: no response within 1 s"),
        (0x4000, veltrasdk.DisconnectedError, ConnectionError, "spi.transfer cs 0: the adapter has gone"),
        (0x8000, veltrasdk.ArgumentError, ValueError, "spi.transfer cs 0: an argument was refused"),
        (0xA000, veltrasdk.StatusError, Exception, "spi.transfer cs 0: refused: ShortResponse (status 0xA000)"),
        (0x0006, veltrasdk.NackError, OSError, "spi.transfer cs 0: not acknowledged (status 0x0006)"),
        (0x0007, veltrasdk.NackError, OSError, "spi.transfer cs 0: data not acknowledged (status 0x0007)"),
        (0x0123, veltrasdk.StatusError, Exception, "spi.transfer cs 0: refused (status 0x0123)"),
    ],
)
def test_each_result_is_an_exception_of_its_own(
    result: int, kind: type[Exception], standard: type[Exception], text: str
) -> None:
    problem = errors.error_for("spi.transfer", result, "cs 0", " within 1 s")
    assert type(problem) is kind and isinstance(problem, standard)
    assert str(problem) == text


def test_the_family_of_the_exceptions_is_caught_by_their_base() -> None:
    for kind in (veltrasdk.NotFoundError, veltrasdk.NackError, veltrasdk.ForkedError):
        assert issubclass(kind, veltrasdk.VeltraError)


class TestClosing:
    """Needs the adapter for itself."""

    @pytest.fixture(autouse=True)
    def nobody_else_has_it(self, adapter: Adapter) -> None:
        adapter.close()

    def test_a_closed_adapter_refuses_everything(self) -> None:
        opened = Adapter(voltage=3.3)
        bus, pin = opened.i2c(0), opened.gpio(0)
        opened.close()
        for call in (bus.scan, pin.read, opened.strings, opened.events, lambda: opened.unmatched_responses):
            with pytest.raises(veltrasdk.DisconnectedError, match="the adapter is closed"):
                call()
        assert not opened.connected
        assert "closed" in repr(opened)

    def test_an_adapter_may_be_closed_twice(self) -> None:
        with Adapter() as opened:
            opened.close()
        opened.close()

    def test_an_adapter_that_nobody_refers_to_is_closed(self) -> None:
        with pytest.warns(ResourceWarning, match="was not closed"):
            forgotten = weakref.ref(Adapter())
            gc.collect()
        assert forgotten() is None
        Adapter().close()

    def test_a_bus_keeps_its_adapter_open(self) -> None:
        opened = Adapter(voltage=3.3)
        bus = opened.i2c(0, pull_up="4k7")
        again = weakref.ref(opened)
        del opened
        gc.collect()
        assert bus.scan()
        kept = again()
        assert kept is not None
        kept.close()

    def test_an_adapter_whose_voltage_is_refused_is_closed(self) -> None:
        with pytest.raises(veltrasdk.StatusError):
            Adapter(voltage=0.1)
        Adapter().close()
