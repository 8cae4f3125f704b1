// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"

#include <string>

namespace virtual_adapter {

/// A directory of an adapter's own, which only its user may enter; it is removed with this object,
/// once it is empty.
///
/// It is locked as long as its adapter lives: without the lock it belongs to one that was killed.
class SocketDirectory {
public:
    /// Makes one below @p place, and removes those of killed adapters there. Throws
    /// std::runtime_error, whose text says what is wrong with the place.
    static SocketDirectory below(const std::string& place);

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

} // namespace virtual_adapter
