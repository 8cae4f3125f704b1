// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <cstdint>

namespace devices {

using virtual_adapter::Bytes;

/// How an SPI device is spoken to.
struct SpiSetting {
    int chipSelect = 0;
    int mode = 0; ///< 0 to 3.
    bool isActiveHigh = false;
    bool isLsbFirst = false;
    int bits = 8;
    uint32_t clock = 1'000'000;
};

/// What stands behind the devices. Each member carries out one request and returns 0, or the error
/// number that a program is to see.
class Buses {
public:
    Buses() = default;
    virtual ~Buses() = default;
    Buses(const Buses&) = delete;
    Buses& operator=(const Buses&) = delete;

    /// Writes @p written and reads behind a repeated START, or only reads; @p written has at most
    /// four bytes. Holding leaves the STOP out.
    virtual int i2cRead(int bus, uint8_t address, const Bytes& written, uint16_t count, bool hold,
                        Bytes& data) = 0;
    virtual int i2cWrite(int bus, uint8_t address, const Bytes& data, bool hold) = 0;
    /// One chip-select assertion; receives the first @p count bytes of what comes back, which is as
    /// long as what is sent.
    virtual int spiTransfer(const SpiSetting& setting, const Bytes& sent, uint16_t count,
                            Bytes& received) = 0;
    /// Before the next request.
    virtual void pause(unsigned microseconds) = 0;
};

} // namespace devices
