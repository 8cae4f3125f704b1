// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// Adds the command that starts @p program with an adapter that answers from a capture.
void addReplayCommand(command_line::Command app, const std::vector<std::string>& program);

} // namespace virtual_adapter
