#pragma once

#include <veltrasdk/NotificationQueue.hpp>
#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

/// What a C function's bytes are copied into on their way to the class and back. It belongs to one
/// operation at a time and is kept for the next, so that only the first ones allocate.
struct OperationBuffers {
    std::vector<uint8_t> subAddress;
    std::vector<uint8_t> sent;
    std::vector<uint8_t> received;
};

struct VeltraSDK_Handle {
    std::unique_ptr<VeltraSDK> sdk;

    // The notification bridge's; a callback's record points into the buffer.
    VeltraSDK_NotificationCallback notificationCallback = nullptr;
    std::array<uint8_t, 256> notificationData{};
    uint8_t notificationSize = 0;

    OperationBuffers buffers;

    std::optional<NotificationQueue> notificationQueue;
};

/// The rule of every C function with a result code: a null handle is not connected.
template <typename Operation>
int16_t withSdk(VeltraSDK_Handle* handle, const Operation& operation) {
    const uint16_t result =
        handle == nullptr ? uint16_t{ResultCode_NotConnected} : operation(*handle->sdk);
    return static_cast<int16_t>(result);
}

/// The same for an operation that hands bytes on.
template <typename Operation>
int16_t withBuffers(VeltraSDK_Handle* handle, const Operation& operation) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return operation(sdk, handle->buffers); });
}
