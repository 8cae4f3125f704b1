// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"
#include "ways/SocketDirectory.hpp"

#include <optional>
#include <string>

namespace virtual_adapter {

/// A socket that programs of the same user connect to; it is removed with this object.
class SocketPlace {
public:
    /// At @p path. Takes the place of a socket that nobody listens on any more. Throws
    /// std::runtime_error, whose text says what is wrong with the path.
    static SocketPlace at(const std::string& path);

    /// In a new directory below $XDG_RUNTIME_DIR, or below /tmp where that cannot be. Throws
    /// std::runtime_error.
    static SocketPlace inDirectoryOfItsOwn();

    ~SocketPlace();
    SocketPlace(SocketPlace&& other) noexcept;
    SocketPlace& operator=(SocketPlace&&) = delete;

    /// Absolute.
    [[nodiscard]] const std::string& path() const { return socketPath; }

    /// Hands the listening socket out; it does not block.
    usbip::FileDescriptor takeListener() { return std::move(listener); }

private:
    SocketPlace(std::string path, std::optional<SocketDirectory> itsDirectory);

    /// Nothing where somebody else has made it. Removed behind the socket.
    std::optional<SocketDirectory> directory;
    std::string socketPath;
    usbip::FileDescriptor listener;
};

} // namespace virtual_adapter
