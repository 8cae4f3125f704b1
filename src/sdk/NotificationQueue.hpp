// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/NotificationQueue.hpp>

#include "sdk/NotificationRing.hpp"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

/// What an engine and its queues share: the ring that the polling thread fills while a queue is
/// open. A queue shows the descriptor that it was given and keeps open, which no other queue can
/// have meanwhile: that tells the open one from those that were closed.
class __attribute__((visibility("hidden"))) NotificationQueue::State {
public:
    static constexpr int none = -1;

    /// Returns the new queue's descriptor, or none.
    [[gnu::cold]] int open(size_t bytes);
    [[nodiscard]] bool isOpen(int queue) const;
    /// Leaves the descriptor open and readable.
    [[gnu::cold]] void close(int queue);

    /// For the polling thread: allocates nothing, and costs next to nothing without a queue.
    void put(NotificationKind kind, const uint8_t* frame, size_t size);
    [[gnu::cold]] void putEndOfLink();

    /// Takes the oldest entry of @p queue; @p roomFor is told its record and says where the frame
    /// goes, and how much of it.
    template <typename RoomFor>
    bool take(int queue, const RoomFor& roomFor) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (queue == none || queue != descriptor || ring.isEmpty()) {
            return false;
        }
        const auto [frame, capacity] = roomFor(ring.front());
        ring.take(frame, capacity);
        if (ring.isEmpty()) {
            makeUnreadable();
        }
        return true;
    }

private:
    template <typename Put>
    void putIfOpen(const Put& put);
    void makeReadable() const;
    void makeUnreadable() const;

    mutable std::mutex mutex;
    NotificationRing ring;
    // Of the open queue.
    std::atomic<int> descriptor{none};
};
