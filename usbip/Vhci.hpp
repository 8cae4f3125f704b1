// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/Device.hpp"
#include "usbip/FileDescriptor.hpp"

#include <filesystem>
#include <string>

namespace usbip {

/// The kernel's virtual USB host controller (module vhci-hcd).
///
/// Failures are std::runtime_error, whose text says what to do about them.
class Vhci {
public:
    explicit Vhci(std::filesystem::path controllerDirectory = "/sys/devices/platform/vhci_hcd.0");

    /// Plugs the device whose USB/IP server is at the other end of @p socket into a free port, and
    /// returns the port's number. The kernel keeps its own reference to the socket.
    [[nodiscard]] unsigned plugIn(const FileDescriptor& socket, Speed speed) const;

    /// The kernel's name for what is plugged into @p port, as in sysfs: "1-1".
    [[nodiscard]] std::string busIdOf(unsigned port) const;

    /// Pulls out what is plugged into @p port. Nothing happens when that has gone already.
    void pullOut(unsigned port) const;

private:
    [[nodiscard]] unsigned freePort() const;

    std::filesystem::path directory;
};

} // namespace usbip
