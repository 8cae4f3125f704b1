// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/BufferPool.hpp"

#include <utility>

BufferPool::~BufferPool() {
    std::unique_lock<std::mutex> lock(mutex);
    lent += stateOfFirst.exchange(State::Awaited) == State::Lent ? 1U : 0U;
    returned.wait(lock, [this] { return lent == 0; });
}

OperationBuffers* BufferPool::take() {
    State expected = State::Free;
    return stateOfFirst.compare_exchange_strong(expected, State::Lent) ? &first : takeOther();
}

void BufferPool::giveBack(OperationBuffers* buffers) {
    State expected = State::Lent;
    // The pool may be gone once it has them back.
    if (buffers != &first || !stateOfFirst.compare_exchange_strong(expected, State::Free)) {
        giveBackLate(buffers);
    }
}

OperationBuffers* BufferPool::takeOther() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (spare == nullptr) {
        spare = std::make_unique<OperationBuffers>();
    }
    OperationBuffers* const taken = spare.release();
    spare = std::move(taken->next);
    ++lent;
    return taken;
}

void BufferPool::giveBackLate(OperationBuffers* buffers) {
    // Told under the lock, for the same reason.
    const std::lock_guard<std::mutex> lock(mutex);
    if (buffers != &first) {
        buffers->next = std::move(spare);
        spare.reset(buffers);
    }
    --lent;
    returned.notify_one();
}
