// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"

#include "usbip/Device.hpp"

namespace virtual_adapter {

/// The adapter as a USB device that USB/IP takes to a host. Every host gets a fresh one.
usbip::ExportedDevice exportedAdapter(const AdapterSettings& settings);

} // namespace virtual_adapter
