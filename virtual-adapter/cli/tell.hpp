// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <CLI/App.hpp>

namespace virtual_adapter {

/// Adds `tell`, which lets something happen to an adapter that runs.
void addTellCommand(CLI::App& app);

} // namespace virtual_adapter
