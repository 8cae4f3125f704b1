// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "flash/Region.hpp"

#include "Failure.hpp"
#include "Words.hpp"

namespace veltra {

Region regionOf(const std::string& offset, const std::string& length, const FlashGeometry& geometry,
                std::optional<size_t> contents) {
    const uint64_t first = parseNumber("offset", offset, 0, geometry.bytes);
    const uint64_t rest = geometry.bytes - first;
    const uint64_t room = length.empty() ? rest : parseNumber("length", length, 0, rest);
    if (contents && *contents > room) {
        throw Failure::ofUsage("the file holds " + std::to_string(*contents) +
                               " bytes, and there is room for " + std::to_string(room));
    }
    return {static_cast<uint32_t>(first), contents.value_or(room)};
}

} // namespace veltra
