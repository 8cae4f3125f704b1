// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/I2c.hpp"
#include "commands/commands.hpp"

#include <memory>

namespace veltra {

/// A register of a target, as it was typed.
struct RegisterWord {
    std::string address;
    unsigned bytes = 1;

    [[nodiscard]] Bytes parsed() const {
        return address.empty() ? Bytes() : parseRegister(address, bytes);
    }
    /// 0 where none was typed.
    [[nodiscard]] uint64_t number() const {
        return address.empty() ? 0 : parseNumber("register", address, 0, UINT32_MAX);
    }
};

/// How a bus is set up.
inline void addI2cSettings(Command command, I2cSettings& settings) {
    command.addOption("--clock", settings.clock, "100k, 400k or 1M; 400k unless given")
        .typeName("HZ");
    command
        .addOption("--pull-up", settings.pullUp,
                   "The adapter's pull-up resistors: none, 10k, 4k7 or 2k2")
        .typeName("OHMS");
    command.addFlag("--retry-busy", settings.retryBusy,
                    "Sends an address that is not acknowledged again, as a busy EEPROM needs it");
}

/// The options that every I2C command takes.
inline void addI2cOptions(Command command, I2cSettings& settings) {
    command.addOption("-b,--bus", settings.bus, "The bus, 0 unless given")
        .typeName("BUS")
        .range(0, 1);
    addI2cSettings(command, settings);
}

inline void addRegisterOptions(Command command, RegisterWord& word) {
    command.addOption("-r,--register", word.address, "The register, sent in front").typeName("REG");
    command.addOption("--reg-bytes", word.bytes, "The register's bytes, 1 to 4; 1 unless given")
        .typeName("BYTES")
        .range(1, 4);
}

} // namespace veltra
