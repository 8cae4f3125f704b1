// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "launch/SocketDirectory.hpp"
#include "usbip/FileDescriptor.hpp"

#include <optional>
#include <string>

namespace launch {

/// Whether the program at the other end of a connection is of the same user as this one.
bool isOfSameUser(const usbip::FileDescriptor& connection);

/// A socket that programs of the same user connect to; it is removed with this object.
class SocketPlace {
public:
    /// At @p path. Takes the place of a socket that nobody listens on any more. Throws
    /// std::runtime_error, whose text says what is wrong with the path.
    static SocketPlace at(const std::string& path);

    /// In a new directory whose name begins with @p owner, below $XDG_RUNTIME_DIR, or below /tmp
    /// where that cannot be. Throws std::runtime_error.
    static SocketPlace inDirectoryOfItsOwn(const std::string& owner);

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

} // namespace launch
