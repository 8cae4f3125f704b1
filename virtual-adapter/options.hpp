#pragma once

#include "device/AdapterSettings.hpp"

#include <CLI/App.hpp>

namespace virtual_adapter {

/// Gives @p command the options that choose an adapter; parsing fills @p settings.
void addAdapterOptions(CLI::App& command, AdapterSettings& settings);

/// Refuses a fault of the host's, where a real host carries the adapter's reports.
void requireFaultOfAdapter(const AdapterSettings& settings);

} // namespace virtual_adapter
