#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Sends a message over the UART, whose transmit line is wired to its receive line, and prints what
comes back.
"""

import ctypes
import sys

from veltrasdk import Adapter, declare

# Values of the enumerations in <veltrasdk/uart.h> and <veltrasdk/notification.h>.
BAUD_115200 = 7
NO_HANDSHAKE = 0
NO_PARITY = 0
DATA_8_BITS = 8
STOP_1_BIT = 1
NOTIFICATION_UART_RX = 3

MESSAGE = (
    b"The quick brown fox jumps over the lazy dog, out of the adapter and"
    b" back into it."
)

declare("UartSetBusVoltage", ctypes.c_uint16, ctypes.c_bool)
declare("UartInit", *[ctypes.c_uint8] * 5)
declare("UartSendMessage", ctypes.c_char_p, ctypes.c_uint16)


def set_up(adapter):
    adapter.call("UartSetBusVoltage", 3300, True)
    adapter.call("UartInit", BAUD_115200, NO_HANDSHAKE, NO_PARITY, DATA_8_BITS, STOP_1_BIT)


def receive(adapter, length):
    """Received bytes come in as many notifications as the adapter likes."""
    text = b""
    while len(text) < length:
        notification = adapter.wait_for(NOTIFICATION_UART_RX)
        if notification is None:
            break
        count = int.from_bytes(notification.frame[6:8], "little")
        text += notification.frame[8 : 8 + count]
    return text


with Adapter() as adapter:
    set_up(adapter)
    print("Sending: ", MESSAGE.decode())
    adapter.call("UartSendMessage", MESSAGE, len(MESSAGE))
    text = receive(adapter, len(MESSAGE))
    print("Received:", text.decode())
    if len(text) < len(MESSAGE):
        sys.exit(f"{len(MESSAGE) - len(text)} bytes did not come back.")
