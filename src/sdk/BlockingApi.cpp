#include "sdk/BlockingApi.hpp"

#include <chrono>
#include <utility>

BlockingApi::BlockingApi(int timeout) : timeoutMs(timeout) {}

void BlockingApi::setTimeout(int timeout) {
    const Lock held = lock();
    timeoutMs = timeout;
}

void BlockingApi::notifyResponseReceived() {
    notifyResponseReceived(lock());
}

bool BlockingApi::waitForResponse() {
    Lock held = lock();
    return waitForResponse(held);
}

void BlockingApi::notifyResponseReceived(const Lock& /*held*/) {
    responseReceived = true;
    responseArrived.notify_one();
}

bool BlockingApi::waitForResponse(Lock& held) {
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
