// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Session.hpp"

#include <optional>
#include <string>

namespace veltra {

/// How an I2C bus is to be set up, as it was typed.
struct I2cSettings {
    int bus = 0;
    std::string clock = "400k";
    std::string pullUp; ///< Empty leaves the resistors as they are.
    bool retryBusy = false;
};

/// Refuses settings that nobody understands, before anything is sent.
void checkWords(const I2cSettings& settings);

/// One I2C bus of the adapter, set up; each member sends one request.
class I2c {
public:
    struct Found {
        Bytes addresses;
        std::vector<uint16_t> tenBitAddresses;
    };

    I2c(Session& over, const I2cSettings& settings);

    Found scan(bool tenBit);
    Bytes read(uint8_t address, const Bytes& registerBytes, uint16_t count, bool hold = false);
    void write(uint8_t address, const Bytes& registerBytes, const Bytes& data, bool hold = false);
    /// Whether somebody acknowledges the address; every other refusal is a Failure.
    bool acknowledges(uint8_t address);
    [[nodiscard]] int bus() const { return index; }

private:
    [[nodiscard]] std::string request(const std::string& verb, uint8_t address) const;
    void perform(const std::string& words, const Session::Call& call,
                 const Bytes* answer = nullptr);
    /// Any result but success is a Failure.
    void require(uint16_t result);

    Session& session;
    uint8_t index;
};

} // namespace veltra
