// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Options.hpp"
#include "buses/I2c.hpp"

#include <string>
#include <vector>

namespace veltra {

/// A program and the devices that it is to find, as they were typed.
struct DevicesOfProgram {
    std::vector<std::string> i2c; ///< N=BUS; empty for the usual ones.
    std::vector<std::string> spi; ///< B.C=CS
    I2cSettings settings;         ///< Of every I2C bus.
    std::vector<std::string> program;
};

/// Starts the program and serves its devices until it ends. Returns its exit status; ends this
/// process by the signal that ended the program, if one has.
int runProgram(const DevicesOfProgram& wanted, Context& context);

} // namespace veltra
