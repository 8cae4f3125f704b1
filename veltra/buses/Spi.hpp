// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Session.hpp"

#include <string>

namespace veltra {

/// How the SPI controller is to be set up, as it was typed.
struct SpiSettings {
    int chipSelect = 0;
    int mode = 0;
    int bits = 8;
    std::string clock = "1M";
    bool lsbFirst = false;
    bool activeHigh = false;
};

/// The SPI controller, set up for one chip select.
class Spi {
public:
    static constexpr size_t maxBytes = 0xFFFF;

    Spi(Session& over, const SpiSettings& settings);

    /// One assertion of the chip select; returns the first `count` bytes of what comes back, those
    /// received while sending included.
    Bytes transfer(Bytes send, size_t count);
    /// Sends, then reads; returns what comes back behind the sent bytes.
    Bytes query(const Bytes& send, size_t count);
    /// Sends, and reads nothing.
    void command(const Bytes& send) { transfer(send, 0); }

private:
    Session& session;
};

} // namespace veltra
