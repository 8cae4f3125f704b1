// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <CLI/App.hpp>

namespace virtual_adapter {

/// Adds `attach`, which plugs the adapter into this machine's kernel until the process is told to
/// end.
void addAttachCommand(CLI::App& app);

} // namespace virtual_adapter
