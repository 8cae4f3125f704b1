// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// Adds `run`, which replaces this process by @p program with the adapter in front of its hidapi.
void addRunCommand(command_line::Command app, const std::vector<std::string>& program);

} // namespace virtual_adapter
