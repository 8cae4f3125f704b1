// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/notification_queue.h>

#include "protocol/ResponseFrame.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>

/// Entries one behind the other in a fixed number of bytes: each is a record and its frame. The
/// newest is lost when it does not fit. Room for the end of the link is always kept, since no frame
/// is put that would leave less.
class NotificationRing {
public:
    using Record = VeltraSDK_QueuedNotification;

    /// The end of the link and the shortest notification.
    static constexpr size_t minSize = 2 * sizeof(Record) + ResponseFrame::minSize;
    static constexpr size_t maxSize = size_t{1} << 30U;

    /// Holds nothing and loses everything.
    NotificationRing() = default;
    /// Has @p capacity bytes of @p memory, minSize or more.
    NotificationRing(std::unique_ptr<uint8_t[]> memory, size_t capacity);

    [[nodiscard]] bool isEmpty() const { return used == 0; }

    /// Puts a frame of at least one byte, or counts it as lost.
    void put(uint64_t timeNanoseconds, NotificationKind kind, const uint8_t* frame,
             size_t frameSize);

    /// Puts the end of the link, unless it is the last entry already.
    void putEndOfLink(uint64_t timeNanoseconds);

    /// What is known of the oldest entry; only while there is one.
    [[nodiscard]] Record front() const;

    /// Copies the first @p count bytes of the oldest frame, at most those that it has, and drops
    /// the entry.
    void take(uint8_t* frame, size_t count);

private:
    void putRecord(const Record& record);
    void append(const void* bytes, size_t count);
    void copyFrom(size_t offset, void* bytes, size_t count) const;

    std::unique_ptr<uint8_t[]> ring;
    size_t size = 0;
    size_t begin = 0;
    size_t used = 0;
    uint64_t lost = 0;
    bool endIsLast = false;
};
