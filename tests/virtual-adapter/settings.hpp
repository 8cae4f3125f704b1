// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"

#include <string>

namespace virtual_adapter {

/// An adapter with one fault, as a command line names it.
inline AdapterSettings
withFault(const std::string& fault,
          std::chrono::milliseconds delay = std::chrono::milliseconds(1500)) {
    AdapterSettings settings;
    settings.faults = {parseFault(fault)};
    settings.faultDelay = delay;
    return settings;
}

} // namespace virtual_adapter
