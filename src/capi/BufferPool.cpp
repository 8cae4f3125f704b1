#include "capi/BufferPool.hpp"

#include <utility>

BufferPool::~BufferPool() {
    std::unique_lock<std::mutex> lock(mutex);
    allReturned.wait(lock, [this] { return lent == 0; });
}

std::unique_ptr<BufferPool::Pooled> BufferPool::take() {
    const std::lock_guard<std::mutex> lock(mutex);
    std::unique_ptr<Pooled> pooled = spare ? std::move(spare) : std::make_unique<Pooled>();
    spare = std::move(pooled->next);
    ++lent;
    return pooled;
}

void BufferPool::giveBack(std::unique_ptr<Pooled> pooled) {
    // Told under the lock, as the pool may be gone once the last one is back.
    const std::lock_guard<std::mutex> lock(mutex);
    pooled->next = std::move(spare);
    spare = std::move(pooled);
    --lent;
    if (lent == 0) {
        allReturned.notify_one();
    }
}
