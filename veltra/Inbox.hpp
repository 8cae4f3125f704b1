// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/NotificationQueue.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

namespace veltra {

/// What the adapter sends of its own accord, kept from the beginning on until somebody wants it: a
/// command that waits for one kind leaves the others for those that come later.
class Inbox {
public:
    using Entry = NotificationQueue::Entry;

    explicit Inbox(VeltraSDK& adapter);

    /// The oldest entry of the kinds, waited for as long as told, or for ever. None once the time
    /// is over. The end of the link and the user's interruption are Failures. What was lost so far
    /// is handed to `lost` first.
    std::optional<Entry> next(const std::function<bool(NotificationKind)>& wanted,
                              std::optional<std::chrono::milliseconds> patience,
                              const std::function<void(uint64_t)>& lost);
    /// Forgets all that came in. The end of the link is a Failure.
    void discard();
    /// Readable while something new waits; for poll.
    [[nodiscard]] int descriptor() const { return queue.descriptor(); }

private:
    std::optional<Entry> findKept(const std::function<bool(NotificationKind)>& wanted);
    void collect(const std::function<void(uint64_t)>& lost);

    NotificationQueue queue;
    std::deque<Entry> kept;
    bool ended = false;
};

} // namespace veltra
