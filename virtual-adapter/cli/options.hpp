// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"

#include <CLI/App.hpp>

namespace virtual_adapter {

/// Gives @p command the options that choose an adapter; parsing fills @p settings.
void addAdapterOptions(CLI::App& command, AdapterSettings& settings);

/// The same where a real host carries the adapter's reports, which has faults of its own.
void addAdapterOptionsOnRealHost(CLI::App& command, AdapterSettings& settings);

} // namespace virtual_adapter
