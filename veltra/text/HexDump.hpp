// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Words.hpp"

#include <string>

namespace veltra {

/// 16 bytes a line behind their address, with the letters that they stand for; no line end behind
/// the last one.
std::string hexDump(const Bytes& bytes, uint64_t first);

} // namespace veltra
