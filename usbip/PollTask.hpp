// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/Device.hpp"

#include <poll.h>

#include <optional>
#include <vector>

namespace usbip {

/// What else a server's thread looks after, between its hosts.
class PollTask {
public:
    PollTask() = default;
    virtual ~PollTask() = default;
    PollTask(const PollTask&) = delete;
    PollTask& operator=(const PollTask&) = delete;

    /// Appends what it waits for.
    virtual void watch(std::vector<pollfd>& polled, Time now) = 0;

    /// When to call `react` although nothing has happened; nothing while there is no need.
    [[nodiscard]] virtual std::optional<Time> nextDue() const = 0;

    /// Does what there is to do. Takes what `watch` has appended.
    virtual void react(const pollfd* events, Time now) = 0;
};

} // namespace usbip
