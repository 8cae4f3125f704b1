// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "model/Settable.hpp"

#include <cstddef>

namespace virtual_adapter {

enum class I2cDirection { Write, Read };

/// A device on an I2C bus, as the controller's signals reach it.
class I2cTarget : public Settable {
public:
    /// A START or repeated START came with the target's address. Returns whether the target
    /// acknowledges it.
    virtual bool start(I2cDirection direction) = 0;

    /// Returns whether the target acknowledges @p byte.
    virtual bool write(uint8_t byte) = 0;

    virtual uint8_t read() = 0;

    /// All bytes that the controller sends between two other signals. Returns how many of them the
    /// target acknowledges; the transfer ends at the first that it does not.
    virtual size_t writeMessage(const Bytes& bytes);

    /// All bytes that the controller reads between two other signals: exactly @p count.
    virtual Bytes readMessage(size_t count);

    /// Comes only to a target that has acknowledged its address since the last STOP.
    virtual void stop() = 0;

    /// Power went and has come back: what does not last is as it was at first.
    virtual void cyclePower() {}
};

} // namespace virtual_adapter
