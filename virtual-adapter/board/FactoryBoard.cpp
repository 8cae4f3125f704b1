// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/FactoryBoard.hpp"

#include <string_view>

namespace virtual_adapter {

namespace {

Bytes text(std::string_view characters) {
    return {characters.begin(), characters.end()};
}

SettingValues onI2c(uint64_t bus, uint64_t address) {
    return {{"bus", bus}, {"address", address}};
}

std::vector<Placement> i2cParts() {
    return {
        {Place::I2c, "lm75", onI2c(0, 0x48), {{"temperature", 25.0}}},
        {Place::I2c,
         "24c02",
         onI2c(0, 0x50),
         {{"contents", text("Hello from the virtual adapter!")}}},
        {Place::I2c, "24c256", onI2c(0, 0x51)},

        {Place::I2c, "lm75", onI2c(1, 0x48), {{"temperature", -10.5}}},
        {Place::I2c, "24c02", onI2c(1, 0x50), {{"contents", text("Hello from bus 1!")}}},
        {Place::I2c, "24c256", onI2c(1, 0x51), {{"contents", text("32 KiB on bus 1")}}},
        {Place::I2cTenBit, "ten-bit", onI2c(1, 0x1A2)},
    };
}

SettingValues onSpi(uint64_t chipSelect) {
    return {{"chip_select", chipSelect}};
}

std::vector<Placement> spiAndUartParts() {
    return {
        {Place::Spi, "nor-flash", onSpi(0), {{"image", text("Hello from the SPI flash!")}}},
        {Place::Spi, "loopback", onSpi(1)},
        {Place::Uart, "loopback", {}},
    };
}

SettingValues asLegacy(uint64_t address, const char* fastestRate) {
    return {{"address", address}, {"fastest_rate", std::string(fastestRate)}};
}

std::vector<Placement> i3cParts() {
    const std::string socket = "socket";
    return {
        {Place::I3c, "temperature-sensor", {}},
        {Place::I3c, "companion", {}, {{"switches", socket}}},
        {Place::I3c, "memory", {}},
        {Place::I3c, "accelerometer", {{"supply", socket}}},
        {Place::I3cLegacy, "lm75", asLegacy(0x4F, "400k"), {{"temperature", 20.0}}},
        {Place::I3cLegacy,
         "24c02",
         asLegacy(0x50, "1M"),
         {{"contents", text("Hello from the I3C bus!")}}},
    };
}

} // namespace

BoardDescription factoryDescription() {
    BoardDescription description;
    for (const std::vector<Placement>& parts : {i2cParts(), spiAndUartParts(), i3cParts()}) {
        description.parts.insert(description.parts.end(), parts.begin(), parts.end());
    }
    description.wires = {{GpioPinNumber_0, GpioPinNumber_1}, {GpioPinNumber_2, GpioPinNumber_3}};
    return description;
}

Board factoryBoard() {
    return buildBoard(factoryDescription());
}

} // namespace virtual_adapter
