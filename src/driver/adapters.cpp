// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/adapters.hpp"

#include "driver/Hidapi.hpp"
#include "driver/VeltraDriver.hpp"
#include "driver/utf8.hpp"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

/// Stores a text with its NUL, cut to the room there is.
template <size_t Capacity>
void store(char (&room)[Capacity], const std::string& text) {
    const size_t length = std::min(text.size(), Capacity - 1);
    *std::copy_n(text.begin(), length, room) = '\0';
}

/// Empty for what there is not, or cannot be converted.
std::string serialNumber(const wchar_t* text) {
    try {
        return text == nullptr ? std::string() : utf8(text);
    } catch (const std::range_error&) {
        return {};
    }
}

} // namespace

std::vector<VeltraSDK_AdapterInfo> pluggedInAdapters() {
    // Without sharing, shutting hidapi down is the objects' alone.
    std::optional<Hidapi> user;
    if (Hidapi::isShared()) {
        user.emplace();
    }
    std::vector<VeltraSDK_AdapterInfo> adapters;
    const Hidapi::Lock held = Hidapi::lock();
    const Hidapi::Devices devices = Hidapi::enumerate(held);
    for (const hid_device_info* info = devices.get(); info != nullptr; info = info->next) {
        const auto* const variant =
            VeltraDriver::findMervoDeviceCharacteristics(info->vendor_id, info->product_id);
        if (variant == nullptr || info->path == nullptr) {
            continue;
        }
        VeltraSDK_AdapterInfo& adapter = adapters.emplace_back();
        store(adapter.path, info->path);
        store(adapter.serialNumber, serialNumber(info->serial_number));
        adapter.reportSize = static_cast<uint16_t>(variant->endpointSize);
        adapter.accessible = info->serial_number != nullptr ||
                             info->manufacturer_string != nullptr ||
                             info->product_string != nullptr;
    }
    return adapters;
}
