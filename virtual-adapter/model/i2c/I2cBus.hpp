// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/i2c/I2cTarget.hpp"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace virtual_adapter {

/// The two wires of an I2C bus and the targets on them. A transfer is a START, bytes, more
/// repeated STARTs and bytes, and a STOP.
class I2cBus {
public:
    void attach(uint8_t address, std::unique_ptr<I2cTarget> target);
    /// A target that answers to a 10-bit address and has nothing to say.
    void attachTenBit(uint16_t address) { tenBitTargets.insert(address); }

    /// Sends a START, a repeated one inside a transfer, and @p address. Returns whether a target
    /// acknowledges it.
    bool start(uint8_t address, I2cDirection direction);
    /// Sends bytes until one is not acknowledged. Returns how many were. The addressed target must
    /// have acknowledged its address.
    size_t write(const Bytes& bytes);
    /// The addressed target must have acknowledged its address.
    Bytes read(size_t count);
    void stop();

    /// Takes the power of every target away and gives it back. A transfer that is still open ends
    /// without its STOP.
    void cyclePower();

    /// What keeps the targets' acknowledges from the controller.
    enum class Disturbance { None, NoAddress, NoByte };
    /// Disturbs every transfer, until told otherwise.
    void disturb(Disturbance chosen) { disturbance = chosen; }

    /// A target keeps an acknowledge back.
    struct Refusal {
        uint8_t address;
        /// Which byte behind the address, counted from 1; nothing for the address itself.
        std::optional<size_t> byte;
        unsigned times;
    };
    void refuse(const Refusal& refusal) { refusals.push_back(refusal); }

    /// Something holds a line low: no transfer is possible until the bus is freed.
    void holdLow() { heldLow = true; }
    [[nodiscard]] bool isHeldLow() const { return heldLow; }
    /// Nine clocks make a target let go of the line.
    void free() { heldLow = false; }

    /// The target that stands at the address, or null.
    [[nodiscard]] I2cTarget* targetAt(uint8_t address) const;

    /// In ascending order.
    [[nodiscard]] const std::set<uint16_t>& tenBitAddresses() const { return tenBitTargets; }

private:
    std::map<uint8_t, std::unique_ptr<I2cTarget>> targets;
    std::set<uint16_t> tenBitTargets;
    /// Of the refusals at that address the first that is for the address itself or for one of
    /// @p byteCount bytes, which is used up once.
    std::optional<Refusal> takeRefusal(uint8_t address, size_t byteCount);

    I2cTarget* addressed = nullptr;
    uint8_t currentAddress = 0;
    std::vector<Refusal> refusals;
    Disturbance disturbance = Disturbance::None;
    bool heldLow = false;
};

} // namespace virtual_adapter
