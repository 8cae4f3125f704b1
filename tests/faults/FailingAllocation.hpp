#pragma once

#include <cstddef>

// A program that links this has operator new and delete of its own. What the stand-in for hidapi
// allocates is not the library's: it never fails and does not count towards the one that fails.

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

/// From now on every allocation of the other threads fails.
void failAllocationsOfOtherThreads();

} // namespace test_support
