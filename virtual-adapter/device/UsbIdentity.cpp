// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/UsbIdentity.hpp"

#include <algorithm>

using namespace std::chrono_literals;

namespace virtual_adapter {

namespace {

constexpr UsbIdentity identify(const AdapterVariant& variant, uint16_t productId,
                               std::chrono::microseconds timeOfFrame) {
    return {variant, VELTRASDK_USB_VENDOR_ID, productId, 0x0100, "Veltra", timeOfFrame};
}

} // namespace

const std::array<UsbIdentity, 2> usbIdentities{
    {identify(fullSpeedVariant, VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, 1ms),
     identify(highSpeedVariant, VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED, 125us)}};

const UsbIdentity* findUsbIdentity(const std::string& variantName) {
    const auto* const found =
        std::find_if(usbIdentities.begin(), usbIdentities.end(), [&](const UsbIdentity& identity) {
            return identity.variant.name == variantName;
        });
    return found == usbIdentities.end() ? nullptr : found;
}

} // namespace virtual_adapter
