// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "model/Status.hpp"
#include "model/i2c/I2cBus.hpp"

#include <cstddef>
#include <cstdint>

namespace virtual_adapter {

/// One I2C controller with the pull-up resistors of the bus that it works on.
class I2cController {
public:
    /// What a transfer leaves behind: a free bus, or a held one on which the next transfer begins
    /// with a repeated START. A transfer that fails always frees the bus.
    enum class End { Stop, Hold };

    /// How often the controller sends an address before it takes it for not acknowledged.
    enum class Polling : unsigned { Once = 1, UntilReady = 16 };

    /// @p itsBus must outlive the controller.
    explicit I2cController(I2cBus& itsBus) : bus(itsBus) {}

    [[nodiscard]] I2cBus& getBus() { return bus; }

    void connectPullUp(bool connected) { pulledUp = connected; }

    /// Switches the controller on and frees the bus.
    void init(Polling addressPolling);
    Status setParameters(Polling addressPolling);

    Status write(uint8_t address, const Bytes& bytes, End end);

    /// Writes @p registerAddress first unless it is empty. Appends @p length bytes to @p received.
    Status read(uint8_t address, const Bytes& registerAddress, size_t length, End end,
                Bytes& received);

    /// Appends the 7-bit addresses that are acknowledged, in ascending order. The addresses that
    /// the I2C-bus specification reserves are left out.
    Status scan(Bytes& acknowledged);

private:
    /// Success, or why the controller cannot move the lines.
    [[nodiscard]] Status readiness() const;
    Status start(uint8_t address, I2cDirection direction);
    Status send(uint8_t address, const Bytes& bytes);
    /// Frees the bus if the transfer has come to that. Returns @p status.
    Status finish(Status status, End end);

    I2cBus& bus;
    bool pulledUp = false;
    bool initialised = false;
    Polling polling = Polling::Once;
};

} // namespace virtual_adapter
