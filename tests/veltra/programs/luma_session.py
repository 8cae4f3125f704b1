# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Draws on a display with luma.oled, over its own I2C interface."""

import luma.core.interface.serial
import luma.core.render
import luma.oled.device

display = luma.oled.device.ssd1306(luma.core.interface.serial.i2c(port=1, address=0x3C), width=128, height=32)
with luma.core.render.canvas(display) as draw:
    draw.rectangle((0, 0, 15, 7), fill="white")
try:
    luma.oled.device.ssd1306(luma.core.interface.serial.i2c(port=1, address=0x3D))
except OSError as error:
    print("0x3d:", error.strerror)
