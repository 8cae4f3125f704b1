// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "capi/BufferPool.hpp"

#include <veltrasdk/NotificationQueue.hpp>
#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

struct VeltraSDK_Handle {
    // Outlives the object below, whose destructor ends the calls that have borrowed from it.
    BufferPool buffers;
    std::unique_ptr<VeltraSDK> sdk;

    // The notification bridge's; a callback's record points into the buffer.
    VeltraSDK_NotificationCallback notificationCallback = nullptr;
    std::array<uint8_t, 256> notificationData{};
    uint8_t notificationSize = 0;

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
    return withSdk(handle, [&](VeltraSDK& sdk) {
        const BufferPool::Loan loan(handle->buffers);
        return operation(sdk, loan.buffers());
    });
}
