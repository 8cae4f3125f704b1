// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I3cTemperatureSensor.hpp"

namespace virtual_adapter {

namespace {

constexpr I3cCharacteristics temperatureSensor{0x48,
                                               {0xFF, 0xFE, 0x00, 0x30, 0x10, 0x00},
                                               0x26,
                                               0x63,
                                               64,
                                               64,
                                               8,
                                               0x00,
                                               I3cPushPullRate_12_5_MHz};

// The register map.
constexpr size_t temperatureHigh = 0x00;
constexpr size_t temperatureLow = 0x01;
constexpr size_t alert = 0x02;

} // namespace

I3cTemperatureSensor::I3cTemperatureSensor()
    : I3cTarget(temperatureSensor, {0x19, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}) {}

void I3cTemperatureSensor::writeRegister(size_t index, uint8_t value) {
    if (index == temperatureHigh || index == temperatureLow) {
        return;
    }
    storeRegister(index, value);
    if (index == alert) {
        // The mandatory data byte, then the reading.
        requestInterrupt({value, storedRegister(temperatureHigh), storedRegister(temperatureLow)});
    }
}

} // namespace virtual_adapter
