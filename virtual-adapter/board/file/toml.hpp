// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

// The reader of board files needs the parser alone.
#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>

#include <cstddef>

namespace virtual_adapter {

inline size_t lineOf(const toml::source_region& region) {
    return region.begin.line;
}
inline size_t lineOf(const toml::node& node) {
    return lineOf(node.source());
}
inline size_t lineOf(const toml::key& key) {
    return lineOf(key.source());
}

} // namespace virtual_adapter
