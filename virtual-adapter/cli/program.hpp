// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

namespace virtual_adapter {

/// The variable that tells programs where the adapters' sockets are.
constexpr const char* socketVariable = "VELTRA_VIRTUAL_ADAPTER_SOCKET";

/// What programs have to preload. It lies beside the executable in a build tree and in a directory
/// of its own once installed. Throws a ProcessEnd where it is in neither, after a message.
std::string findPreloadLibrary();

/// Replaces this process by @p program, with @p library in front of its hidapi and the adapters at
/// @p socket. Throws a ProcessEnd where that fails, after a message.
[[noreturn]] void startProgram(std::vector<std::string> program, const std::string& library,
                               const std::string& socket);

} // namespace virtual_adapter
