// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Deadline.hpp"

#include <pthread.h>

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): without a limit there is no time.
Deadline::Deadline(int timeoutMs) : isLimited(timeoutMs != noTimeout) {
    constexpr int msPerSecond = 1000;
    constexpr long nsPerMs = 1'000'000;
    constexpr long nsPerSecond = msPerSecond * nsPerMs;
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

bool Deadline::wait(std::condition_variable& changed, std::mutex& mutex) const {
    if (!isLimited) {
        return pthread_cond_wait(changed.native_handle(), mutex.native_handle()) == 0;
    }
    return pthread_cond_clockwait(changed.native_handle(), mutex.native_handle(), CLOCK_MONOTONIC,
                                  &time) == 0;
}
