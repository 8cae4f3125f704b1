// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/I3cBus.hpp"

#include "model/i3c/i3c_records.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

/// The target that @p wanted tells apart, or null.
template <typename Predicate>
I3cTarget* findTarget(const std::vector<I3cTarget*>& targets, Predicate wanted) {
    const auto found = std::find_if(targets.begin(), targets.end(), wanted);
    return found == targets.end() ? nullptr : *found;
}

} // namespace

void I3cBus::attach(std::unique_ptr<I3cTarget> target) {
    targets.push_back(std::move(target));
}

void I3cBus::attachLegacy(uint8_t address, I2cTransferRate fastestRate,
                          std::unique_ptr<I2cTarget> device) {
    legacyBus.attach(address, std::move(device));
    fastestRates[address] = fastestRate;
}

std::vector<I3cTarget*> I3cBus::all() const {
    std::vector<I3cTarget*> attached;
    for (const auto& target : targets) {
        attached.push_back(target.get());
    }
    return attached;
}

std::vector<I3cTarget*> I3cBus::powered() const {
    std::vector<I3cTarget*> present = all();
    const auto unpowered = [](const I3cTarget* target) { return !target->isPowered(); };
    present.erase(std::remove_if(present.begin(), present.end(), unpowered), present.end());
    return present;
}

I3cTarget* I3cBus::withDynamicAddress(uint8_t address) const {
    return findTarget(powered(), [=](const I3cTarget* target) {
        return acknowledgesAddresses && address != 0 && target->dynamicAddress() == address;
    });
}

I3cTarget* I3cBus::unassigned(uint8_t staticAddress) const {
    return findTarget(powered(), [=](const I3cTarget* target) {
        return acknowledgesAddresses && staticAddress != 0 && target->dynamicAddress() == 0 &&
               target->characteristics().staticAddress == staticAddress;
    });
}

bool I3cBus::isLegacy(uint8_t address) const {
    return fastestRates.count(address) != 0;
}

bool I3cBus::isLegacyAt(uint8_t address, I2cTransferRate rate) const {
    const auto fastest = fastestRates.find(address);
    // The enumerators count from the fastest rate down.
    return fastest != fastestRates.end() && rate >= fastest->second;
}

void I3cBus::disturb(I2cBus::Disturbance chosen) {
    legacyBus.disturb(chosen);
    acknowledgesAddresses = chosen != I2cBus::Disturbance::NoAddress;
}

void I3cBus::start(bool repeated) {
    legacyBus.start(i3cBroadcastAddress, I2cDirection::Write);
    if (repeated) {
        return;
    }
    for (I3cTarget* target : powered()) {
        target->receiveStart();
    }
}

void I3cBus::cyclePower() {
    legacyBus.cyclePower();
    for (I3cTarget* target : powered()) {
        target->resetWholeTarget();
    }
}

} // namespace virtual_adapter
