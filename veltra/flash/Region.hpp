// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "flash/Sfdp.hpp"

#include <optional>
#include <string>

namespace veltra {

/// The part of a flash that a command is for.
struct Region {
    uint32_t offset;
    size_t bytes;
};

/// From the offset on; as long as told, as the contents are, or to the end of the flash.
Region regionOf(const std::string& offset, const std::string& length, const FlashGeometry& geometry,
                std::optional<size_t> contents = {});

} // namespace veltra
