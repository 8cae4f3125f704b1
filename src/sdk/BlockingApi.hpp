#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>

/// The timed wait of every blocking operation.
///
/// A response that arrives after its caller has given up stays pending, and completes the next
/// wait at once.
class BlockingApi {
public:
    /// The time-out that waits without limit.
    static constexpr int noTimeout = -1;

    explicit BlockingApi(int timeoutMs);

    /// Takes effect at the next wait.
    void setTimeout(int timeoutMs);

    /// Runs on the polling thread.
    void notifyResponseReceived();

    /// Consumes a response, waiting for one until the time-out. Returns whether there was one.
    bool waitForResponse();

    /// Calls @p sendRequest and, when it returns true, waits for the response.
    bool execute(const std::function<bool()>& sendRequest);

private:
    int timeoutMs;
    bool responseReceived = false;
    std::condition_variable responseArrived;
    // Guards the time-out and the flag.
    std::mutex mutex;
};
