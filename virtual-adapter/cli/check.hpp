// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"

namespace virtual_adapter {

/// Adds the command that says whether a board's file is right, and what stands on that board.
void addCheckCommand(command_line::Command app);

} // namespace virtual_adapter
