// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
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

    /// Buffers for one call.
    class Loan {
    public:
        explicit Loan(BufferPool& lender)
            : pool(lender), lent(lender.isShared ? lender.take() : &lender.only) {}
        ~Loan() {
            if (lent != &pool.only) {
                pool.giveBack(lent);
            }
        }
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;

        [[nodiscard]] OperationBuffers& buffers() const { return *lent; }

    private:
        BufferPool& pool;
        OperationBuffers* lent;
    };

private:
    OperationBuffers* take();
    void giveBack(OperationBuffers* buffers);

    OperationBuffers only;
    std::atomic<bool> isShared{false};
    std::mutex mutex;
    std::vector<std::unique_ptr<OperationBuffers>> pooled;
    // Has room for all that are pooled, so that giving back cannot fail.
    std::vector<OperationBuffers*> spare;
    std::condition_variable allReturned;
};
