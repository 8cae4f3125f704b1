# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""luma.oled, as Debian has it, draws on a display of a board through the package."""

import pathlib
import shutil
import subprocess
import sys

import pytest
from luma.core.error import DeviceNotFoundError
from luma.core.interface.serial import i2c
from luma.core.render import canvas
from luma.oled.device import ssd1306

from conftest import VIRTUAL_ADAPTER
from veltrasdk.compat import smbus2
from veltrasdk.virtual import Board

# Without it there is no board with a display.
HELP = subprocess.run([VIRTUAL_ADAPTER, "serve", "--help"], capture_output=True, text=True, check=True).stdout

BOARDS = pathlib.Path(__file__).resolve().parent / "boards"
COLUMNS, PAGES = 128, 8

# A frame of one pixel around the display: the first and the last column, the first and the last row.
FRAME = b"".join(
    b"\xff" + bytes([top | bottom]) * (COLUMNS - 2) + b"\xff"
    for top, bottom in [(0x01, 0)] + [(0, 0)] * (PAGES - 2) + [(0, 0x80)]
)


@pytest.mark.skipif("--board" not in HELP, reason="this veltra-virtual-adapter takes no board files")
@pytest.mark.parametrize("way", ["the bus is handed over", "luma opens the bus"])
def test_luma_draws_a_frame_on_the_display(
    tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch, way: str
) -> None:
    # At the interpreter's exit luma would switch off displays that are gone by then.
    monkeypatch.setattr("luma.core.device.atexit.register", lambda function: function)
    for file in BOARDS.iterdir():
        shutil.copy(file, tmp_path)
    with Board(tmp_path / "display.toml", program=VIRTUAL_ADAPTER) as board, board.adapter(voltage=3.3) as adapter:
        smbus2.use(adapter, pull_up="4k7")
        if way == "luma opens the bus":
            monkeypatch.setitem(sys.modules, "smbus2", smbus2)
            serial = i2c(port=1, address=0x3C)
        else:
            bus = smbus2.SMBus(1)
            serial = i2c(bus=bus, address=0x3C)
        device = ssd1306(serial)
        with canvas(device) as draw:
            draw.rectangle(device.bounding_box, outline="white", fill="black")
        assert (tmp_path / "frame").read_bytes() == FRAME
        with pytest.raises(DeviceNotFoundError, match="I2C device not found on address: 0x3D"):
            ssd1306(i2c(bus=smbus2.SMBus(1), address=0x3D))
        smbus2.use(None)
