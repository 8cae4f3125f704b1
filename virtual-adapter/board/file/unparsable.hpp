// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace virtual_adapter {

/// What a TOML text must not reach the parser with.
struct Unparsable {
    size_t line;
    const char* why;
};

/// The first of these. The parser's tables are destroyed by recursion, so that a text which nests
/// deeper than any board does is refused; and where white space might stand it takes some letters
/// beyond ASCII for what cannot be: TOML allows none there, but for one place in texts of several
/// lines. What is a text the parser and this function must see alike.
std::optional<Unparsable> findUnparsable(std::string_view text);

} // namespace virtual_adapter
