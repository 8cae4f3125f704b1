// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

namespace launch {

/// Where a library of ours lies: beside this executable in a build tree, in @p installedDirectory,
/// which is relative to it, once installed. Throws StartFailure where it is in neither.
std::string findLibrary(const std::string& name, const std::string& installedDirectory);

/// Where a library stands among those that are preloaded already. A sanitizer's runtime is in front
/// of either.
enum class PreloadPlace { First, Last };

/// Makes the programs that this process executes from now on preload @p library, once. Throws
/// StartFailure.
void preload(const std::string& library, PreloadPlace place);

/// Throws StartFailure.
void setEnvironment(const std::string& variable, const std::string& value);

/// Replaces this process by @p program. Throws StartFailure.
[[noreturn]] void execute(std::vector<std::string> program);

} // namespace launch
