// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace virtual_adapter {

/// What a regular file holds. Throws std::runtime_error, whose text says why that cannot be had:
/// it is missing, no regular file or longer than @p maxSize.
std::string readFile(const std::filesystem::path& path, size_t maxSize);

} // namespace virtual_adapter
