// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/Spi.hpp"

#include <CLI/CLI.hpp>

namespace veltra {

/// The options that every SPI command takes.
inline void addSpiOptions(CLI::App& command, SpiSettings& settings) {
    command.add_option("-c,--cs", settings.chipSelect, "The chip select, 0 unless given")
        ->type_name("CS")
        ->check(CLI::Range(0, 3));
    command.add_option("-m,--mode", settings.mode, "Clock polarity and phase, 0 unless given")
        ->type_name("MODE")
        ->check(CLI::Range(0, 3));
    command.add_option("--clock", settings.clock, "Such as 1M, which it is unless given")
        ->type_name("HZ");
    command.add_option("--bits", settings.bits, "The bits of a word, 8 or 16; 8 unless given")
        ->type_name("BITS")
        ->check(CLI::IsMember({8, 16}));
    command.add_flag("--lsb", settings.lsbFirst, "Least significant bit first");
    command.add_flag("--cs-high", settings.activeHigh, "The chip select is asserted high");
}

} // namespace veltra
