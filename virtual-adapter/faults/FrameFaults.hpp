// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "faults/FaultSchedule.hpp"
#include "model/Outbox.hpp"

#include <cstddef>
#include <vector>

namespace virtual_adapter {

/// A frame on its way to the host.
struct OutgoingFrame {
    Frame frame;
    bool isResponse = false;
    /// Whether the adapter holds it back, and everything behind it.
    bool late = false;
};

/// Spoils what the adapter says.
class FrameFaults {
public:
    /// Turns what the adapter answers to the request that @p striking strikes, the response first,
    /// into what it sends.
    std::vector<OutgoingFrame> apply(FaultSet striking, std::vector<CountedFrame> answer);

    /// The same for notifications that no request gave rise to.
    std::vector<OutgoingFrame> applyToNotifications(std::vector<CountedFrame> notifications);

private:
    std::vector<OutgoingFrame> outgoing(std::vector<CountedFrame> messages);

    /// The faults that last, as they were at the last request.
    bool countsTooMuch = false;
    size_t notificationsToLose = 0;
};

} // namespace virtual_adapter
