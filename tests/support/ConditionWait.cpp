// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/ConditionWait.hpp"

#include "support/ScriptedHid.hpp"

#include <dlfcn.h>
#include <utility>

using std::chrono::nanoseconds;

namespace test_support {

namespace {

ConditionWait::Behaviour current;

using Wait = int (*)(pthread_cond_t*, pthread_mutex_t*);
using TimedWait = int (*)(pthread_cond_t*, pthread_mutex_t*, const timespec*);
using ClockWait = int (*)(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*);

/// The function that would have been called, a sanitizer's or the C library's.
template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

ClockWait nextClockWait() {
    static const auto function = next<ClockWait>("pthread_cond_clockwait");
    return function;
}

nanoseconds durationOf(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

} // namespace

ConditionWait::ConditionWait(Behaviour behaviour) {
    current = std::move(behaviour);
}

ConditionWait::~ConditionWait() {
    current = nullptr;
}

int ConditionWait::Call::waitUntilWoken() const {
    timespec limit{};
    clock_gettime(CLOCK_MONOTONIC, &limit);
    limit.tv_sec += generousLimitMs / 1000;
    return nextClockWait()(condition, mutex, CLOCK_MONOTONIC, &limit);
}

void ConditionWait::Call::unlocked(const std::function<void()>& function) const {
    pthread_mutex_unlock(mutex);
    function();
    pthread_mutex_lock(mutex);
}

} // namespace test_support

using test_support::current;
using test_support::durationOf;

// Visible, so that they stand in front of the C library's own, also for the C++ runtime.
#pragma GCC visibility push(default)
extern "C" {

int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    static const auto next = test_support::next<test_support::Wait>("pthread_cond_wait");
    const auto wait = [=] { return next(condition, mutex); };
    return current ? current({condition, mutex, std::nullopt, nanoseconds{0}, wait}) : wait();
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex,
                           const timespec* deadline) {
    static const auto next = test_support::next<test_support::TimedWait>("pthread_cond_timedwait");
    const auto wait = [=] { return next(condition, mutex, deadline); };
    return current ? current({condition, mutex, CLOCK_REALTIME, durationOf(*deadline), wait})
                   : wait();
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                           const timespec* deadline) {
    const auto wait = [=] {
        return test_support::nextClockWait()(condition, mutex, clock, deadline);
    };
    return current ? current({condition, mutex, clock, durationOf(*deadline), wait}) : wait();
}

} // extern "C"
#pragma GCC visibility pop
