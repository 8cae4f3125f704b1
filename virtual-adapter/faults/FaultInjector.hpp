// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "faults/Fault.hpp"
#include "model/Outbox.hpp"

#include <chrono>
#include <cstddef>
#include <vector>

namespace virtual_adapter {

/// A frame on its way to the host.
struct OutgoingFrame {
    Frame frame;
    /// How long the adapter holds it back, and everything behind it.
    std::chrono::milliseconds delay{0};
};

/// Spoils the adapter's conversation in one chosen way when the third request comes.
///
/// The third, so that a host has two good exchanges behind it: a program that reads the five
/// identity strings sees two of them.
class FaultInjector {
public:
    explicit FaultInjector(const Fault& chosen) : fault(chosen) {}

    /// Whether the next output report makes the adapter disappear.
    [[nodiscard]] bool unplugsNow() const { return strikesNext(FaultKind::Unplug); }
    /// Whether the adapter refuses the next output report.
    [[nodiscard]] bool stallsNow() const { return strikesNext(FaultKind::Stall); }

    /// Turns what the adapter answers to one request, the response first, into what it sends.
    std::vector<OutgoingFrame> apply(std::vector<CountedFrame> answer);

private:
    void strike(std::vector<OutgoingFrame>& frames) const;
    [[nodiscard]] bool strikesNext(FaultKind kind) const;

    Fault fault;
    size_t requests = 0;
};

} // namespace virtual_adapter
