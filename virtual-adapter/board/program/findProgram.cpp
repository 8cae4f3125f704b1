// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/program/findProgram.hpp"

#include <cstdlib>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace virtual_adapter {

namespace {

bool isProgram(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error) && access(file.c_str(), X_OK) == 0;
}

} // namespace

std::optional<std::filesystem::path> findProgram(const std::string& word,
                                                 const std::filesystem::path& directory) {
    if (word.find('/') != std::string::npos) {
        const std::filesystem::path file = directory / word;
        return isProgram(file) ? std::optional(file) : std::nullopt;
    }
    const char* const path = std::getenv("PATH");
    std::istringstream directories(path == nullptr ? "/usr/bin:/bin" : path);
    for (std::string each; std::getline(directories, each, ':');) {
        const std::filesystem::path file = directory / each / word;
        if (isProgram(file)) {
            return file;
        }
    }
    return std::nullopt;
}

} // namespace virtual_adapter
