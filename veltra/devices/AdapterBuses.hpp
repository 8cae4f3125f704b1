// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/I2c.hpp"
#include "devices/Buses.hpp"

#include <functional>
#include <set>
#include <string>

namespace veltra {

/// The buses of the adapter. A bus is set up when it is first used. What only people can mend, such
/// as a voltage that is off, they are told once.
class AdapterBuses : public devices::Buses {
public:
    /// @p i2c holds what was typed for every I2C bus.
    AdapterBuses(Session& over, Output& tells, I2cSettings i2c)
        : session(over), output(tells), typed(std::move(i2c)) {}

    int i2cRead(int bus, uint8_t address, const Bytes& written, uint16_t count, bool hold,
                Bytes& data) override;
    int i2cWrite(int bus, uint8_t address, const Bytes& data, bool hold) override;
    int spiTransfer(const devices::SpiSetting& setting, const Bytes& sent, uint16_t count,
                    Bytes& received) override;
    void pause(unsigned microseconds) override;

private:
    int attempt(const std::function<void()>& call);
    I2c setUp(int bus);

    Session& session;
    Output& output;
    I2cSettings typed;
    std::set<std::string> told;
};

} // namespace veltra
