# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""A monochrome OLED display of 128 x 64 pixels with the commands of an SSD1306, as a part of a board.

Whenever a message ends, the frame memory is in the file that the command line names: 8 pages of 128 bytes, each
byte 8 pixels of a column, the uppermost in bit 0.
"""

import pathlib
import sys

from veltrasdk.parts import I2cPart, Nack, main

COLUMNS, PAGES = 128, 8
COMMANDS, DATA = 0x00, 0x40

# How many bytes follow a command; all others are alone.
ARGUMENTS = {0x20: 1, 0x21: 2, 0x22: 2, 0x81: 1, 0x8D: 1, 0xA8: 1, 0xD3: 1, 0xD5: 1, 0xD9: 1, 0xDA: 1, 0xDB: 1}
SET_COLUMNS, SET_PAGES = 0x21, 0x22


class Display(I2cPart):
    """It can be written only."""

    def __init__(self, file):
        self.file = pathlib.Path(file)
        self.memory = bytearray(COLUMNS * PAGES)
        self.columns, self.pages = (0, COLUMNS - 1), (0, PAGES - 1)
        self.place = 0  # of the next data byte in the window of columns and pages

    def start(self, read, restart):
        if read:
            raise Nack

    def write(self, data):
        control, *rest = data or [COMMANDS]
        if control == DATA:
            self.draw(rest)
        elif control == COMMANDS:
            self.command(rest)
        else:
            raise Nack(0)

    def command(self, words):
        while words:
            code = words.pop(0)
            arguments = [words.pop(0) for _ in range(ARGUMENTS.get(code, 0))]
            if code == SET_COLUMNS:
                self.columns = arguments
            elif code == SET_PAGES:
                self.pages = arguments
            self.place = 0

    def draw(self, data):
        width = self.columns[1] - self.columns[0] + 1
        size = width * (self.pages[1] - self.pages[0] + 1)
        for byte in data:
            page, column = divmod(self.place % size, width)
            self.memory[(self.pages[0] + page) * COLUMNS + self.columns[0] + column] = byte
            self.place += 1

    def stop(self):
        self.file.write_bytes(self.memory)


main(Display(sys.argv[1]))
