// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <CLI/App.hpp>

namespace virtual_adapter {

/// Adds `serve`, which exports the adapter over USB/IP until the process is told to end.
void addServeCommand(CLI::App& app);

} // namespace virtual_adapter
