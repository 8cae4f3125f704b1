// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Notification records and frames of any kind, size and content, decoded in C and in C++, at once
// and when they are taken from a queue.
#include "Input.hpp"
#include "consume.hpp"

#include "capi/Handle.hpp"
#include "support/ScriptedHid.hpp"

#include <veltrasdk/NotificationQueue.hpp>

#include <algorithm>

using fuzzing::Bytes;
using fuzzing::Input;

namespace {

/// Odd, so that entries begin at every byte of the ring; some frames find no room.
constexpr size_t queueSize = 997;

/// Kept for the whole run: what routes frames has no state of its own, and a queue is
/// left empty.
struct Receivers {
    test_support::ScriptedHid hid;
    VeltraSDK sdk{0};
    NotificationQueue queue{sdk, queueSize};
    VeltraSDK_Handle* handle = VeltraSDK_Create(0);

    Receivers() {
        sdk.onNotification(fuzzing::consume);
        VeltraSDK_onNotification(handle, fuzzing::consumeInC);
        VeltraSDK_OpenNotificationQueue(handle, queueSize);
    }
    ~Receivers() { VeltraSDK_Destroy(handle); }
};

/// Takes what @p frame became in both queues, in C with room for @p capacity bytes.
void takeAndConsume(Receivers& receivers, const Bytes& frame, size_t capacity) {
    NotificationQueue::Entry entry;
    Bytes stored(capacity);
    VeltraSDK_QueuedNotification notification{};
    while (receivers.queue.take(entry)) {
        fuzzing::require(entry.frame == frame, "a queue holds what was put into it");
        fuzzing::consume(entry.notification());
        fuzzing::require(VeltraSDK_TakeNotification(receivers.handle, &notification, stored.data(),
                                                    stored.size()),
                         "C and C++ keep the same notifications");
        fuzzing::require(notification.frameSize == frame.size() &&
                             notification.kind == entry.kind &&
                             notification.lostBefore == entry.lostBefore,
                         "C and C++ tell the same of a notification");
        fuzzing::consume(
            VeltraSDK_notificationFromQueue(&notification, stored.data(), stored.size()));
    }
    fuzzing::require(
        !VeltraSDK_TakeNotification(receivers.handle, &notification, stored.data(), stored.size()),
        "C and C++ keep the same notifications");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Receivers receivers;
    Input input(data, size);

    Notification record{};
    record.kind = input.number<NotificationKind>();
    // Exactly as many bytes as the record has: reading behind them is a finding.
    const Bytes frame(input.twoPartBytes());
    record.data = frame.data();
    record.size = frame.size();
    fuzzing::consume(record);

    // Routed to the handlers if its identifier is 0.
    receivers.sdk.handleResponse(frame);
    receivers.handle->sdk->handleResponse(frame);
    takeAndConsume(receivers, frame, input.number<uint16_t>());
    return 0;
}
