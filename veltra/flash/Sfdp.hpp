// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Words.hpp"

#include <functional>
#include <string>

namespace veltra {

/// What must be known of a flash to erase and program it.
struct FlashGeometry {
    uint64_t bytes;
    uint32_t eraseBytes;
    uint8_t eraseOpcode;
    uint32_t pageBytes;
};

/// Reads bytes of the flash's parameter tables (JESD216).
using SfdpReader = std::function<Bytes(uint32_t address, size_t count)>;

/// Whether the flash has parameter tables at all.
bool hasSfdp(const SfdpReader& read);

/// Reads the basic table; whatever it says that cannot be true is a Failure.
FlashGeometry readSfdp(const SfdpReader& read);

} // namespace veltra
