#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Prints the library's version and the adapter's five identity strings."""

import veltrasdk

print("libveltrasdk", veltrasdk.library_version())
with veltrasdk.Adapter() as adapter:
    print("Adapter:")
    for index, text in enumerate(adapter.strings(), start=1):
        print(f"  string {index}: {text}")
