#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Brings an I3C bus up and asks each target who it is and what it can do."""

import veltrasdk

with veltrasdk.Adapter() as adapter:
    i3c = adapter.i3c(voltage=1.8)
    for target in i3c.init():
        limits = f"writes up to {target.ccc.getmwl()}, reads up to {target.ccc.getmrl().length}"
        print(f"0x{target.address:02x}  pid {target.pid:012x}  bcr 0x{target.bcr:02x}  {limits}")
        try:
            print(f"      capabilities {target.ccc.getcaps().hex(' ')}")
        except veltrasdk.NackError:
            print("      a target of I3C v1.0")
