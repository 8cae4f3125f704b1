#pragma once

#include <cstddef>

// A program that links this, with the options that it is linked with here, has these calls of the
// library pass through here on their way to the scripted stand-in. A write returns when the polling
// thread has dealt with what answers it, so that operations with a time-out of 0 find their
// response.

namespace test_support {

/// The functions of hidapi that can fail.
enum class HidCall { Init, Exit, Enumerate, OpenPath, Write, ReadTimeout };

/// While it exists, one call of one function fails: the first, the second, and so on. A failed
/// write or read, enumeration or opening has not taken place.
class FailingHidCall {
public:
    FailingHidCall(HidCall call, size_t position);
    ~FailingHidCall();
    FailingHidCall(const FailingHidCall&) = delete;
    FailingHidCall& operator=(const FailingHidCall&) = delete;

    /// Whether there were so many calls.
    [[nodiscard]] bool happened() const;
};

} // namespace test_support
