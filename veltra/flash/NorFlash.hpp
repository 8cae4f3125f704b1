// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Output.hpp"
#include "buses/Spi.hpp"
#include "flash/Sfdp.hpp"

namespace veltra {

/// A serial NOR flash behind a chip select. What takes many requests shows its progress, and a
/// Failure says how far it came.
class NorFlash {
public:
    NorFlash(Spi& over, Output& tells) : spi(over), output(tells) {}

    /// Asks the flash what it is: its identification, its parameter tables.
    void identify();
    [[nodiscard]] const Bytes& identification() const { return id; }
    [[nodiscard]] bool describesItself() const { return sfdp; }
    [[nodiscard]] const FlashGeometry& geometry() const { return shape; }

    Bytes read(uint32_t offset, size_t count);
    /// Erases blocks where bits must become 1 again, keeping what else is in them, and programs
    /// what differs.
    void write(uint32_t offset, const Bytes& contents);
    /// Whole blocks only.
    void erase(uint32_t offset, size_t count);
    /// A Failure names the first byte that differs.
    void verify(uint32_t offset, const Bytes& contents);

private:
    void enableWriting();
    void waitUntilReady();
    void eraseBlock(uint32_t offset);
    void program(uint32_t offset, const Bytes& before, const Bytes& wanted);
    Bytes readPiece(uint32_t offset, size_t count);

    Spi& spi;
    Output& output;
    Bytes id;
    bool sfdp = false;
    FlashGeometry shape{};
};

} // namespace veltra
