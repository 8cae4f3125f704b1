// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"

#include <poll.h>
#include <sys/types.h>

#include <cstddef>
#include <map>
#include <vector>

namespace virtual_adapter {

/// Programs that are watched until they end, whatever becomes of their descriptors.
class WatchedPrograms {
public:
    /// One that cannot be watched is left out: it has ended, or lies in another namespace.
    void add(pid_t program);

    [[nodiscard]] bool empty() const { return programs.empty(); }

    /// Appends what becomes readable when one of them ends.
    void watch(std::vector<pollfd>& polled) const;

    /// Forgets those that have ended. Takes what `watch` appended; returns what is behind it.
    const pollfd* removeEnded(const pollfd* events);

private:
    std::map<pid_t, usbip::FileDescriptor> programs;
};

} // namespace virtual_adapter
