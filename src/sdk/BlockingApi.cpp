#include "sdk/BlockingApi.hpp"

#include <chrono>
#include <utility>

BlockingApi::BlockingApi(int timeout) : timeoutMs(timeout) {}

void BlockingApi::setTimeout(int timeout) {
    const std::lock_guard<std::mutex> lock(mutex);
    timeoutMs = timeout;
}

void BlockingApi::notifyResponseReceived() {
    const std::lock_guard<std::mutex> lock(mutex);
    responseReceived = true;
    responseArrived.notify_one();
}

bool BlockingApi::waitForResponse() {
    std::unique_lock<std::mutex> lock(mutex);
    const auto arrived = [this] { return responseReceived; };
    if (timeoutMs == noTimeout) {
        responseArrived.wait(lock, arrived);
    } else {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        responseArrived.wait_until(lock, deadline, arrived);
    }
    return std::exchange(responseReceived, false);
}

bool BlockingApi::execute(const std::function<bool()>& sendRequest) {
    return sendRequest() && waitForResponse();
}
