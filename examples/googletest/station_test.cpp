// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Tests of the driver, on a virtual adapter: veltraTell is the hand at the board.
#include "Station.hpp"

#include <veltra-virtual-adapter/tell.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

class StationTest : public testing::Test {
protected:
    /// Disconnecting takes up to 0.1 s: one connection serves all tests.
    static void SetUpTestSuite() {
        sdk = std::make_unique<VeltraSDK>(1000);
        sdk->setStrict(true);
        station = std::make_unique<Station>(*sdk);
        ASSERT_TRUE(sdk->connect(""));
    }
    static void TearDownTestSuite() {
        station.reset();
        sdk.reset();
    }

    /// What a test leaves behind is gone: adapter and board are as after switching them on.
    void SetUp() override {
        ASSERT_STREQ(veltraTell("reset"), nullptr);
        ASSERT_TRUE(station->start());
    }

    static std::unique_ptr<VeltraSDK> sdk;
    static std::unique_ptr<Station> station;
};

std::unique_ptr<VeltraSDK> StationTest::sdk;
std::unique_ptr<Station> StationTest::station;

TEST_F(StationTest, TheTemperatureIsThatOfTheBoardAndRisesWithIt) {
    EXPECT_EQ(station->temperature(), 21.5);
    ASSERT_STREQ(veltraTell("i2c 0 0x48 set temperature 85.5"), nullptr);
    EXPECT_EQ(station->temperature(), 85.5);
}

TEST_F(StationTest, TheNextTestFindsTheBoardAsItIsDescribed) {
    EXPECT_EQ(station->temperature(), 21.5);
}

TEST_F(StationTest, TheHygrometerIsRead) {
    EXPECT_EQ(station->humidity(), 55U);
}

TEST_F(StationTest, ThePressureSensorMeasures) {
    EXPECT_EQ(station->pressure(), 1013U);
    ASSERT_STREQ(veltraTell("i2c 1 0x5C set pressure 998"), nullptr);
    EXPECT_EQ(station->pressure(), 998U);
}

TEST_F(StationTest, TheDisplayShowsWhatIsWritten) {
    ASSERT_TRUE(station->show("21.5 C, 1013 hPa"));
    Station::Bytes shown;
    ASSERT_EQ(sdk->i2cRead(1, 0x3C, {}, 32, shown, false), ResultCode_Success);
    EXPECT_EQ(std::string(shown.begin(), shown.end()), "21.5 C, 1013 hPa                ");
}

TEST_F(StationTest, ThePressedButtonIsNoticed) {
    ASSERT_STREQ(veltraTell("gpio drive 4 1"), nullptr);
    EXPECT_TRUE(station->waitForButton());
}

TEST_F(StationTest, TheAlarmBringsItsValue) {
    ASSERT_STREQ(veltraTell("i3c fffe00301000 interrupt 421980"), nullptr);
    EXPECT_EQ(station->waitForAlarm(), (Station::Bytes{0x42, 0x19, 0x80}));
}

TEST_F(StationTest, ALostResponseIsAskedForAgain) {
    ASSERT_STREQ(veltraTell("fault lost-response@i2c-read:2"), nullptr);
    EXPECT_EQ(station->temperature(), 21.5);
    EXPECT_EQ(station->humidity(), 55U);
    EXPECT_EQ(station->pressure(), 1013U);
}

TEST_F(StationTest, ASensorThatDoesNotAnswerHasNoValue) {
    ASSERT_STREQ(veltraTell("i2c 0 0x48 nack address"), nullptr);
    EXPECT_EQ(station->temperature(), std::nullopt);
    EXPECT_EQ(station->temperature(), 21.5);
}

TEST_F(StationTest, WhatCannotHappenIsTold) {
    EXPECT_STREQ(veltraTell("i2c 0 0x48 set humidity 5"),
                 "there is no setting 'humidity' that changes; there is: temperature");
}

} // namespace
