// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// Starts a process that is these adapters until one second after the last program has ended that
/// uses them; this process, and what it executes, is the first. Returns the path of its socket.
///
/// The process is nobody's child, in a session of its own, and holds none of the caller's
/// descriptors. What it writes on its standard error output is handed to the programs. Call it
/// before the process has a second thread. Throws std::runtime_error where no adapter has come to
/// be.
std::string startAdapterProcess(const std::vector<AdapterSettings>& adapters);

} // namespace virtual_adapter
