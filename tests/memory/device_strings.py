#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Reads the adapter's strings and releases them as their description says, or otherwise.

usage: device_strings.py release|keep|free
"""

import ctypes
import sys

TEXTS = 5


class DeviceInfo(ctypes.Structure):
    """VeltraSDK_DeviceInfo, with pointers that can be released."""

    _fields_ = [
        field
        for index in range(1, TEXTS + 1)
        for field in ((f"usbString{index}", ctypes.c_void_p), (f"usbString{index}Length", ctypes.c_size_t))
    ]


library = ctypes.CDLL("libveltrasdk.so.1")
library.VeltraSDK_Create.restype = ctypes.c_void_p
for function in (library.VeltraSDK_Connect, library.VeltraSDK_GetDeviceInfo):
    function.argtypes = [ctypes.c_void_p, ctypes.c_void_p]
library.VeltraSDK_Destroy.argtypes = [ctypes.c_void_p]
library._ZdaPv.argtypes = [ctypes.c_void_p]
free = ctypes.CDLL(None).free
free.argtypes = [ctypes.c_void_p]

info = DeviceInfo()
handle = library.VeltraSDK_Create(5000)
if not library.VeltraSDK_Connect(handle, None) or library.VeltraSDK_GetDeviceInfo(handle, ctypes.byref(info)):
    sys.exit("the strings could not be read")
library.VeltraSDK_Destroy(handle)
release = {"release": library._ZdaPv, "free": free, "keep": lambda pointer: None}[sys.argv[1]]
for index in range(1, TEXTS + 1):
    release(getattr(info, f"usbString{index}"))
    setattr(info, f"usbString{index}", None)
