// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace virtual_adapter {

// What shells and env(1) exit with.
constexpr int cannotSetUp = 125;
constexpr int cannotExecute = 126;
constexpr int notFound = 127;

/// Prints @p message on the standard error output and throws what ends the process with
/// @p exitStatus.
[[noreturn]] void fail(int exitStatus, const std::string& message);

} // namespace virtual_adapter
