// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"
#include "device/AdapterSettings.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// The adapters that a command line asks for.
struct AdapterChoice {
    /// Of the only adapter, and of each of several but for its serial number.
    AdapterSettings settings;
    /// Each with the file of a board behind '=', if it has one of its own.
    std::vector<std::string> serialNumbers;

    [[nodiscard]] std::vector<AdapterSettings> all() const;
};

/// Gives @p command the options that choose an adapter; parsing fills @p settings.
void addAdapterOptions(command_line::Command command, AdapterSettings& settings);

/// The same where several may stand side by side.
void addAdapterOptions(command_line::Command command, AdapterChoice& choice);

/// Throws a Refusal for a fault that only a host has, where a real one carries the
/// adapter's reports.
void refuseHostFaults(const AdapterSettings& settings);

/// The same where a real host carries the adapter's reports, which has faults of its own.
void addAdapterOptionsOnRealHost(command_line::Command command, AdapterSettings& settings);

} // namespace virtual_adapter
