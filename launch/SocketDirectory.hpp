// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"

#include <string>

namespace launch {

/// A directory of a server's own, which only its user may enter; it is removed with this object,
/// once it is empty.
///
/// It is locked as long as its server lives: without the lock it belongs to one that was killed.
class SocketDirectory {
public:
    /// Makes one below @p place, whose name begins with @p owner, and removes those of the owner's
    /// that were killed. Throws std::runtime_error, whose text says what is wrong with the place.
    static SocketDirectory below(const std::string& place, const std::string& owner);

    ~SocketDirectory();
    SocketDirectory(SocketDirectory&& other) noexcept;
    SocketDirectory& operator=(SocketDirectory&&) = delete;

    /// Where the socket is to be.
    [[nodiscard]] std::string socketPath() const;

private:
    SocketDirectory(std::string itsPath, usbip::FileDescriptor itsLock);

    std::string path;
    usbip::FileDescriptor lock;
};

} // namespace launch
