// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/parts/SpiFlash.hpp"

#include <cstddef>
#include <string>

namespace virtual_adapter {

/// Writes what changes in a flash into its image's file, which it fills up to @p size with 0xFF
/// when something changes for the first time. Throws std::runtime_error when the file cannot be
/// written to; what fails later is said on the standard error output, once.
SpiFlash::Keeper imageKeeper(const std::string& file, size_t size);

} // namespace virtual_adapter
