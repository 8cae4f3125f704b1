// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I2cTemperatureSensor.hpp"

#include "virtual-adapter/model/i2c/I2cModel.hpp"
#include "virtual-adapter/requests.hpp"

using virtual_adapter::Board;
using virtual_adapter::i2cData;
using virtual_adapter::i2cRead;
using virtual_adapter::I2cTemperatureSensor;
using virtual_adapter::i2cWrite;

namespace {

/// A sensor at 25 degrees Celsius on the first bus, one at -10.5 on the second.
Board sensors() {
    Board board;
    board.i2c[0].attach(0x48, std::make_unique<I2cTemperatureSensor>(25));
    board.i2c[1].attach(0x48, std::make_unique<I2cTemperatureSensor>(-10.5));
    return board;
}

class I2cTemperatureSensorPart : public virtual_adapter::I2cModel {
protected:
    I2cTemperatureSensorPart() : I2cModel(sensors()) {}
};

TEST_F(I2cTemperatureSensorPart, TheSensorsSitAtTheirTemperatures) {
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x00}, 2)), i2cData(0, {0x19, 0x00}));
    EXPECT_EQ(response(i2cRead(1, 0x48, {0x00}, 2)), i2cData(1, {0xF5, 0x80}));
}

TEST_F(I2cTemperatureSensorPart, TheSensorsOtherRegistersHoldTheirDefaults) {
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x01}, 1)), i2cData(0, {0x00}));
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x02}, 2)), i2cData(0, {0x4B, 0x00}));
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x03}, 2)), i2cData(0, {0x50, 0x00}));
}

TEST_F(I2cTemperatureSensorPart, WritesToTheSensorChangeTheWritableBitsOnly) {
    // Temperature, configuration, hysteresis.
    status(i2cWrite(0, 0x48, {0x00}, {0x12, 0x34}));
    status(i2cWrite(0, 0x48, {0x01}, {0xFF}));
    status(i2cWrite(0, 0x48, {0x02}, {0x12, 0xFF}));
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x00}, 2)), i2cData(0, {0x19, 0x00}));
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x01}, 1)), i2cData(0, {0x1F}));
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x02}, 2)), i2cData(0, {0x12, 0x80}));
}

TEST_F(I2cTemperatureSensorPart, ALongReadRepeatsTheSensorsRegisterAndALongWriteIsCutToIt) {
    EXPECT_EQ(status(i2cWrite(0, 0x48, {3}, {1, 0x80, 9})), 0x0000U);
    EXPECT_EQ(response(i2cRead(0, 0x48, {}, 5)), i2cData(0, {0x01, 0x80, 0x01, 0x80, 0x01}));
}

TEST(I2cTemperatureSensorSetting, ItMeasuresInStepsOfHalfADegreeAndKeepsThatThroughALossOfPower) {
    I2cTemperatureSensor sensor(25);
    for (const auto& [temperature, measured] :
         {std::pair<const char*, virtual_adapter::Bytes>{"85.9", {0x55, 0x80}},
          {"-0.1", {0xFF, 0x80}},
          {"-55", {0xC9, 0x00}}}) {
        EXPECT_EQ(sensor.set("temperature", temperature), "");
        sensor.cyclePower();
        sensor.start(virtual_adapter::I2cDirection::Read);
        EXPECT_EQ(sensor.readMessage(2), measured) << temperature;
    }
}

TEST_F(I2cTemperatureSensorPart, OfThePointerTheTwoLowestBitsCountAlone) {
    EXPECT_EQ(status(i2cWrite(0, 0x48, {0x05}, {0x12})), 0x0000U);
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x01}, 1)), i2cData(0, {0x12}));
    EXPECT_EQ(response(i2cRead(0, 0x48, {0x04}, 2)), i2cData(0, {0x19, 0x00}));
    EXPECT_EQ(response(i2cRead(0, 0x48, {0xFE}, 2)), i2cData(0, {0x4B, 0x00}));
}

} // namespace
