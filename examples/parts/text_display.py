#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""A part of a board in Python: a display of 2 lines of 16 characters on I2C.

A write is a command byte and what belongs to it: 0x01 clears, 0x02 POSITION moves the cursor, 0x03 TEXT
writes from there on. A read returns what is shown, 32 characters. The text is printed on the standard
error output whenever it changes.
"""

import json
import sys

SIZE = 32


class TextDisplay:
    def __init__(self):
        self.shown = bytearray(b" " * SIZE)
        self.cursor = 0
        self.position = 0

    def start(self, read, restart):
        self.position = 0
        return {"ack": True}

    def write(self, data):
        message = bytes.fromhex(data)
        command, rest = message[0], message[1:]
        if command == 0x01:
            self.__init__()
        elif command == 0x02 and rest and rest[0] < SIZE:
            self.cursor = rest[0]
        elif command == 0x03:
            rest = rest[: SIZE - self.cursor]
            self.shown[self.cursor : self.cursor + len(rest)] = rest
            self.cursor += len(rest)
        else:
            return {"ack": 0}  # no such command
        print("display:", self.shown.decode("ascii", "replace"), file=sys.stderr, flush=True)
        return {"ack": len(message)}

    def read(self, count):
        data = (bytes(self.shown[self.position :]) + b"\xff" * count)[:count]
        self.position += count
        return {"data": data.hex()}

    def stop(self):
        return {}

    def set(self, name, value):
        return {"error": "this display has no settings"}


def main():
    display = TextDisplay()
    for line in sys.stdin:
        request = json.loads(line)
        operation = request.pop("op", None)
        answer = request if operation is None else getattr(display, operation)(**request)
        print(json.dumps(answer), flush=True)


if __name__ == "__main__":
    main()
