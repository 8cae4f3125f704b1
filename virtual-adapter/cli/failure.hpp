// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "launch/StartFailure.hpp"

#include <string>

namespace virtual_adapter {

using launch::cannotExecute;
using launch::cannotSetUp;
using launch::notFound;

/// Ends the process, when main has it.
struct ProcessEnd {
    int exitStatus;
};

/// Prints @p message on the standard error output and throws a ProcessEnd.
[[noreturn]] void fail(int exitStatus, const std::string& message);

} // namespace virtual_adapter
