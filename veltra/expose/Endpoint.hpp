// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"

#include <cstdint>
#include <string>

namespace veltra {

/// Where a server listens.
struct Endpoint {
    std::string address; ///< Numeric.
    uint16_t port;

    [[nodiscard]] std::string inWords() const;
};

/// 127.0.0.1:4444 or [::1]:4444; a port of 0 is the system's choice.
Endpoint parseEndpoint(const std::string& text);

/// Listens there, and sets the port that it became.
usbip::FileDescriptor listenAt(Endpoint& endpoint);

} // namespace veltra
