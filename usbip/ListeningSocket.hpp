#pragma once

#include "usbip/FileDescriptor.hpp"

#include <cstdint>
#include <string>

namespace usbip {

/// Listens on a numeric IPv4 or IPv6 @p address; the system chooses a @p port of 0. Throws
/// std::runtime_error.
FileDescriptor listeningSocket(const std::string& address, uint16_t port);

/// The port that a socket is bound to.
uint16_t portOf(const FileDescriptor& socket);

} // namespace usbip
