# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""The short examples. tests/examples compares what those print that need nobody beside them."""

import io
import pathlib
import re
import runpy
import subprocess
import sys
import threading

import pytest

import veltrasdk
from conftest import SECONDS, VIRTUAL_ADAPTER

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples/python"
SHORT = ["eeprom_programmer", "gpio_watcher", "i3c_bring_up"]


@pytest.mark.parametrize("name", SHORT)
def test_a_short_example_has_less_than_30_lines(name: str) -> None:
    assert len((EXAMPLES / f"{name}.py").read_text().splitlines()) < 30


class Printed(io.StringIO):
    """Standard output; tells when the first line has been printed."""

    def __init__(self) -> None:
        super().__init__()
        self.has_line = threading.Event()

    def write(self, text: str) -> int:
        """Takes a text."""
        count = super().write(text)
        if "\n" in text:
            self.has_line.set()
        return count


def test_the_watcher_prints_each_event(monkeypatch: pytest.MonkeyPatch) -> None:
    # A pin that another test has left low would not fall when it is driven.
    subprocess.run([VIRTUAL_ADAPTER, "tell", "reset"], check=True)
    opened: list[veltrasdk.Adapter] = []
    printed = Printed()

    class Watched(veltrasdk.Adapter):
        """Lets the test drive the pins that the example watches."""

        def events(self, *kinds: str) -> veltrasdk.Events:
            opened.append(self)
            return super().events(*kinds)

    def drive() -> None:
        assert printed.has_line.wait(SECONDS)
        for pin in (0, 2):
            opened[0].gpio(pin).configure("out", value=0)

    driving = threading.Thread(target=drive)
    driving.start()
    monkeypatch.setattr(veltrasdk, "Adapter", Watched)
    monkeypatch.setattr(sys, "argv", ["gpio_watcher.py", "2"])
    monkeypatch.setattr(sys, "stdout", printed)
    runpy.run_path(str(EXAMPLES / "gpio_watcher.py"), run_name="__main__")
    driving.join(SECONDS)
    assert re.fullmatch(r"watching 1 3\n\d+\.\d{6} pin 1 is 0\n\d+\.\d{6} pin 3 is 0\n", printed.getvalue())
