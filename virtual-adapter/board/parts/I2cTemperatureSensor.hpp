// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "model/i2c/I2cTarget.hpp"

#include <array>
#include <cstddef>

namespace virtual_adapter {

/// A temperature sensor with the registers of an LM75: a pointer byte selects the register that
/// the bytes behind it write and that reads return, most significant byte first.
class I2cTemperatureSensor : public I2cTarget {
public:
    /// The sensor sits at a constant temperature, given in steps of half a degree Celsius.
    explicit I2cTemperatureSensor(int halfDegrees);

    bool start(I2cDirection direction) override;
    bool write(uint8_t byte) override;
    uint8_t read() override;
    void stop() override {}
    void cyclePower() override;

private:
    struct Register {
        /// Most significant byte first.
        Bytes value;
        /// The bits that a write changes.
        Bytes writableBits;
    };

    using Registers = std::array<Register, 4>;

    const Registers initialRegisters;
    Registers registers = initialRegisters;
    size_t pointer = 0;
    bool pointerExpected = false;
    /// The byte of the register that the transfer has reached.
    size_t offset = 0;
};

} // namespace virtual_adapter
