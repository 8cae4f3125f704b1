// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <ctime>
#include <functional>
#include <optional>

#include <pthread.h>

namespace test_support {

/// While it exists, decides how the process waits on condition variables: @p behaviour is called
/// instead of pthread_cond_wait and its two timed forms, the mutex locked, and returns an error
/// number or 0. Returning 0 without more is a spurious wake-up.
class ConditionWait {
public:
    /// What a wait was asked for, and what can be done in its place.
    struct Call {
        pthread_cond_t* condition;
        pthread_mutex_t* mutex;
        /// The clock that limits the wait; nothing where nothing does.
        std::optional<clockid_t> clock;
        /// What that clock shows when the wait has to end.
        std::chrono::nanoseconds deadline;
        /// Waits as asked.
        std::function<int()> wait;

        /// Waits until it is woken, whatever the deadline, but no longer than the limit of a test:
        /// then the result is ETIMEDOUT.
        [[nodiscard]] int waitUntilWoken() const;
        /// Calls @p function while the mutex is not locked.
        void unlocked(const std::function<void()>& function) const;
    };

    using Behaviour = std::function<int(const Call& call)>;

    explicit ConditionWait(Behaviour behaviour);
    ~ConditionWait();
    ConditionWait(const ConditionWait&) = delete;
    ConditionWait& operator=(const ConditionWait&) = delete;
};

} // namespace test_support
