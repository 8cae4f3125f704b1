// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/I2c.hpp"

namespace veltra {

/// Where and how an EEPROM is programmed.
struct Eeprom {
    uint8_t address;
    unsigned pageBytes;
    unsigned registerBytes;
};

/// Writes the contents from address 0 on, page by page, waits out each write cycle, and reads
/// everything back. A Failure says how far it came.
void programEeprom(I2c& bus, Output& output, bool rehearses, const Eeprom& eeprom,
                   const Bytes& contents);

} // namespace veltra
