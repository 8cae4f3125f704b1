// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace virtual_adapter {

/// The line at which a TOML text nests deeper than any board does, in brackets or by the dots of a
/// key. The parser's tables are destroyed by recursion: such a text must not reach it.
std::optional<size_t> lineOfDeepNesting(std::string_view text);

} // namespace virtual_adapter
