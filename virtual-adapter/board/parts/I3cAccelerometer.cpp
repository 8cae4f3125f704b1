// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I3cAccelerometer.hpp"

#include <cmath>
#include <string_view>

namespace virtual_adapter {

const I3cCharacteristics I3cAccelerometer::itsKind{
    0x00, {0xFF, 0xFE, 0x00, 0x40, 0x10, 0x00}, 0x01, 0x41, 32, 32, 0, 0x00, I3cPushPullRate_8_MHz};

namespace {

constexpr size_t registerCount = 16;
constexpr size_t axesEnd = 0x06;
constexpr int unitsPerG = 0x1000;

constexpr std::string_view axisNames = "xyz";

} // namespace

std::vector<Setting> I3cAccelerometer::settings() {
    std::vector<Setting> axes;
    for (const char name : axisNames) {
        // The module lies still and level.
        axes.push_back(Setting::decimal(std::string(1, name), -8, 7, "g", name == 'z' ? "1" : "0",
                                        "what it measures on this axis, in steps of 1/4096")
                           .changing());
    }
    return axes;
}

I3cAccelerometer::I3cAccelerometer(const I3cCharacteristics& characteristics, const Axes& axes)
    : I3cTarget(characteristics, Bytes(registerCount)), measured(axes) {
    measure();
}

void I3cAccelerometer::resetWholeTarget() {
    I3cTarget::resetWholeTarget();
    measure();
}

std::string I3cAccelerometer::set(const std::string& name, const std::string& value) {
    return changeSetting(settings(), name, value,
                         [this](const Setting& axis, const SettingValue& inG) {
                             measured.at(axisNames.find(axis.name)) = std::get<double>(inG);
                             measure();
                         });
}

void I3cAccelerometer::measure() {
    for (size_t axis = 0; axis < measured.size(); ++axis) {
        const auto units =
            static_cast<uint16_t>(static_cast<int>(std::floor(unitsPerG * measured.at(axis))));
        storeRegister(2 * axis, highByte(units));
        storeRegister(2 * axis + 1, lowByte(units));
    }
}

void I3cAccelerometer::setSupply(bool isSupplied) {
    if (isSupplied != isPowered()) {
        joining = isSupplied;
    }
    I3cTarget::setSupply(isSupplied);
}

void I3cAccelerometer::setDynamicAddress(uint8_t assigned) {
    I3cTarget::setDynamicAddress(assigned);
    if (assigned != 0) {
        joining = false;
    }
}

void I3cAccelerometer::writeRegister(size_t index, uint8_t value) {
    if (index >= axesEnd) {
        storeRegister(index, value);
    }
}

} // namespace virtual_adapter
