// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Readable.hpp"
#include "support/Variant.hpp"

#include <veltrasdk/NotificationQueue.hpp>

#include <algorithm>
#include <optional>

#include <gtest/gtest.h>

namespace test_support {

// What the tests of the notification queue share.

const Bytes gpio{0x00, 0x00, 0x81, 0x14, 0xEE, 0xEE, 0x2A};
const Bytes uartRx{0x00, 0x00, 0x81, 0x10, 0xEE, 0xEE, 0x05, 0x00, 'H', 'e', 'l', 'l', 'o'};
const Bytes unknown{0x00, 0x00, 0x83, 0x19, 0xEE, 0xEE};

constexpr size_t recordSize = 24;
constexpr size_t minSize = 54;
constexpr size_t ample = 1 << 16;

/// A notification of received bytes, @p size bytes in all.
inline Bytes uartFrame(size_t size) {
    Bytes frame = counting(size);
    const Bytes header{0x00, 0x00, 0x81, 0x10, 0x00, 0x00};
    std::copy(header.begin(), header.end(), frame.begin());
    return frame;
}

/// What is taken, or nothing.
inline std::optional<NotificationQueue::Entry> takenFrom(NotificationQueue& queue) {
    NotificationQueue::Entry entry;
    return queue.take(entry) ? std::optional(entry) : std::nullopt;
}

inline void expectEndOfLink(NotificationQueue& queue, uint64_t lostBefore = 0) {
    const auto entry = takenFrom(queue);
    ASSERT_TRUE(entry.has_value());
    EXPECT_TRUE(entry->isEndOfLink());
    EXPECT_EQ(entry->kind, NotificationKind_Unknown);
    EXPECT_EQ(entry->lostBefore, lostBefore);
    const Notification record = entry->notification();
    EXPECT_EQ(record.size, 0U);
    EXPECT_EQ(record.gpio(), nullptr);
}

inline void expectFrame(NotificationQueue& queue, const Bytes& frame, uint64_t lostBefore = 0) {
    const auto entry = takenFrom(queue);
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->frame, frame);
    EXPECT_EQ(entry->lostBefore, lostBefore);
}

inline void expectEmpty(NotificationQueue& queue) {
    EXPECT_FALSE(isReadable(queue.descriptor()));
    EXPECT_FALSE(takenFrom(queue).has_value());
}

} // namespace test_support
