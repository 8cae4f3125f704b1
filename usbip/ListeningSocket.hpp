// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"

#include <cstdint>
#include <string>

namespace usbip {

/// Whether @p text is an IPv4 address in four parts or an IPv6 address, and neither a name nor a
/// short form of every address.
bool isNumericAddress(const std::string& text);

/// Listens on a numeric @p address; the system chooses a @p port of 0. Throws
/// std::runtime_error.
FileDescriptor listeningSocket(const std::string& address, uint16_t port);

/// The port that a socket is bound to.
uint16_t portOf(const FileDescriptor& socket);

/// Whether a socket is bound to an address that only this machine reaches.
bool isOnLoopback(const FileDescriptor& socket);

} // namespace usbip
