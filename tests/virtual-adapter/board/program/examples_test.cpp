// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/BoardFile.hpp"

#include "support/TemporaryDirectory.hpp"

#include <filesystem>

#include <gtest/gtest.h>

using virtual_adapter::Board;
using virtual_adapter::BoardFile;
using virtual_adapter::Bytes;
using virtual_adapter::I2cDirection;
using virtual_adapter::I2cTarget;

namespace {

namespace fs = std::filesystem;

/// The board of the example, with the sensor compiled beside it.
class ExampleBoard : public testing::Test {
protected:
    ExampleBoard() {
        fs::copy(EXAMPLE_PARTS, directory.path());
        fs::copy(PRESSURE_SENSOR, directory.path() / "pressure_sensor");
        board = BoardFile(directory.path() / "board.toml").build();
    }

    const TemporaryDirectory directory;
    Board board;
};

TEST_F(ExampleBoard, ThePressureSensorInCMeasuresWhatItIsSet) {
    I2cTarget& sensor = *board.i2c[1].targetAt(0x5C);
    ASSERT_TRUE(sensor.start(I2cDirection::Write));
    EXPECT_EQ(sensor.writeMessage({0x00}), 1U);
    ASSERT_TRUE(sensor.start(I2cDirection::Read));
    EXPECT_EQ(sensor.readMessage(1), Bytes{0x5A});
    sensor.stop();
    EXPECT_EQ(sensor.set("pressure", "998"), "");
    EXPECT_EQ(sensor.set("humidity", "1"), "there is no such setting; there is: pressure");
    ASSERT_TRUE(sensor.start(I2cDirection::Write));
    EXPECT_EQ(sensor.writeMessage({0x10, 0xFF}), 2U);
    ASSERT_TRUE(sensor.start(I2cDirection::Read));
    EXPECT_EQ(sensor.readMessage(3), (Bytes{0x03, 0xE6, 0x00}));
}

TEST_F(ExampleBoard, TheDisplayInPythonShowsWhatIsWritten) {
    I2cTarget& display = *board.i2c[1].targetAt(0x3C);
    ASSERT_TRUE(display.start(I2cDirection::Write));
    EXPECT_EQ(display.writeMessage({0x02, 30}), 2U);
    display.stop();
    ASSERT_TRUE(display.start(I2cDirection::Write));
    EXPECT_EQ(display.writeMessage({0x03, 'H', 'i', '!'}), 4U);
    display.stop();
    ASSERT_TRUE(display.start(I2cDirection::Write));
    EXPECT_EQ(display.writeMessage({0x77}), 0U);
    display.stop();
    ASSERT_TRUE(display.start(I2cDirection::Read));
    Bytes shown(30, ' ');
    shown.insert(shown.end(), {'H', 'i', 0xFF});
    EXPECT_EQ(display.readMessage(33), shown);
    EXPECT_EQ(display.set("text", "x"), "this display has no settings");
}

TEST_F(ExampleBoard, TheRegistersHoldTheIdentification) {
    I2cTarget& part = *board.i2c[0].targetAt(0x76);
    part.start(I2cDirection::Write);
    part.writeMessage({0xD0});
    EXPECT_EQ(part.readMessage(1), Bytes{0x60});
}

} // namespace
