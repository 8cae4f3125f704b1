// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/BoardDescription.hpp"
#include "board/file/Problems.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace virtual_adapter {

/// A board that its users have described in a file.
class BoardFile {
public:
    /// Reads the file. Throws BoardFileError, and as readFile does when it cannot be read.
    explicit BoardFile(const std::filesystem::path& file);

    /// Reads the description from a text that stands for the file. Throws BoardFileError.
    BoardFile(const std::filesystem::path& file, const std::string& text);

    [[nodiscard]] const BoardDescription& description() const { return described; }

    /// What is to be told to the board, by request, then in the order of the file.
    [[nodiscard]] const std::vector<TimedStimulus>& stimuli() const { return described.stimuli; }

    /// The board as it is when it is switched on, fresh each time: its programs are started, the
    /// images that are written back are read again. Throws BoardFileError when one of these cannot
    /// be had. What a program does wrong later is said on the standard error output.
    [[nodiscard]] Board build() const;

private:
    void read(const std::string& text);

    std::filesystem::path path;
    BoardDescription described;
};

} // namespace virtual_adapter
