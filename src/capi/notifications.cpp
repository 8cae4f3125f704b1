// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"

#include <algorithm>

namespace {

/// Hands a notification to the C callback as a record of its own, whose data lies in the handle.
void bridge(VeltraSDK_Handle& handle, const Notification& notification) {
    if (handle.notificationCallback == nullptr) {
        return;
    }
    const size_t kept = std::min(notification.size, handle.notificationData.size());
    std::copy_n(notification.data, kept, handle.notificationData.begin());
    // 256 becomes 0, on purpose: the callback then sees a notification that no accessor takes.
    handle.notificationSize = static_cast<uint8_t>(kept & 0xFFU);

    Notification record{};
    record.kind = notification.kind;
    record.data = handle.notificationData.data();
    record.size = handle.notificationSize;
    handle.notificationCallback(&record);
}

/// Decodes into @p out through a copy, since the caller's record may lie in read-only memory.
template <typename View>
bool decode(const Notification* notification, View* out, View* (Notification::*accessor)() const) {
    if (notification == nullptr || out == nullptr) {
        return false;
    }
    const Notification record = *notification;
    const View* const view = (record.*accessor)();
    if (view == nullptr) {
        return false;
    }
    *out = *view;
    return true;
}

} // namespace

void VeltraSDK_onNotification(VeltraSDK_Handle* handle, VeltraSDK_NotificationCallback callback) {
    handle->notificationCallback = callback;
    handle->sdk->onNotification(
        [handle](const Notification& notification) { bridge(*handle, notification); });
}

bool VeltraSDK_notificationAsI3cHotJoin(const Notification* notification, I3cHotJoinData* out) {
    return decode(notification, out, &Notification::i3cHotJoin);
}

bool VeltraSDK_notificationAsI3cIbi(const Notification* notification, I3cIbiData* out) {
    return decode(notification, out, &Notification::i3cIbi);
}

bool VeltraSDK_notificationAsGpio(const Notification* notification, unsigned char* out) {
    GpioData event{};
    if (out == nullptr || !decode(notification, &event, &Notification::gpio)) {
        return false;
    }
    *out = event.value;
    return true;
}

bool VeltraSDK_notificationAsUartRx(const Notification* notification, UartRxData* out) {
    return decode(notification, out, &Notification::uartRx);
}

int VeltraSDK_OpenNotificationQueue(VeltraSDK_Handle* handle, size_t bytes) {
    constexpr int failed = -1;
    if (handle == nullptr || (handle->notificationQueue && handle->notificationQueue->isOpen())) {
        return failed;
    }
    return handle->notificationQueue.emplace(*handle->sdk, bytes).descriptor();
}

bool VeltraSDK_TakeNotification(VeltraSDK_Handle* handle,
                                VeltraSDK_QueuedNotification* notification, uint8_t* frame,
                                size_t capacity) {
    return handle != nullptr && handle->notificationQueue &&
           handle->notificationQueue->take(*notification, frame, capacity);
}

void VeltraSDK_CloseNotificationQueue(VeltraSDK_Handle* handle) {
    if (handle != nullptr && handle->notificationQueue) {
        handle->notificationQueue->close();
    }
}
