// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace virtual_adapter {

/// The file that a command's first word names: in the directories of PATH, or with a slash in it
/// from @p directory on. Nothing where there is none that can be executed.
std::optional<std::filesystem::path> findProgram(const std::string& word,
                                                 const std::filesystem::path& directory);

} // namespace virtual_adapter
