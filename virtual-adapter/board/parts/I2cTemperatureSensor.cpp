// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I2cTemperatureSensor.hpp"

#include <cmath>

namespace virtual_adapter {

namespace {

constexpr size_t temperatureRegister = 0;
/// The part looks at no other bits, and acknowledges whatever they are.
constexpr unsigned pointerMask = 0x03;

/// A temperature register holds nine bits, left-justified.
Bytes nineBits(double temperature) {
    const auto halfDegrees = static_cast<unsigned>(static_cast<int>(std::floor(2 * temperature)));
    const auto bits = static_cast<uint16_t>(halfDegrees << 7U);
    return {highByte(bits), lowByte(bits)};
}

} // namespace

std::vector<Setting> I2cTemperatureSensor::settings() {
    return {
        Setting::decimal("temperature", -55, 125, "degrees Celsius", "25",
                         "where it sits; it measures in steps of 0.5, rounding down")
            .changing(),
    };
}

I2cTemperatureSensor::Registers I2cTemperatureSensor::initialRegisters() {
    return {{
        {nineBits(0), {0x00, 0x00}},  // temperature
        {{0x00}, {0x1F}},             // configuration
        {nineBits(75), {0xFF, 0x80}}, // hysteresis
        {nineBits(80), {0xFF, 0x80}}, // limit
    }};
}

I2cTemperatureSensor::I2cTemperatureSensor(double temperature) {
    measure(temperature);
}

void I2cTemperatureSensor::measure(double temperature) {
    registers[temperatureRegister].value = nineBits(temperature);
}

bool I2cTemperatureSensor::start(I2cDirection direction) {
    pointerExpected = direction == I2cDirection::Write;
    offset = 0;
    return true;
}

bool I2cTemperatureSensor::write(uint8_t byte) {
    if (pointerExpected) {
        pointer = byte & pointerMask;
        pointerExpected = false;
        return true;
    }
    Register& selected = registers.at(pointer);
    if (offset < selected.value.size()) {
        const unsigned writable = selected.writableBits[offset];
        selected.value[offset] =
            static_cast<uint8_t>((selected.value[offset] & ~writable) | (byte & writable));
        ++offset;
    }
    return true;
}

uint8_t I2cTemperatureSensor::read() {
    const Bytes& value = registers.at(pointer).value;
    return value[offset++ % value.size()];
}

void I2cTemperatureSensor::cyclePower() {
    const Bytes measured = registers[temperatureRegister].value;
    registers = initialRegisters();
    registers[temperatureRegister].value = measured;
    pointer = 0;
}

std::string I2cTemperatureSensor::set(const std::string& name, const std::string& value) {
    return changeSetting(settings(), name, value,
                         [this](const Setting& /*setting*/, const SettingValue& temperature) {
                             measure(std::get<double>(temperature));
                         });
}

} // namespace virtual_adapter
