// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace virtual_adapter {

// What shells and env(1) exit with.
constexpr int cannotSetUp = 125;
constexpr int cannotExecute = 126;
constexpr int notFound = 127;

/// Ends the process, when main has it.
struct ProcessEnd {
    int exitStatus;
};

/// Prints @p message on the standard error output and throws a ProcessEnd.
[[noreturn]] void fail(int exitStatus, const std::string& message);

} // namespace virtual_adapter
