// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <condition_variable>
#include <ctime>
#include <mutex>

/// When a wait ends at the latest, by the steady clock.
///
/// A wait is two calls of the threads' library: what the standard library puts around them, which
/// looks at the clock again behind each wait, every operation would pay for.
class Deadline {
public:
    /// The time-out that waits without limit.
    static constexpr int noTimeout = -1;

    /// The time-out counts from here.
    explicit Deadline(int timeoutMs);

    /// Waits until @p changed is notified, or until the deadline; the caller holds @p mutex, as it
    /// does again afterwards. Returns false when the deadline has passed, as one before the clock's
    /// beginning always has.
    bool wait(std::condition_variable& changed, std::mutex& mutex) const;

private:
    bool isLimited;
    timespec time;
};
