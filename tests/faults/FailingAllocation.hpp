// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

// A program that links this has operator new and delete of its own.

namespace test_support {

/// Whether what the calling thread allocates now never fails and does not count towards the one
/// that fails. Each program defines it: what a stand-in allocates is not what is tested.
bool isSpared();

/// The heap allocations that no thread has released yet.
size_t liveAllocations();

/// While it exists, one heap allocation of the thread that made it fails: the first, the second,
/// and so on.
class FailingAllocation {
public:
    explicit FailingAllocation(size_t position);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether there were so many allocations.
    [[nodiscard]] bool happened() const;
};

/// From now on every allocation of the other threads fails.
void failAllocationsOfOtherThreads();

} // namespace test_support
