// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

namespace veltra {

/// Replaces this process by @p program, with the capture in front of its hidapi: what passes is
/// appended to @p file. Returns only by a Failure, whose exit status is that of shells.
[[noreturn]] void startCaptured(const std::string& file, const std::vector<std::string>& program);

/// Starts this very command again with the capture, without @p file among its words; returns only
/// by a Failure.
[[noreturn]] void restartCaptured(const std::vector<std::string>& words, const std::string& file);

} // namespace veltra
