// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"

namespace virtual_adapter {

/// Adds `tell`, which lets something happen to an adapter that runs.
void addTellCommand(command_line::Command app);

} // namespace virtual_adapter
