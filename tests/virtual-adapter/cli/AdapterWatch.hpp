// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <string>

#include "socket/Channel.hpp"
#include "usbip/FileDescriptor.hpp"

/// The process that serves the socket at @p path; 0 when none does.
inline pid_t adapterAt(const std::string& path) {
    const usbip::FileDescriptor socket(virtual_adapter::connectToAdapter(path.c_str()));
    ucred server{};
    socklen_t size = sizeof server;
    return getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &server, &size) == 0 ? server.pid : 0;
}

/// A process that is watched until it ends, also one that is no child.
class WatchedProcess {
public:
    explicit WatchedProcess(pid_t process)
        : descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0))) {}

    /// Waits until it has; false when it has not in half a minute.
    [[nodiscard]] bool hasEnded() const {
        constexpr int patience = 30'000;
        pollfd ended{descriptor.get(), POLLIN, 0};
        return descriptor.isOpen() && poll(&ended, 1, patience) == 1;
    }

private:
    usbip::FileDescriptor descriptor;
};
