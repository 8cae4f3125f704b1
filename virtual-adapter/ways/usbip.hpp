// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"
#include "device/UsbDevice.hpp"

#include "usbip/Device.hpp"

#include <memory>
#include <string>

namespace virtual_adapter {

/// The device that a host has; null while none does.
using DeviceInUse = std::shared_ptr<UsbDevice*>;

/// The adapter as a USB device that USB/IP takes to a host. Every host gets a fresh one, which is
/// the one in @p inUse meanwhile.
usbip::ExportedDevice exportedAdapter(const AdapterSettings& settings,
                                      const DeviceInUse& inUse = nullptr);

/// Lets the device feel @p stimulus. Returns what is wrong with it; nothing once it is done.
std::string tellDevice(UsbDevice* device, const std::string& stimulus, UsbDevice::Time now);

} // namespace virtual_adapter
