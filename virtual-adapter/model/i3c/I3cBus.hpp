// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/i2c/I2cBus.hpp"
#include "model/i3c/I3cTarget.hpp"

#include <veltrasdk/i3c.h>

#include <map>
#include <memory>
#include <vector>

namespace virtual_adapter {

/// Everything on the wires of the I3C bus: I3C targets, and I2C devices as legacy devices.
class I3cBus {
public:
    void attach(std::unique_ptr<I3cTarget> target);
    /// @p fastestRate is the fastest at which the device answers to legacy transfers.
    void attachLegacy(uint8_t address, I2cTransferRate fastestRate,
                      std::unique_ptr<I2cTarget> device);

    /// The I3C targets, with and without power.
    [[nodiscard]] std::vector<I3cTarget*> all() const;
    /// The I3C targets that have power.
    [[nodiscard]] std::vector<I3cTarget*> powered() const;
    /// The target that has @p address as its dynamic address, or null.
    [[nodiscard]] I3cTarget* withDynamicAddress(uint8_t address) const;
    /// The target without a dynamic address that has @p address as its static one, or null.
    [[nodiscard]] I3cTarget* unassigned(uint8_t staticAddress) const;

    /// The wires as the legacy devices see them.
    I2cBus& legacy() { return legacyBus; }
    [[nodiscard]] bool isLegacy(uint8_t address) const;
    /// Whether legacy devices share the wires.
    [[nodiscard]] bool hasLegacyDevices() const { return !fastestRates.empty(); }
    /// Whether a legacy device stands at @p address that follows the rate.
    [[nodiscard]] bool isLegacyAt(uint8_t address, I2cTransferRate rate) const;

    /// Sends a START, a repeated one inside a transfer, and the broadcast address.
    void start(bool repeated);

    /// Disturbs every transfer to one target, until told otherwise: with `NoAddress` no target is
    /// found at its address.
    void disturb(I2cBus::Disturbance chosen);

    /// Takes the power away and gives it back.
    void cyclePower();

private:
    std::vector<std::unique_ptr<I3cTarget>> targets;
    I2cBus legacyBus;
    bool acknowledgesAddresses = true;
    /// By the address of the legacy device.
    std::map<uint8_t, I2cTransferRate> fastestRates;
};

} // namespace virtual_adapter
