// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace veltra {

/// Where the kernel shows its devices and processes; tests have trees of their own.
struct Roots {
    std::filesystem::path sys = "/sys";
    std::filesystem::path dev = "/dev";
    std::filesystem::path proc = "/proc";
    std::filesystem::path root = "/";
};

/// A USB device with the adapter's identifiers, as sysfs shows it.
struct UsbDevice {
    std::string port;           ///< Such as "1-1.4".
    std::string identifiers;    ///< "1209:0001".
    std::string speed;          ///< In Mbit/s: "12" or "480".
    std::string serial;         ///< Empty when it has none.
    std::string driver;         ///< Bound to its first interface; empty for none.
    std::filesystem::path node; ///< What programs open.
};

/// Every adapter that the kernel knows, by port.
std::vector<UsbDevice> usbDevices(const Roots& roots);

/// The adapter that hidapi knows by this path, such as "1-1:1.0".
std::optional<UsbDevice> findUsbDevice(const Roots& roots, const std::string& hidPath);

/// Who has the node open, such as "python3 (process 4711)", as far as the user may see; empty
/// otherwise. The own process does not count.
std::string holderOf(const Roots& roots, const std::filesystem::path& node);

} // namespace veltra
