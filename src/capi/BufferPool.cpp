// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/BufferPool.hpp"

BufferPool::~BufferPool() {
    std::unique_lock<std::mutex> lock(mutex);
    allReturned.wait(lock, [this] { return spare.size() == pooled.size(); });
}

OperationBuffers* BufferPool::take() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (spare.empty()) {
        spare.reserve(pooled.size() + 1);
        pooled.push_back(std::make_unique<OperationBuffers>());
        return pooled.back().get();
    }
    OperationBuffers* const buffers = spare.back();
    spare.pop_back();
    return buffers;
}

void BufferPool::giveBack(OperationBuffers* buffers) {
    // Told under the lock, as the pool may be gone once the last one is back.
    const std::lock_guard<std::mutex> lock(mutex);
    spare.push_back(buffers);
    if (spare.size() == pooled.size()) {
        allReturned.notify_one();
    }
}
