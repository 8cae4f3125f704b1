// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I3cTemperatureSensor.hpp"

#include <cmath>

namespace virtual_adapter {

const I3cCharacteristics I3cTemperatureSensor::itsKind{0x48,
                                                       {0xFF, 0xFE, 0x00, 0x30, 0x10, 0x00},
                                                       0x26,
                                                       0x63,
                                                       64,
                                                       64,
                                                       8,
                                                       0x00,
                                                       I3cPushPullRate_12_5_MHz};

namespace {

// The register map.
constexpr size_t registerCount = 16;
constexpr size_t temperatureHigh = 0x00;
constexpr size_t temperatureLow = 0x01;
constexpr size_t alert = 0x02;

} // namespace

std::vector<Setting> I3cTemperatureSensor::settings() {
    return {
        Setting::decimal("temperature", -128, 127, "degrees Celsius", "25.5",
                         "where it sits; it measures in steps of 1/256, rounding down")
            .changing(),
    };
}

I3cTemperatureSensor::I3cTemperatureSensor(const I3cCharacteristics& characteristics,
                                           double itsTemperature)
    : I3cTarget(characteristics, Bytes(registerCount)), temperature(itsTemperature) {
    measure();
}

void I3cTemperatureSensor::resetWholeTarget() {
    I3cTarget::resetWholeTarget();
    measure();
}

std::string I3cTemperatureSensor::set(const std::string& name, const std::string& value) {
    return changeSetting(settings(), name, value,
                         [this](const Setting& /*setting*/, const SettingValue& measured) {
                             temperature = std::get<double>(measured);
                             measure();
                         });
}

void I3cTemperatureSensor::measure() {
    const auto steps = static_cast<uint16_t>(static_cast<int>(std::floor(256 * temperature)));
    storeRegister(temperatureHigh, highByte(steps));
    storeRegister(temperatureLow, lowByte(steps));
}

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
