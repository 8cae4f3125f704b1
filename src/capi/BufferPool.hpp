#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

/// What a C function's bytes are copied into on their way to the class and back. It belongs to one
/// operation at a time and is kept for the next, so that only the first ones allocate.
struct OperationBuffers {
    std::vector<uint8_t> subAddress;
    std::vector<uint8_t> sent;
    std::vector<uint8_t> received;
};

/// Lends buffers to the calls on one handle: always the same, or, where calls come from several
/// threads, as many as there are calls at once. Its destructor waits until all have been returned.
class BufferPool {
public:
    BufferPool() = default;
    ~BufferPool();
    BufferPool(const BufferPool&) = delete;
    BufferPool& operator=(const BufferPool&) = delete;

    /// Whether calls come from several threads; changed while there is none.
    void setShared(bool shared) { isShared = shared; }

private:
    struct Pooled {
        OperationBuffers buffers;
        std::unique_ptr<Pooled> next;
    };

public:
    /// Buffers for one call.
    class Loan {
    public:
        explicit Loan(BufferPool& lender)
            : pool(lender), pooled(lender.isShared ? lender.take() : nullptr) {}
        ~Loan() {
            if (pooled) {
                pool.giveBack(std::move(pooled));
            }
        }
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;

        [[nodiscard]] OperationBuffers& buffers() const {
            return pooled ? pooled->buffers : pool.only;
        }

    private:
        BufferPool& pool;
        std::unique_ptr<Pooled> pooled;
    };

private:
    std::unique_ptr<Pooled> take();
    void giveBack(std::unique_ptr<Pooled> pooled);

    OperationBuffers only;
    std::atomic<bool> isShared{false};
    std::mutex mutex;
    std::unique_ptr<Pooled> spare;
    size_t lent = 0;
    std::condition_variable allReturned;
};
