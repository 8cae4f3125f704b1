#pragma once

#include <cstddef>

// A program that links this has operator new and delete of its own.

namespace test_support {

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

/// While it exists, the allocations of the thread that made it neither fail nor count.
class SparedAllocations {
public:
    SparedAllocations();
    ~SparedAllocations();
    SparedAllocations(const SparedAllocations&) = delete;
    SparedAllocations& operator=(const SparedAllocations&) = delete;

private:
    bool before;
};

/// From now on every allocation of the other threads fails, unless they spare it.
void failAllocationsOfOtherThreads();

} // namespace test_support
