// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;

using GpioTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(GpioTest);

TEST_P(GpioTest, SettingTheVoltageReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01});
    EXPECT_EQ(sdk().gpioSetVoltage(3300, true), 0);
    onCommand(0x1234, {0x1F, 0x00, 0x02, 0x00, 0x05, 0x04, 0xFF, 0xFF, 0x00});
    EXPECT_EQ(sdk().gpioSetVoltage(0xFFFF, false), 0x1234);
}

TEST_P(GpioTest, ConfiguringAPinReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x01, 0x14, 0x03, 0x01, 0x01});
    EXPECT_EQ(
        sdk().gpioConfigurePin(GpioPinNumber_3, GpioFunctionality_Output, GpioLogicLevel_High), 0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x01, 0x14, 0x03, 0x00});
    EXPECT_EQ(sdk().gpioConfigurePin(GpioPinNumber_3, GpioFunctionality_Input, GpioLogicLevel_High),
              0x1234);
}

TEST_P(GpioTest, WritingAPinReturnsTheStatus) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x02, 0x14, 0x05, 0x01});
    EXPECT_EQ(sdk().gpioDigitalWrite(GpioPinNumber_5, GpioLogicLevel_High), 0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x02, 0x14, 0x06, 0x00});
    EXPECT_EQ(sdk().gpioDigitalWrite(GpioPinNumber_6, GpioLogicLevel_Low), 0x1234);
}

TEST_P(GpioTest, ReadingAPinStoresResponseByteSix) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05},
           {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(GpioTest, ReadingAPinStoresTheLevelWhateverTheStatus) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05},
           {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x1234);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(GpioTest, ReadingAPinStoresALevelWithoutEnumeratorUnchanged) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05},
           {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0xFE});
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0);
    EXPECT_EQ(level, 0xFE);
}

TEST_P(GpioTest, ReadingAPinStoresTheLevelOrZeroWhereverTheResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x03, 0x14, 0x05}, {0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01},
                        [&](const Bytes& received) {
                            GpioLogicLevel level{0xEE};
                            EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x1234);
                            EXPECT_EQ(level, received[6]);
                        });
}

TEST_P(GpioTest, ConfiguringAnInterruptReturnsTheStatus) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x04, 0x14, 0x06, 0x02});
    EXPECT_EQ(sdk().gpioConfigureInterrupt(GpioPinNumber_6, GpioTriggerType_BothEdges), 0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x04, 0x14, 0x07, 0x01});
    EXPECT_EQ(sdk().gpioConfigureInterrupt(GpioPinNumber_7, GpioTriggerType_FallingEdge), 0x1234);
}

TEST_P(GpioTest, DisablingAnInterruptReturnsTheStatus) {
    onCommand(0, {0x17, 0x00, 0x01, 0x00, 0x05, 0x14, 0x06});
    EXPECT_EQ(sdk().gpioDisableInterrupt(GpioPinNumber_6), 0);
    onCommand(0x1234, {0x17, 0x00, 0x02, 0x00, 0x05, 0x14, 0x07});
    EXPECT_EQ(sdk().gpioDisableInterrupt(GpioPinNumber_7), 0x1234);
}

using GpioWithoutWaitingTest = test_support::ImpatientSdkTest;
INSTANTIATE_IN_BOTH_MODES(GpioWithoutWaitingTest);

TEST_P(GpioWithoutWaitingTest, ReadingAPinWithoutResponseLeavesTheLevel) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05});
    GpioLogicLevel level = GpioLogicLevel_High;
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x2000);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

} // namespace
