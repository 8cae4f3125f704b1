// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i2c/I2cBus.hpp"

#include <utility>

namespace virtual_adapter {

void I2cBus::attach(uint8_t address, std::unique_ptr<I2cTarget> target) {
    targets[address] = std::move(target);
}

bool I2cBus::start(uint8_t address, I2cDirection direction) {
    I2cTarget* const target = disturbance == Disturbance::NoAddress ? nullptr : targetAt(address);
    addressed = target != nullptr && target->start(direction) ? target : nullptr;
    return addressed != nullptr;
}

size_t I2cBus::write(const Bytes& bytes) {
    return bytes.empty() || disturbance == Disturbance::NoByte ? 0 : addressed->writeMessage(bytes);
}

Bytes I2cBus::read(size_t count) {
    return count == 0 ? Bytes{} : addressed->readMessage(count);
}

I2cTarget* I2cBus::targetAt(uint8_t address) const {
    const auto target = targets.find(address);
    return target == targets.end() ? nullptr : target->second.get();
}

void I2cBus::stop() {
    if (addressed != nullptr) {
        addressed->stop();
        addressed = nullptr;
    }
}

void I2cBus::cyclePower() {
    // The wires fall without a STOP.
    addressed = nullptr;
    for (const auto& [address, target] : targets) {
        target->cyclePower();
    }
}

} // namespace virtual_adapter
