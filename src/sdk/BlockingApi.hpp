// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

/// The timed wait of every blocking operation.
///
/// A response that arrives after its caller has given up stays pending, and completes the next
/// wait at once.
class BlockingApi {
public:
    /// The time-out that waits without limit.
    static constexpr int noTimeout = -1;

    using Lock = std::unique_lock<std::mutex>;

    explicit BlockingApi(int timeoutMs);

    /// Takes effect at the next wait.
    void setTimeout(int timeoutMs);

    /// Runs on the polling thread.
    void notifyResponseReceived();

    /// Consumes a response, waiting for one until the time-out. Returns whether there was one.
    bool waitForResponse();

    /// Calls @p sendRequest and, when it returns true, waits for the response.
    template <typename SendRequest>
    bool execute(const SendRequest& sendRequest) {
        return sendRequest() && waitForResponse();
    }

    /// Guards the time-out and the flag, and with them what a response is stored in: what was
    /// stored before it was notified can be read under the lock that ended the wait.
    std::mutex mutex;

    /// The same while the mutex is locked.
    void notifyLocked() {
        responseReceived = true;
        responseArrived.notify_one();
    }
    bool waitLocked(Lock& held) {
        const auto arrived = [this] { return responseReceived; };
        if (timeoutMs == noTimeout) {
            responseArrived.wait(held, arrived);
        } else {
            const auto deadline =
                std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
            responseArrived.wait_until(held, deadline, arrived);
        }
        return std::exchange(responseReceived, false);
    }

private:
    int timeoutMs;
    bool responseReceived = false;
    std::condition_variable responseArrived;
};
