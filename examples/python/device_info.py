#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Prints the library's version and the adapter's five identity strings."""

from veltrasdk import Adapter, library

print("libveltrasdk", library.VeltraSDK_GetVersion().decode())
with Adapter() as adapter:
    print("Adapter:")
    for index, text in enumerate(adapter.device_info(), start=1):
        print(f"  string {index}: {text.decode(errors='replace')}")
