// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/PowerDomain.hpp"
#include "model/gpio/GpioLines.hpp"
#include "model/i2c/I2cBus.hpp"
#include "model/i3c/I3cBus.hpp"
#include "model/spi/SpiBus.hpp"
#include "model/uart/UartTarget.hpp"

#include <array>
#include <map>
#include <memory>
#include <string>

namespace virtual_adapter {

/// What stands on the adapter's buses: a value, empty until something is put on it.
struct Board {
    std::array<I2cBus, 2> i2c;
    SpiBus spi;
    /// Null when the lines lead nowhere.
    std::unique_ptr<UartTarget> uart;
    GpioLines gpio;
    I3cBus i3c;
    /// By name. A domain keeps its place in memory when the board is moved.
    std::map<std::string, PowerDomain> powerDomains;
};

} // namespace virtual_adapter
