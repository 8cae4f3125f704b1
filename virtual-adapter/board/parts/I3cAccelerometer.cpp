// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I3cAccelerometer.hpp"

namespace virtual_adapter {

namespace {

constexpr I3cCharacteristics accelerometer{
    0x00, {0xFF, 0xFE, 0x00, 0x40, 0x10, 0x00}, 0x01, 0x41, 32, 32, 0, 0x00, I3cPushPullRate_8_MHz};

constexpr size_t axesEnd = 0x06;

} // namespace

I3cAccelerometer::I3cAccelerometer()
    // The module lies still and level: 1 g on the last of three axes.
    : I3cTarget(accelerometer, {0, 0, 0, 0, 0x10, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}) {}

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
