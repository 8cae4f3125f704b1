// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/FactoryBoard.hpp"

#include "virtual-adapter/model/i2c/I2cModel.hpp"
#include "virtual-adapter/requests.hpp"

using virtual_adapter::Frame;
using virtual_adapter::i2cData;
using virtual_adapter::i2cRead;
using virtual_adapter::spiData;
using virtual_adapter::spiTransfer;

namespace {

/// The I2C and I3C tests of the model find the rest of what the factory puts on the board.
using FactoryBoard = virtual_adapter::I2cModel;

TEST_F(FactoryBoard, TheEepromsGreetTheirReaders) {
    EXPECT_EQ(response(i2cRead(0, 0x50, {23}, 9)),
              i2cData(0, {'a', 'd', 'a', 'p', 't', 'e', 'r', '!', 0xFF}));
    EXPECT_EQ(response(i2cRead(0, 0x51, {0, 0}, 1)), i2cData(0, {0xFF}));
    EXPECT_EQ(response(i2cRead(1, 0x50, {12}, 7)),
              i2cData(1, {'u', 's', ' ', '1', '!', 0xFF, 0xFF}));
    EXPECT_EQ(response(i2cRead(1, 0x51, {0, 11}, 6)), i2cData(1, {'u', 's', ' ', '1', 0xFF, 0xFF}));
}

TEST_F(FactoryBoard, TheTemperatureSensorsSitAt25AndAtMinus10AndAHalfDegrees) {
    EXPECT_EQ(response(i2cRead(0, 0x48, {0}, 2)), i2cData(0, {0x19, 0x00}));
    EXPECT_EQ(response(i2cRead(1, 0x48, {0}, 2)), i2cData(1, {0xF5, 0x80}));
}

TEST_F(FactoryBoard, TheFlashIsOnChipSelect0AndTheLoopbackOnChipSelect1) {
    status({0x01, 0x00, 0x01, 0x0D, 0, 0, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00});
    EXPECT_EQ(response(spiTransfer({0x9F}, 4)), spiData({0xFF, 0x56, 0x41, 0x12}));
    status({0x01, 0x00, 0x02, 0x0D, 0, 0, 8, 1, 0, 0x40, 0x42, 0x0F, 0x00});
    EXPECT_EQ(response(spiTransfer({0x9F}, 2)), spiData({0x9F, 0xFF}));
}

TEST_F(FactoryBoard, TheUartIsALoop) {
    status({0x01, 0x00, 0x02, 0x10, 7, 0, 0, 8, 1});
    EXPECT_EQ(frames({0x01, 0x00, 0x05, 0x10, 1, 0, 'A'}).size(), 2U);
}

} // namespace
