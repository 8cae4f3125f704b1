// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/readFile.hpp"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace virtual_adapter {

std::string readFile(const std::filesystem::path& path, size_t maxSize) {
    // Opening a pipe would wait for whoever writes into it.
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        throw std::runtime_error("cannot read " + path.string() + ": there is no such file");
    }
    if (error || !std::filesystem::is_regular_file(status)) {
        throw std::runtime_error("cannot read " + path.string() + ": " +
                                 (error ? error.message() : "it is no regular file"));
    }
    std::ifstream stream(path, std::ios::binary);
    std::string contents(maxSize + 1, '\0');
    if (stream) {
        stream.read(contents.data(), static_cast<std::streamsize>(contents.size()));
    }
    if (stream.bad() || (stream.fail() && !stream.eof())) {
        throw std::runtime_error("cannot read " + path.string() + ": permission denied");
    }
    contents.resize(static_cast<size_t>(stream.gcount()));
    if (contents.size() > maxSize) {
        throw std::runtime_error("cannot read " + path.string() + ": it is longer than " +
                                 std::to_string(maxSize) + " bytes");
    }
    return contents;
}

} // namespace virtual_adapter
