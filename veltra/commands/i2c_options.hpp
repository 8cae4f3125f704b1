// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/I2c.hpp"

#include <CLI/CLI.hpp>

#include <memory>

namespace veltra {

/// A register of a target, as it was typed.
struct RegisterWord {
    std::string address;
    unsigned bytes = 1;

    [[nodiscard]] Bytes parsed() const {
        return address.empty() ? Bytes() : parseRegister(address, bytes);
    }
};

/// The options that every I2C command takes.
inline void addI2cOptions(CLI::App& command, I2cSettings& settings) {
    command.add_option("-b,--bus", settings.bus, "The bus, 0 unless given")
        ->type_name("BUS")
        ->check(CLI::Range(0, 1));
    command.add_option("--clock", settings.clock, "100k, 400k or 1M; 400k unless given")
        ->type_name("HZ");
    command
        .add_option("--pull-up", settings.pullUp,
                    "The adapter's pull-up resistors: none, 10k, 4k7 or 2k2")
        ->type_name("OHMS");
    command.add_flag("--retry-busy", settings.retryBusy,
                     "Sends an address that is not acknowledged again, as a busy EEPROM needs it");
}

inline void addRegisterOptions(CLI::App& command, RegisterWord& word) {
    command.add_option("-r,--register", word.address, "The register, sent in front")
        ->type_name("REG");
    command.add_option("--reg-bytes", word.bytes, "The register's bytes, 1 to 4; 1 unless given")
        ->type_name("BYTES")
        ->check(CLI::Range(1, 4));
}

} // namespace veltra
