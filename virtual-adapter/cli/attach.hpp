// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"

namespace virtual_adapter {

/// Adds `attach`, which plugs the adapter into this machine's kernel until the process is told to
/// end.
void addAttachCommand(command_line::Command app);

} // namespace virtual_adapter
