# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""What scripts do with python3-spidev, in its own words."""

import spidev


def attempt(what, *arguments):
    try:
        return what(*arguments)
    except OSError as error:
        return f"{type(error).__name__} {error.errno} {error.strerror}"


flash = spidev.SpiDev()
flash.open(0, 0)
print("defaults", flash.mode, flash.bits_per_word, flash.max_speed_hz, flash.lsbfirst, flash.cshigh)
flash.max_speed_hz = 8_000_000
print("identification", bytes(flash.xfer2([0x9F, 0, 0, 0])).hex())
flash.writebytes([0x06])
print("write enabled", flash.xfer2([0x05, 0]))
print("read behind a write", bytes(flash.xfer3([0x03, 0, 0, 0] + [0] * 25))[4:])
flash.mode = 3
print("mode", flash.mode, bytes(flash.xfer([0x9F, 0, 0, 0])).hex())
for attribute in ("threewire", "loop", "no_cs"):
    try:
        setattr(flash, attribute, True)
        print(attribute)
    except OSError as error:
        print(attribute, type(error).__name__, error.errno)
flash.close()

loopback = spidev.SpiDev(0, 1)
loopback.max_speed_hz = 500_000
print("loopback", loopback.xfer2([1, 2, 3]), loopback.readbytes(2))
print("page", loopback.xfer2(list(range(256)) * 15) == list(range(256)) * 15)
loopback.cshigh = True
print("active high", loopback.cshigh, loopback.xfer2([0xA5]))
loopback.lsbfirst = True
print("least significant first", loopback.lsbfirst, loopback.mode)
loopback.bits_per_word = 16
print("words", loopback.bits_per_word, loopback.xfer2([0x12, 0x34]))
print("half a word", attempt(loopback.xfer2, [0x12]))
loopback.close()
print("chip select 7", attempt(spidev.SpiDev, 0, 7))
