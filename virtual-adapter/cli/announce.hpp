// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace virtual_adapter {

/// Prints the line that whoever started the process waits for. Throws std::system_error when it
/// does not get out: then nobody knows where to find the adapter.
void announce(const std::string& line);

} // namespace virtual_adapter
