#include "model/i3c/I3cBus.hpp"

#include "board/parts/I2cEeprom.hpp"
#include "board/parts/I2cTemperatureSensor.hpp"

#include <algorithm>
#include <memory>

namespace virtual_adapter {

namespace {

constexpr uint8_t legacySensorAddress = 0x4F;
constexpr uint8_t legacyEepromAddress = 0x50;

/// The target that @p wanted tells apart, or null.
template <typename Predicate>
I3cTarget* findTarget(const std::vector<I3cTarget*>& targets, Predicate wanted) {
    const auto found = std::find_if(targets.begin(), targets.end(), wanted);
    return found == targets.end() ? nullptr : *found;
}

} // namespace

I3cBus::I3cBus() : companion([this](bool supplied) { module.setSupply(supplied); }) {
    legacyController.connectPullUp(true);
    legacyController.init(I2cController::Polling::Once);
    legacyController.getBus().attach(
        legacyEepromAddress,
        std::make_unique<I2cEeprom>(I2cEeprom::geometry24C02, "Hello from the I3C bus!"));
    attachLegacySensor();
}

std::vector<I3cTarget*> I3cBus::powered() {
    std::vector<I3cTarget*> targets{&sensor, &companion, &memory};
    if (module.isPowered()) {
        targets.push_back(&module);
    }
    return targets;
}

I3cTarget* I3cBus::withDynamicAddress(uint8_t address) {
    return findTarget(powered(), [=](const I3cTarget* target) {
        return address != 0 && target->dynamicAddress() == address;
    });
}

I3cTarget* I3cBus::unassigned(uint8_t staticAddress) {
    return findTarget(powered(), [=](const I3cTarget* target) {
        return staticAddress != 0 && target->dynamicAddress() == 0 &&
               target->characteristics().staticAddress == staticAddress;
    });
}

bool I3cBus::isLegacy(uint8_t address) {
    return address == legacySensorAddress || address == legacyEepromAddress;
}

bool I3cBus::follows(uint8_t address, I2cTransferRate rate) {
    return address != legacySensorAddress || rate != I2cTransferRate_1_MHz;
}

void I3cBus::cyclePower() {
    legacyController.getBus().stop();
    attachLegacySensor();
    for (I3cTarget* target : powered()) {
        target->resetWholeTarget();
    }
}

void I3cBus::attachLegacySensor() {
    legacyController.getBus().attach(legacySensorAddress,
                                     std::make_unique<I2cTemperatureSensor>(2 * 20));
}

} // namespace virtual_adapter
