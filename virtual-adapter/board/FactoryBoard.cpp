// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/FactoryBoard.hpp"

#include "board/parts/I2cEeprom.hpp"
#include "board/parts/I2cTemperatureSensor.hpp"
#include "board/parts/I3cAccelerometer.hpp"
#include "board/parts/I3cCompanion.hpp"
#include "board/parts/I3cMemory.hpp"
#include "board/parts/I3cTemperatureSensor.hpp"
#include "board/parts/SpiFlash.hpp"
#include "board/parts/SpiLoopback.hpp"
#include "board/parts/UartLoopback.hpp"

#include <utility>

namespace virtual_adapter {

namespace {

std::unique_ptr<I2cEeprom> smallEeprom(const char* contents) {
    return std::make_unique<I2cEeprom>(I2cEeprom::geometry24C02, contents);
}

std::unique_ptr<I2cEeprom> largeEeprom(const char* contents) {
    return std::make_unique<I2cEeprom>(I2cEeprom::geometry24C256, contents);
}

std::unique_ptr<I2cTemperatureSensor> sensorAt(int halfDegrees) {
    return std::make_unique<I2cTemperatureSensor>(halfDegrees);
}

void equipI2c(Board& board) {
    I2cBus& first = board.i2c[0];
    first.attach(0x48, sensorAt(2 * 25));
    first.attach(0x50, smallEeprom("Hello from the virtual adapter!"));
    first.attach(0x51, largeEeprom(""));

    I2cBus& second = board.i2c[1];
    second.attach(0x48, sensorAt(-21));
    second.attach(0x50, smallEeprom("Hello from bus 1!"));
    second.attach(0x51, largeEeprom("32 KiB on bus 1"));
    second.attachTenBit(0x1A2);
}

void equipSpi(Board& board) {
    board.spi.attach(SpiChipSelect_0, std::make_unique<SpiFlash>());
    board.spi.attach(SpiChipSelect_1, std::make_unique<SpiLoopback>());
}

void equipI3c(Board& board) {
    PowerDomain& socket = board.powerDomains["socket"];
    auto module = std::make_unique<I3cAccelerometer>();
    socket.feed([&target = *module](bool supplied) { target.setSupply(supplied); });

    board.i3c.attach(std::make_unique<I3cTemperatureSensor>());
    board.i3c.attach(
        std::make_unique<I3cCompanion>([&socket](bool supplied) { socket.supply(supplied); }));
    board.i3c.attach(std::make_unique<I3cMemory>());
    board.i3c.attach(std::move(module));

    board.i3c.attachLegacy(0x4F, I2cTransferRate_0_4_MHz, sensorAt(2 * 20));
    board.i3c.attachLegacy(0x50, I2cTransferRate_1_MHz, smallEeprom("Hello from the I3C bus!"));
}

} // namespace

Board factoryBoard() {
    Board board;
    equipI2c(board);
    equipSpi(board);
    board.uart = std::make_unique<UartLoopback>();
    board.gpio.join(GpioPinNumber_0, GpioPinNumber_1);
    board.gpio.join(GpioPinNumber_2, GpioPinNumber_3);
    equipI3c(board);
    return board;
}

} // namespace virtual_adapter
