// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/BlockingApi.hpp"

#include <veltrasdk/result.h>

#include <chrono>

namespace {

/// A locked mutex as a condition variable wants it; it stays locked.
struct Held {
    explicit Held(std::mutex& mutex) : lock(mutex, std::adopt_lock) {}
    ~Held() { lock.release(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    std::unique_lock<std::mutex> lock;
};

} // namespace

BlockingApi::BlockingApi(int timeout) : timeoutMs(timeout) {}

void BlockingApi::respond(ResponseFrame response) {
    const std::lock_guard<std::mutex> lock(mutex);
    response.copyTo(lastResponse);
    responseReceived = true;
    responseArrived.notify_one();
}

uint16_t BlockingApi::await(Judge judge) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!waitFor(responseArrived, mutex, timeoutMs, [this] { return responseReceived; })) {
        return ResultCode_NoResponse;
    }
    responseReceived = false;
    return judge(ResponseFrame(lastResponse));
}

bool BlockingApi::waitForChange(std::condition_variable& changed, std::mutex& mutex, int timeoutMs,
                                FunctionRef<bool()> condition) {
    Held held(mutex);
    if (timeoutMs == noTimeout) {
        do {
            changed.wait(held.lock);
        } while (!condition());
        return true;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    do {
        if (changed.wait_until(held.lock, deadline) == std::cv_status::timeout) {
            return condition();
        }
    } while (!condition());
    return true;
}
