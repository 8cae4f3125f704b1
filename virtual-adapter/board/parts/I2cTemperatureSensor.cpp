// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I2cTemperatureSensor.hpp"

namespace virtual_adapter {

namespace {

/// A temperature register holds nine bits, left-justified.
Bytes temperatureRegister(int halfDegrees) {
    const auto bits = static_cast<uint16_t>(static_cast<unsigned>(halfDegrees) << 7U);
    return {static_cast<uint8_t>(bits >> 8U), static_cast<uint8_t>(bits & 0xFFU)};
}

} // namespace

I2cTemperatureSensor::I2cTemperatureSensor(int halfDegrees)
    : initialRegisters{{
          {temperatureRegister(halfDegrees), {0x00, 0x00}},
          {{0x00}, {0x1F}},                            // configuration
          {temperatureRegister(2 * 75), {0xFF, 0x80}}, // hysteresis
          {temperatureRegister(2 * 80), {0xFF, 0x80}}, // limit
      }} {}

bool I2cTemperatureSensor::start(I2cDirection direction) {
    pointerExpected = direction == I2cDirection::Write;
    offset = 0;
    return true;
}

bool I2cTemperatureSensor::write(uint8_t byte) {
    if (pointerExpected) {
        if (byte >= registers.size()) {
            return false;
        }
        pointer = byte;
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
    registers = initialRegisters;
    pointer = 0;
}

} // namespace virtual_adapter
