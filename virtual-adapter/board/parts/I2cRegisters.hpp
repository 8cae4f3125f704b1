// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/parts/RegisterMap.hpp"
#include "model/i2c/I2cTarget.hpp"

namespace virtual_adapter {

/// A device on an I2C bus that its users describe by its registers. A write begins with a
/// register's address; the bytes behind it are written, and reads go on from there.
class I2cRegisters : public I2cTarget {
public:
    static constexpr unsigned maxWidth = 4;

    explicit I2cRegisters(const SettingValues& values) : registers(values) {}

    bool start(I2cDirection direction) override;
    bool write(uint8_t byte) override;
    uint8_t read() override { return registers.read(); }
    void stop() override {}
    void cyclePower() override { registers.reset(); }
    std::string set(const std::string& name, const std::string& value) override {
        return registers.set(name, value);
    }

private:
    RegisterMap registers;
    size_t addressBytesSeen = 0;
    size_t address = 0;
};

} // namespace virtual_adapter
