// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <stdexcept>
#include <string>

namespace launch {

// What shells and env(1) exit with.
constexpr int cannotSetUp = 125;
constexpr int cannotExecute = 126;
constexpr int notFound = 127;

/// Why a program was not started.
class StartFailure : public std::runtime_error {
public:
    StartFailure(int status, const std::string& text)
        : std::runtime_error(text), exitStatus(status) {}

    int exitStatus;
};

} // namespace launch
