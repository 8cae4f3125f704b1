// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "bytes/Bytes.hpp"
#include "model/i2c/I2cTarget.hpp"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace virtual_adapter {

/// A temperature sensor with the registers of an LM75: a pointer byte selects the register that
/// the bytes behind it write and that reads return, most significant byte first.
class I2cTemperatureSensor : public I2cTarget {
public:
    static std::vector<Setting> settings();

    /// The sensor sits at a temperature in degrees Celsius, from -55 to 125, which it measures in
    /// steps of half a degree.
    explicit I2cTemperatureSensor(double temperature);

    bool start(I2cDirection direction) override;
    bool write(uint8_t byte) override;
    uint8_t read() override;
    void stop() override {}
    void cyclePower() override;
    std::string set(const std::string& name, const std::string& value) override;

private:
    struct Register {
        /// Most significant byte first.
        Bytes value;
        /// The bits that a write changes.
        Bytes writableBits;
    };

    using Registers = std::array<Register, 4>;

    static Registers initialRegisters();
    void measure(double temperature);

    Registers registers = initialRegisters();
    size_t pointer = 0;
    bool pointerExpected = false;
    /// The byte of the register that the transfer has reached.
    size_t offset = 0;
};

} // namespace virtual_adapter
