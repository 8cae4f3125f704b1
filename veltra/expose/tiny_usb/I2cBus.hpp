// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tiny_usb {

using Bytes = std::vector<uint8_t>;

/// How a transfer ended.
enum class Outcome { Done, NotAcknowledged, Failed };

/// The bus on which a kernel's messages go. A transfer that holds the bus ends without a STOP.
class I2cBus {
public:
    I2cBus() = default;
    virtual ~I2cBus() = default;
    I2cBus(const I2cBus&) = delete;
    I2cBus& operator=(const I2cBus&) = delete;

    static constexpr size_t maxRegisterBytes = 4;

    virtual Outcome write(uint8_t address, const Bytes& data, bool hold) = 0;
    /// Fills `data`; behind a write of the register's address and a repeated START, if that has
    /// bytes.
    virtual Outcome read(uint8_t address, const Bytes& registerBytes, Bytes& data, bool hold) = 0;
    /// Ends a transfer that holds the bus.
    virtual void release() = 0;
};

} // namespace tiny_usb
