// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i2c/I2cBus.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

void I2cBus::attach(uint8_t address, std::unique_ptr<I2cTarget> target) {
    targets[address] = std::move(target);
}

bool I2cBus::start(uint8_t address, I2cDirection direction) {
    I2cTarget* const target = targetAt(address);
    addressed = nullptr;
    currentAddress = address;
    if (target != nullptr && disturbance != Disturbance::NoAddress &&
        !takeRefusal(address, 0).has_value() && target->start(direction)) {
        addressed = target;
    }
    return addressed != nullptr;
}

size_t I2cBus::write(const Bytes& bytes) {
    if (bytes.empty() || disturbance == Disturbance::NoByte) {
        return 0;
    }
    const std::optional<Refusal> refusal = takeRefusal(currentAddress, bytes.size());
    if (!refusal) {
        return addressed->writeMessage(bytes);
    }
    const auto taken = static_cast<Bytes::difference_type>(refusal->byte.value_or(1) - 1);
    return taken == 0 ? 0 : addressed->writeMessage(Bytes(bytes.begin(), bytes.begin() + taken));
}

std::optional<I2cBus::Refusal> I2cBus::takeRefusal(uint8_t address, size_t byteCount) {
    const auto found = std::find_if(refusals.begin(), refusals.end(), [=](const Refusal& refusal) {
        return refusal.address == address &&
               (byteCount == 0 ? !refusal.byte : refusal.byte && *refusal.byte <= byteCount);
    });
    if (found == refusals.end()) {
        return std::nullopt;
    }
    const Refusal taken = *found;
    if (--found->times == 0) {
        refusals.erase(found);
    }
    return taken;
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
