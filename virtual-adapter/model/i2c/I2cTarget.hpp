// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace virtual_adapter {

enum class I2cDirection { Write, Read };

/// A device on an I2C bus, as the controller's signals reach it.
class I2cTarget {
public:
    I2cTarget() = default;
    I2cTarget(const I2cTarget&) = delete;
    I2cTarget& operator=(const I2cTarget&) = delete;
    virtual ~I2cTarget() = default;

    /// A START or repeated START came with the target's address. Returns whether the target
    /// acknowledges it.
    virtual bool start(I2cDirection direction) = 0;

    /// Returns whether the target acknowledges @p byte.
    virtual bool write(uint8_t byte) = 0;

    virtual uint8_t read() = 0;

    /// Comes only to a target that has acknowledged its address since the last STOP.
    virtual void stop() = 0;

    /// Power went and has come back: what does not last is as it was at first.
    virtual void cyclePower() {}
};

} // namespace virtual_adapter
