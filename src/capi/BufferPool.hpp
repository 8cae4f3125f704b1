// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
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

    /// The pool's, while they are spare.
    std::unique_ptr<OperationBuffers> next;
};

/// Lends buffers to the calls on one handle: always the same to one call at a time, and others to
/// those beside it. Its destructor waits until all have been returned.
class BufferPool {
public:
    BufferPool() = default;
    ~BufferPool();
    BufferPool(const BufferPool&) = delete;
    BufferPool& operator=(const BufferPool&) = delete;

    /// Buffers for one call.
    class Loan {
    public:
        explicit Loan(BufferPool& lender) : pool(lender), lent(lender.take()) {}
        ~Loan() { pool.giveBack(lent); }
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
    [[gnu::cold]] OperationBuffers* takeOther();
    [[gnu::cold]] void giveBackLate(OperationBuffers* buffers);

    /// Awaited: lent, and the destructor wants to be told.
    enum class State { Free, Lent, Awaited };

    OperationBuffers first;
    std::atomic<State> stateOfFirst{State::Free};

    // Guards everything below.
    std::mutex mutex;
    std::unique_ptr<OperationBuffers> spare;
    // Of the others, and of the first once it is awaited.
    size_t lent = 0;
    std::condition_variable returned;
};
