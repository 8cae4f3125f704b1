#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Writes the seeds of every fuzz target, made from literal frames: seeds.py DIRECTORY

The committed corpora are these seeds, under their names, and what the fuzzers found beyond them.
"""

import pathlib
import sys

from seeding.library import notifications, operations, packet_joining, strict_mode
from seeding.veltra import device_answers, devices, serprog, tiny_usb, veltra_words
from seeding.virtual_adapter import board_file, capture, part_answers, socket, stimuli, usbip, virtual_adapter

TARGETS = (
    board_file, capture, device_answers, devices, notifications, operations, packet_joining, part_answers, serprog, socket,
    stimuli, strict_mode, tiny_usb, usbip, veltra_words, virtual_adapter)

for target in TARGETS:
    directory = pathlib.Path(sys.argv[1], target.__name__)
    directory.mkdir(parents=True, exist_ok=True)
    for seed, content in target():
        (directory / seed).write_bytes(content)
