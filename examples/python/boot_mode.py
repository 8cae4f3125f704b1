#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""Sends the adapter into its boot mode, where it waits for new firmware."""

import veltrasdk

with veltrasdk.Adapter() as adapter:
    adapter.enter_boot_mode()
    print("The adapter has left its application firmware; the link is closed.")
