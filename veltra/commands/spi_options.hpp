// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/Spi.hpp"
#include "commands/commands.hpp"

namespace veltra {

/// The options that every SPI command takes.
inline void addSpiOptions(Command command, SpiSettings& settings) {
    command.addOption("-c,--cs", settings.chipSelect, "The chip select, 0 unless given")
        .typeName("CS")
        .range(0, 3);
    command.addOption("-m,--mode", settings.mode, "Clock polarity and phase, 0 unless given")
        .typeName("MODE")
        .range(0, 3);
    command.addOption("--clock", settings.clock, "Such as 1M, which it is unless given")
        .typeName("HZ");
    command.addOption("--bits", settings.bits, "The bits of a word, 8 or 16; 8 unless given")
        .typeName("BITS")
        .oneOf({8, 16});
    command.addFlag("--lsb", settings.lsbFirst, "Least significant bit first");
    command.addFlag("--cs-high", settings.activeHigh, "The chip select is asserted high");
}

} // namespace veltra
