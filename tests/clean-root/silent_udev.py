#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Is udev's socket in a container: takes every request and answers none: silent_udev.py LOG

Writes a line to LOG for each request. Runs until it is killed.
"""
import os
import socket
import sys

os.makedirs("/run/udev", exist_ok=True)
listener = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
listener.bind("/run/udev/control")
with open(sys.argv[1], "w", buffering=1) as log:
    listener.listen()
    unanswered = []
    while True:
        connection, _ = listener.accept()
        unanswered.append(connection)
        print("asked", file=log)
