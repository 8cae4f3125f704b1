// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/BoardDescription.hpp"

#include <string>

namespace virtual_adapter {

/// The buses with what stands on them, for people: a line for each part, with the settings that
/// are not the defaults.
std::string boardTable(const BoardDescription& board);

} // namespace virtual_adapter
