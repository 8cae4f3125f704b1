// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/BlockingApi.hpp"

BlockingApi::BlockingApi(int timeout) : timeoutMs(timeout) {}

void BlockingApi::setTimeout(int timeout) {
    const std::lock_guard<std::mutex> lock(mutex);
    timeoutMs = timeout;
}

void BlockingApi::notifyResponseReceived() {
    const std::lock_guard<std::mutex> lock(mutex);
    notifyLocked();
}

bool BlockingApi::waitForResponse() {
    Lock lock(mutex);
    return waitLocked(lock);
}
