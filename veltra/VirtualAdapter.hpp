// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

namespace veltra {

/// Starts this very command again under a virtual adapter; returns only by a Failure.
[[noreturn]] void restartVirtually(const std::vector<std::string>& words, const std::string& board);

} // namespace veltra
