// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FailingAllocation.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace test_support {

namespace {

std::atomic<size_t> live{0};
std::atomic<bool> otherThreadsFail{false};

/// Of the calling thread: how many allocations are left until one fails, 0 for none.
thread_local size_t remaining = 0;
thread_local bool failed = false;
thread_local bool isOther = true;

bool failsNow() {
    if (isSpared()) {
        return false;
    }
    if (isOther && otherThreadsFail) {
        return true;
    }
    if (remaining == 0 || --remaining > 0) {
        return false;
    }
    failed = true;
    return true;
}

void* allocate(size_t size) {
    void* const memory = failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    ++live;
    return memory;
}

void release(void* memory) {
    if (memory != nullptr) {
        --live;
        std::free(memory);
    }
}

} // namespace

size_t liveAllocations() {
    return live;
}

FailingAllocation::FailingAllocation(size_t position) {
    failed = false;
    remaining = position;
}

FailingAllocation::~FailingAllocation() {
    remaining = 0;
}

bool FailingAllocation::happened() const {
    return failed;
}

void failAllocationsOfOtherThreads() {
    isOther = false;
    otherThreadsFail = true;
}

} // namespace test_support

void* operator new(size_t size) {
    return test_support::allocate(size);
}

void* operator new[](size_t size) {
    return test_support::allocate(size);
}

void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return test_support::allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return operator new(size, std::nothrow);
}

void operator delete(void* memory) noexcept {
    test_support::release(memory);
}

void operator delete[](void* memory) noexcept {
    test_support::release(memory);
}

void operator delete(void* memory, size_t /*size*/) noexcept {
    test_support::release(memory);
}

void operator delete[](void* memory, size_t /*size*/) noexcept {
    test_support::release(memory);
}
