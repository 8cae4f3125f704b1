# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""GPIO: the adapter's pins."""

import ctypes
from typing import TYPE_CHECKING

from veltrasdk import _checks
from veltrasdk._native import GpioFunctionality, GpioLogicLevel, GpioPinNumber, GpioTriggerType
from veltrasdk.errors import ArgumentError

if TYPE_CHECKING:
    from veltrasdk.adapter import Adapter

MODES = {
    "in": GpioFunctionality.INPUT,
    "in-up": GpioFunctionality.INPUT_PULL_UP,
    "in-down": GpioFunctionality.INPUT_PULL_DOWN,
    "out": GpioFunctionality.OUTPUT,
    "od": GpioFunctionality.OPEN_DRAIN_OUTPUT,
}
EDGES = {
    "rising": GpioTriggerType.RISING_EDGE,
    "falling": GpioTriggerType.FALLING_EDGE,
    "both": GpioTriggerType.BOTH_EDGES,
    "low": GpioTriggerType.LOW_LEVEL,
    "high": GpioTriggerType.HIGH_LEVEL,
}


class GpioPin:
    """A pin; made by :meth:`Adapter.gpio`. Configure it before anything else."""

    def __init__(self, adapter: "Adapter", pin: int) -> None:
        self._adapter = adapter
        self._link = adapter.link
        self._pin = GpioPinNumber(_checks.number("gpio", "the pin", pin, max(GpioPinNumber)))

    @property
    def number(self) -> int:
        """Which pin it is."""
        return int(self._pin)

    def configure(self, mode: str, *, edge: str | None = None, value: int | None = None) -> None:
        """Says what the pin is used for.

        :param mode: ``"in"``, ``"in-up"`` or ``"in-down"`` with a resistor, ``"out"`` or ``"od"`` (open drain,
            which drives low and releases high).
        :param edge: arms the pin's interrupt as :meth:`arm` does; None leaves it as it is.
        :param value: the level that an output starts with, 0 or 1; low unless given.
        """
        functionality = _checks.word("gpio.configure", "the mode", mode, MODES)
        if value is not None and functionality != GpioFunctionality.OUTPUT:
            raise ArgumentError("gpio.configure", f'only the mode "out" takes a value, not "{mode}"')
        level = _level("gpio.configure", value or 0)
        arguments = self._pin, functionality, value is not None, level
        self._link.call("gpio.configure", "GpioConfigurePin", *arguments, place=f"pin {self.number}")
        if edge is not None:
            self.arm(edge)

    def read(self) -> int:
        """The level of the pin's line, 0 or 1."""
        level = ctypes.c_uint8()
        self._link.call("gpio.read", "GpioDigitalRead", self._pin, ctypes.byref(level), place=f"pin {self.number}")
        return level.value

    def write(self, value: int) -> None:
        """Drives an output to 0 or 1; an open-drain output releases its line for 1."""
        level = _level("gpio.write", value)
        self._link.call("gpio.write", "GpioDigitalWrite", self._pin, level, place=f"pin {self.number}")

    @property
    def value(self) -> int:
        """The level of the pin's line; assigning drives an output."""
        return self.read()

    @value.setter
    def value(self, value: int) -> None:
        self.write(value)

    def arm(self, edge: str) -> None:
        """Has the pin send events of kind ``gpio``.

        :param edge: when: ``"rising"``, ``"falling"``, ``"both"``, or at the level ``"low"`` or ``"high"``.
        """
        trigger = _checks.word("gpio.arm", "the edge", edge, EDGES)
        self._link.call("gpio.arm", "GpioConfigureInterrupt", self._pin, trigger, place=f"pin {self.number}")

    def disarm(self) -> None:
        """Has the pin send no more events."""
        self._link.call("gpio.disarm", "GpioDisableInterrupt", self._pin, place=f"pin {self.number}")


def _level(operation: str, value: int) -> GpioLogicLevel:
    return GpioLogicLevel(_checks.number(operation, "the value", value, 1))
