// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/UsbIdentity.hpp"
#include "faults/Fault.hpp"

#include <array>
#include <string>

namespace virtual_adapter {

/// Which adapter to be.
struct AdapterSettings {
    UsbIdentity identity = usbIdentities[0];
    /// UTF-8.
    std::string serialNumber = "VA-0001";
    Fault fault;
};

/// A setting as text on the command line.
struct SettingText {
    const char* option;
    const char* placeholder;
    std::string help;
    /// Throws std::invalid_argument, whose text says what the setting accepts.
    void (*read)(AdapterSettings& settings, const std::string& text);
    std::string (*write)(const AdapterSettings& settings);
};

const std::array<SettingText, 4>& settingTexts();

} // namespace virtual_adapter
