// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "protocol/CommandCode.hpp"

#include <optional>
#include <string>
#include <vector>

namespace virtual_adapter {

/// The name that users give a command; null for a code that is no request's.
const char* commandName(CommandCode code);

/// The command of that name.
std::optional<CommandCode> findCommand(const std::string& name);

/// In the order of the codes.
const std::vector<std::string>& commandNames();

} // namespace virtual_adapter
