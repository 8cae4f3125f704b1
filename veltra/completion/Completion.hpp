// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "command-line/Grammar.hpp"

#include <functional>
#include <string>
#include <vector>

namespace veltra {

/// What only an adapter can tell; nothing where it cannot be asked at once.
struct LiveValues {
    std::function<std::vector<std::string>()> adapters;
    /// As the commands take them, of the adapter that the words choose.
    std::function<std::vector<std::string>(const std::string& device)> targets;
};

/// The words that may stand in the place of `words[index]`, by walking the grammar from its root;
/// `words[0]` is the program's name.
std::vector<std::string> complete(command_line::Command root, const std::vector<std::string>& words,
                                  size_t index, const LiveValues& live);

} // namespace veltra
