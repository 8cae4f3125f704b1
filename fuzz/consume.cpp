// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "consume.hpp"

#include "Input.hpp"

#include <veltrasdk/veltrasdk.h>

#include <cstring>
#include <numeric>

namespace fuzzing {

namespace {

constexpr size_t payloadOffset = 8;

volatile unsigned sink = 0;

/// Reads @p length bytes, or those that the frame has.
void readPayload(const Notification& notification, const uint8_t* payload, size_t length) {
    const size_t present = std::min(length, notification.size - payloadOffset);
    sink = std::accumulate(payload, payload + present, 0U);
}

void consumeHotJoin(const Notification& notification) {
    I3cHotJoinData decoded{};
    const I3cHotJoinData* const view = notification.i3cHotJoin();
    const bool succeeded = VeltraSDK_notificationAsI3cHotJoin(&notification, &decoded);
    require(succeeded == (view != nullptr), "C and C++ accept the same hot-joins");
    require(!succeeded || std::memcmp(&decoded, view, sizeof decoded) == 0,
            "C and C++ decode the same hot-join");
}

void consumeIbi(const Notification& notification) {
    I3cIbiData decoded{};
    const I3cIbiData* const view = notification.i3cIbi();
    const bool succeeded = VeltraSDK_notificationAsI3cIbi(&notification, &decoded);
    require(succeeded == (view != nullptr), "C and C++ accept the same in-band interrupts");
    if (succeeded) {
        require(decoded.address == view->address && decoded.payload == view->payload &&
                    decoded.payloadLength == view->payloadLength,
                "C and C++ decode the same in-band interrupt");
        readPayload(notification, decoded.payload, decoded.payloadLength);
    }
}

void consumeGpio(const Notification& notification) {
    unsigned char decoded = 0;
    const GpioData* const view = notification.gpio();
    const bool succeeded = VeltraSDK_notificationAsGpio(&notification, &decoded);
    require(succeeded == (view != nullptr), "C and C++ accept the same GPIO events");
    require(!succeeded || decoded == view->value, "C and C++ decode the same GPIO event");
}

void consumeUartRx(const Notification& notification) {
    UartRxData decoded{};
    const UartRxData* const view = notification.uartRx();
    const bool succeeded = VeltraSDK_notificationAsUartRx(&notification, &decoded);
    require(succeeded == (view != nullptr), "C and C++ accept the same received bytes");
    if (succeeded) {
        require(decoded.data == view->data && decoded.length == view->length,
                "C and C++ decode the same received bytes");
        readPayload(notification, decoded.data, decoded.length);
    }
}

} // namespace

void consume(const Notification& notification) {
    consumeHotJoin(notification);
    consumeIbi(notification);
    consumeGpio(notification);
    consumeUartRx(notification);
}

void consumeInC(const Notification* notification) {
    consume(*notification);
}

} // namespace fuzzing
