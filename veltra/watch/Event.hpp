// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Inbox.hpp"
#include "Output.hpp"

#include <string>

namespace veltra {

/// An entry of the queue in both forms of output.
struct Event {
    Json object;
    std::string text;
};

/// Whatever the adapter announces, no byte behind the frame is read.
Event describeEvent(const Inbox::Entry& entry);

/// Seconds of CLOCK_MONOTONIC with microseconds.
std::string secondsOf(uint64_t nanoseconds);

} // namespace veltra
