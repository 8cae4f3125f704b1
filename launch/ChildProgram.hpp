// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"

#include <functional>
#include <sys/types.h>

namespace launch {

/// A program that is this process's child. Signals that somebody sends to this process are passed
/// on to it; those that a terminal sends to both are not. There is one.
class ChildProgram {
public:
    /// Calls @p start in the child, which ends with what it returns, if it does. Throws
    /// std::system_error.
    explicit ChildProgram(const std::function<int()>& start);

    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    /// Becomes readable when the program has ended.
    [[nodiscard]] const usbip::FileDescriptor& end() const { return ended; }

    void send(int signal) const;

    /// Waits for its end. Returns its exit status.
    int wait();

    [[nodiscard]] bool wasKilled() const { return killedBy != 0; }

    /// Ends this process by the signal that ended the program, if one has.
    void dieAsItDid() const;

private:
    pid_t child;
    usbip::FileDescriptor ended;
    int killedBy = 0;
};

} // namespace launch
