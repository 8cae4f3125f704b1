// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/FactoryBoard.hpp"
#include "device/UsbIdentity.hpp"
#include "faults/Fault.hpp"
#include "stimuli/Stimulus.hpp"

#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace virtual_adapter {

/// Which adapter to be.
struct AdapterSettings {
    UsbIdentity identity = usbIdentities[0];
    /// UTF-8.
    std::string serialNumber = "VA-0001";
    std::vector<Fault> faults;
    /// How late a late response is.
    std::chrono::milliseconds faultDelay{1500};
    /// How long a report takes to cross the bus.
    std::chrono::microseconds latency{0};
    /// Makes the board that the adapter has when it is switched on.
    std::function<Board()> makeBoard = factoryBoard;
    /// What happens to the adapter of its own accord.
    std::vector<ScheduledStimulus> schedule{};
    /// Is told why something of the schedule cannot be; may be empty.
    std::function<void(const std::string& complaint)> complain{};

    [[nodiscard]] bool hasFault(FaultKind kind) const;
};

/// A setting as text on the command line.
struct SettingText {
    const char* option;
    const char* placeholder;
    std::string help;
    /// Whether it may be given several times.
    bool repeats;
    /// Throws std::invalid_argument, whose text says what the setting accepts.
    void (*read)(AdapterSettings& settings, const std::string& text);
    std::string (*write)(const AdapterSettings& settings);
};

const std::array<SettingText, 5>& settingTexts();

/// What --fault does, with the faults that there are to choose from.
std::string faultHelp(FaultsOf whom);

} // namespace virtual_adapter
