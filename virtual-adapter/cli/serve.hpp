// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"

namespace virtual_adapter {

/// Adds `serve`, which exports the adapter over USB/IP until the process is told to end.
void addServeCommand(command_line::Command app);

} // namespace virtual_adapter
