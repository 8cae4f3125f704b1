// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/AdapterVariant.hpp"

#include <array>
#include <chrono>
#include <cstdint>
#include <string>

namespace virtual_adapter {

/// What a host reads of the adapter before it sends anything.
struct UsbIdentity {
    AdapterVariant variant;
    uint16_t vendorId;
    uint16_t productId;
    /// Binary-coded decimal: 0x0100 is 1.0.
    uint16_t deviceRelease;
    const char* manufacturer;
    /// How long a report takes to cross the bus.
    std::chrono::microseconds timeOfFrame;
};

/// The full-speed variant's, then the high-speed variant's.
extern const std::array<UsbIdentity, 2> usbIdentities;

/// Null when no variant has that name.
const UsbIdentity* findUsbIdentity(const std::string& variantName);

} // namespace virtual_adapter
