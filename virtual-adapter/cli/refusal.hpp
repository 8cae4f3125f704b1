// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// The command line as it was typed.
struct TypedWords {
    std::vector<std::string> words; // up to the --, which is not among them
    bool hasSeparator;
    [[nodiscard]] std::string command() const { return words.empty() ? "" : words.front(); }
    /// Whether the command starts a program, which stands behind a --.
    [[nodiscard]] bool startsProgram() const;
};

/// What is wrong where the parser takes a word for what it is not; empty where it does not.
std::string misunderstood(command_line::Command root, const TypedWords& typed);

/// The parser's own refusal with the command's name, and what to type next.
std::string withMend(command_line::Command root, const TypedWords& typed,
                     const std::string& refusal);

} // namespace virtual_adapter
