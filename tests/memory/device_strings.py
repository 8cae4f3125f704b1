#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Reads the adapter's strings and does not release them as it must.

usage: mishandle_strings.py keep|free
"""

import ctypes
import sys

from veltrasdk import Adapter, DeviceInfoRecord, library

free = ctypes.CDLL(None).free
free.restype = None
free.argtypes = [ctypes.c_void_p]

record = DeviceInfoRecord()
with Adapter() as adapter:
    if library.VeltraSDK_GetDeviceInfo(adapter.handle, ctypes.byref(record)) != 0:
        sys.exit("the strings could not be read")
for index in range(1, 6):
    name = f"usbString{index}"
    if sys.argv[1] == "free":
        free(getattr(record, name))
    setattr(record, name, None)
