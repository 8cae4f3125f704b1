// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I3cCompanion.hpp"

#include <utility>

namespace virtual_adapter {

const I3cCharacteristics I3cCompanion::itsKind{0x00,
                                               {0xFF, 0xFE, 0x00, 0x10, 0x10, 0x00},
                                               0x62,
                                               0xC6,
                                               64,
                                               64,
                                               0,
                                               0x00,
                                               I3cPushPullRate_12_5_MHz};

namespace {

// The register map.
constexpr size_t supply = 0x00;
constexpr size_t doorbell = 0x01;
constexpr size_t enabledEventsRegister = 0x02;

/// GETSTATUS: the state before the controller role is handed over. GETCAPS: what the target
/// would do in that role.
constexpr uint8_t controllerRoleFormat = 0x91;

} // namespace

std::vector<Setting> I3cCompanion::settings() {
    return {Setting::plain("switches", SettingKind::Name,
                           "the supply that its register 0x00 switches")};
}

I3cCompanion::I3cCompanion(std::function<void(bool)> switchModule,
                           const I3cCharacteristics& characteristics)
    : I3cTarget(characteristics, Bytes(16)), switchSupply(std::move(switchModule)) {}

void I3cCompanion::resetWholeTarget() {
    I3cTarget::resetWholeTarget();
    switchSupply(false);
}

uint8_t I3cCompanion::readRegister(size_t index) const {
    return index == enabledEventsRegister ? enabledEvents() : storedRegister(index);
}

void I3cCompanion::writeRegister(size_t index, uint8_t value) {
    storeRegister(index, value);
    if (index == supply) {
        switchSupply((value & 1U) != 0);
    } else if (index == doorbell) {
        requestInterrupt({});
    }
}

std::optional<Bytes> I3cCompanion::specialStatus(uint8_t definingByte) const {
    if (definingByte != controllerRoleFormat) {
        return {};
    }
    return Bytes{0x00, 0x00};
}

std::optional<Bytes> I3cCompanion::specialCapabilities(uint8_t definingByte) const {
    constexpr uint8_t admitsHotJoin = 0x01;
    constexpr uint8_t admitsInterrupts = 0x01;
    if (definingByte != controllerRoleFormat) {
        return {};
    }
    return Bytes{admitsHotJoin, admitsInterrupts};
}

} // namespace virtual_adapter
