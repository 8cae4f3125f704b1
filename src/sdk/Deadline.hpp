// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <condition_variable>
#include <ctime>
#include <mutex>
#include <pthread.h>

/// When a wait ends at the latest, by the steady clock.
///
/// A wait is two calls of the threads' library: what the standard library puts around them, which
/// looks at the clock again behind each wait, every operation would pay for; and for their being
/// functions of their own.
class Deadline {
public:
    /// The time-out that waits without limit.
    static constexpr int noTimeout = -1;

    /// The time-out counts from here.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): without a limit there is no time.
    explicit Deadline(int timeoutMs) : isLimited(timeoutMs != noTimeout) {
        if (!isLimited) {
            return;
        }
        clock_gettime(CLOCK_MONOTONIC, &time);
        time.tv_sec += timeoutMs / msPerSecond;
        time.tv_nsec += timeoutMs % msPerSecond * nsPerMs;
        if (time.tv_nsec >= nsPerSecond) {
            ++time.tv_sec;
            time.tv_nsec -= nsPerSecond;
        }
    }

    /// Waits until @p changed is notified, or until the deadline; the caller holds @p mutex, as it
    /// does again afterwards. Returns false when the deadline has passed, as one before the clock's
    /// beginning always has.
    bool wait(std::condition_variable& changed, std::mutex& mutex) const {
        if (!isLimited) {
            return pthread_cond_wait(changed.native_handle(), mutex.native_handle()) == 0;
        }
        return pthread_cond_clockwait(changed.native_handle(), mutex.native_handle(),
                                      CLOCK_MONOTONIC, &time) == 0;
    }

private:
    static constexpr int msPerSecond = 1000;
    static constexpr long nsPerMs = 1'000'000;
    static constexpr long nsPerSecond = msPerSecond * nsPerMs;

    bool isLimited;
    timespec time;
};
