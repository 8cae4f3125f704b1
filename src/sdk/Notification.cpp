// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include <veltrasdk/Notification.hpp>

#include "protocol/ResponseFrame.hpp"

#include <type_traits>

static_assert(std::is_standard_layout_v<Notification>, "C reads the same record");
static_assert(std::is_trivially_copyable_v<Notification>, "C reads the same record");

namespace {

constexpr size_t payloadOffset = 6;
constexpr size_t bytesOffset = 8;

constexpr size_t minHotJoinSize = 15;
constexpr size_t minIbiSize = bytesOffset;
constexpr size_t minGpioSize = 7;
constexpr size_t minUartRxSize = bytesOffset;

bool is(const Notification& notification, NotificationKind kind, size_t minSize) {
    return notification.kind == kind && notification.size >= minSize;
}

} // namespace

I3cHotJoinData* Notification::i3cHotJoin() const {
    if (!is(*this, NotificationKind_I3cHotJoin, minHotJoinSize)) {
        return nullptr;
    }
    ResponseFrame(data, size).copyTo(&i3cHotJoinView, payloadOffset, sizeof(i3cHotJoinView));
    return &i3cHotJoinView;
}

I3cIbiData* Notification::i3cIbi() const {
    if (!is(*this, NotificationKind_I3cIbi, minIbiSize)) {
        return nullptr;
    }
    const ResponseFrame frame(data, size);
    i3cIbiView = {frame.u8(payloadOffset), data + bytesOffset, frame.u8(payloadOffset + 1)};
    return &i3cIbiView;
}

GpioData* Notification::gpio() const {
    if (!is(*this, NotificationKind_Gpio, minGpioSize)) {
        return nullptr;
    }
    gpioView = {ResponseFrame(data, size).u8(payloadOffset)};
    return &gpioView;
}

UartRxData* Notification::uartRx() const {
    if (!is(*this, NotificationKind_UartRx, minUartRxSize)) {
        return nullptr;
    }
    uartRxView = {data + bytesOffset, ResponseFrame(data, size).u16(payloadOffset)};
    return &uartRxView;
}
