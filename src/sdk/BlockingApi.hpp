// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "protocol/ResponseFrame.hpp"
#include "sdk/Deadline.hpp"
#include "sdk/FunctionRef.hpp"
#include "sdk/TransactionIds.hpp"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

/// The timed wait of every blocking operation, and the response that ends it.
///
/// A response that arrives after its caller has given up stays pending, and completes the next
/// wait at once.
class BlockingApi {
public:
    static constexpr int noTimeout = Deadline::noTimeout;

    /// Sends a request under a transaction identifier; returns the encoder's result code.
    using SendRequest = FunctionRef<uint16_t(uint16_t)>;

    /// Makes of a response the result code of its operation.
    using Judge = FunctionRef<uint16_t(const ResponseFrame&)>;

    explicit BlockingApi(int timeoutMs);

    /// Has @p sendRequest send a request under the next of @p ids, and awaits what answers it.
    uint16_t transact(TransactionIds& ids, SendRequest sendRequest, Judge judge);

    /// Keeps @p response as the last response and ends the wait; runs on the polling thread.
    void respond(ResponseFrame response);

    /// Consumes a response, waiting for one until the time-out. Returns what @p judge makes of the
    /// last one, which stays as it is meanwhile, or ResultCode_NoResponse when none has come.
    uint16_t await(Judge judge);

    /// Waits until @p condition holds, at most so long; the time-out counts from here. The caller
    /// holds @p mutex, as it does again when @p condition is looked at. Returns whether it holds.
    template <typename Condition>
    static bool waitFor(std::condition_variable& changed, std::mutex& mutex, int timeoutMs,
                        const Condition& condition) {
        if (condition()) {
            return true;
        }
        const Deadline deadline(timeoutMs);
        while (deadline.wait(changed, mutex)) {
            if (condition()) {
                return true;
            }
        }
        return condition();
    }

private:
    const int timeoutMs;

    // Guards everything below: what was stored before a wait ended is read under the lock that the
    // wait ended with.
    std::mutex mutex;
    std::vector<uint8_t> lastResponse;
    bool responseReceived = false;
    std::condition_variable responseArrived;
};
