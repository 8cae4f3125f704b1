// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/file/BoardFile.hpp"
#include "device/AdapterSettings.hpp"

#include <string>

namespace virtual_adapter {

/// A board as its users have described it, and what is to happen on it.
struct ReadBoard {
    BoardFile file;
    std::vector<ScheduledStimulus> schedule;
};

/// Throws BoardFileError, and std::runtime_error when the file cannot be read.
ReadBoard readBoard(const std::string& path);

/// Puts the adapter on the board that the file describes. Throws as readBoard does.
void putOnBoard(AdapterSettings& settings, const std::string& path);

} // namespace virtual_adapter
