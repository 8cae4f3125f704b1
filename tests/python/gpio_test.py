# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""GPIO: pins 0 and 1 are wired together, and so are pins 2 and 3."""

import pytest

import veltrasdk
from conftest import SECONDS
from veltrasdk import Adapter


def test_a_driven_level_is_read_at_the_other_end_of_the_wire(adapter: Adapter) -> None:
    out, back = adapter.gpio(0), adapter.gpio(1)
    out.configure("out", value=1)
    back.configure("in")
    assert back.value == 1
    out.value = 0
    assert (out.number, back.read()) == (0, 0)


def test_an_output_starts_low_unless_told_otherwise(adapter: Adapter) -> None:
    adapter.gpio(0).configure("out")
    assert adapter.gpio(0).value == 0


def test_resistors_pull_a_line_that_nobody_drives(adapter: Adapter) -> None:
    pin = adapter.gpio(4)
    pin.configure("in-up")
    assert pin.value == 1
    pin.configure("in-down")
    assert pin.value == 0


def test_an_open_drain_output_releases_its_line_for_a_one(adapter: Adapter) -> None:
    released, pulled = adapter.gpio(2), adapter.gpio(3)
    pulled.configure("in-up")
    released.configure("od")
    released.write(0)
    assert pulled.value == 0
    released.write(1)
    assert pulled.value == 1


@pytest.mark.parametrize(("edge", "levels"), [("rising", [1]), ("falling", [0]), ("both", [1, 0]), ("high", [1]), ("low", [0])])
def test_an_armed_pin_sends_events(adapter: Adapter, edge: str, levels: list[int]) -> None:
    out, watched = adapter.gpio(0), adapter.gpio(1)
    out.configure("out", value=0 if edge != "low" else 1)
    with adapter.events("gpio") as events:
        watched.configure("in", edge=edge)
        for level in (1, 0):
            out.value = level
        seen = []
        while len(seen) < len(levels):
            seen += events.wait(SECONDS)
        watched.disarm()
        assert [(event.kind, event.pin, event.payload) for event in seen] == [("gpio", 1, b"\x01")] * len(levels)


def test_a_disarmed_pin_sends_none(adapter: Adapter) -> None:
    out, watched = adapter.gpio(0), adapter.gpio(1)
    out.configure("out")
    watched.configure("in", edge="both")
    watched.disarm()
    with adapter.events("gpio") as events:
        out.value = 1
        out.value = 0
        watched.arm("low")  # sends one, behind which nothing else may come
        first = events.wait(SECONDS)
        watched.disarm()
        assert len(first) == 1


def test_a_pin_must_be_configured_first(adapter: Adapter) -> None:
    with pytest.raises(veltrasdk.StatusError, match="gpio.read pin 7: not initialised"):
        adapter.gpio(7).read()


@pytest.mark.parametrize(
    ("call", "text"),
    [
        (lambda adapter: adapter.gpio(8), "gpio: the pin must be 0 to 7, not 8"),
        (lambda adapter: adapter.gpio(0).configure("up"), "the mode must be one of in, in-up, in-down, out, od"),
        (lambda adapter: adapter.gpio(0).configure("in", value=1), 'only the mode "out" takes a value, not "in"'),
        (lambda adapter: adapter.gpio(0).write(2), "gpio.write: the value must be 0 to 1, not 2"),
        (lambda adapter: adapter.gpio(0).arm("up"), "the edge must be one of rising, falling, both, low, high"),
    ],
)
def test_an_argument_that_does_not_fit_is_refused(adapter: Adapter, call: object, text: str) -> None:
    with pytest.raises(veltrasdk.ArgumentError) as caught:
        call(adapter)  # type: ignore[operator]
    assert text in str(caught.value)
