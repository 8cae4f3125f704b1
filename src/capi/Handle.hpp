#pragma once

#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <array>
#include <memory>

struct VeltraSDK_Handle {
    std::unique_ptr<VeltraSDK> sdk;

    // The notification bridge's; a callback's record points into the buffer.
    VeltraSDK_NotificationCallback notificationCallback = nullptr;
    std::array<uint8_t, 256> notificationData{};
    uint8_t notificationSize = 0;
};

/// The rule of every C function with a result code: a null handle is not connected.
template <typename Operation>
int16_t withSdk(VeltraSDK_Handle* handle, const Operation& operation) {
    const uint16_t result =
        handle == nullptr ? uint16_t{ResultCode_NotConnected} : operation(*handle->sdk);
    return static_cast<int16_t>(result);
}
