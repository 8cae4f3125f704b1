// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::noResponse;
using test_support::notConnected;
using test_support::OwnedHandle;

using GpioFunctionTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(GpioFunctionTest);
using GpioFunctionWithoutWaitingTest = test_support::ImpatientSdkTest;
INSTANTIATE_IN_BOTH_MODES(GpioFunctionWithoutWaitingTest);

TEST_P(GpioFunctionTest, SettingTheVoltageReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01});
    EXPECT_EQ(VeltraSDK_GpioSetVoltage(handle(), 3300, true), 0);
    onCommand(0x1234, {0x1F, 0x00, 0x02, 0x00, 0x05, 0x04, 0xFF, 0xFF, 0x00});
    EXPECT_EQ(VeltraSDK_GpioSetVoltage(handle(), 0xFFFF, false), 0x1234);
}

TEST_P(GpioFunctionTest, ConfiguringAPinReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x01, 0x14, 0x03, 0x01, 0x01});
    EXPECT_EQ(VeltraSDK_GpioConfigurePin(handle(), GpioPinNumber_3, GpioFunctionality_Output, true,
                                         GpioLogicLevel_High),
              0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x01, 0x14, 0x03, 0x00});
    EXPECT_EQ(VeltraSDK_GpioConfigurePin(handle(), GpioPinNumber_3, GpioFunctionality_Input, true,
                                         GpioLogicLevel_High),
              0x1234);
}

TEST_P(GpioFunctionTest, AnOutputWhoseLevelIsNotGivenStartsLow) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x01, 0x14, 0x03, 0x01, 0x00});
    EXPECT_EQ(VeltraSDK_GpioConfigurePin(handle(), GpioPinNumber_3, GpioFunctionality_Output, false,
                                         GpioLogicLevel_High),
              0);
}

TEST_P(GpioFunctionTest, WritingAPinReturnsTheStatus) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x02, 0x14, 0x05, 0x01});
    EXPECT_EQ(VeltraSDK_GpioDigitalWrite(handle(), GpioPinNumber_5, GpioLogicLevel_High), 0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x02, 0x14, 0x06, 0x00});
    EXPECT_EQ(VeltraSDK_GpioDigitalWrite(handle(), GpioPinNumber_6, GpioLogicLevel_Low), 0x1234);
}

TEST_P(GpioFunctionTest, ReadingAPinStoresResponseByteSix) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05},
           {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(VeltraSDK_GpioDigitalRead(handle(), GpioPinNumber_5, &level), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(GpioFunctionTest, ReadingAPinStoresTheLevelWhateverTheStatus) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05},
           {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0xFE, 0xFF, 0x01});
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(VeltraSDK_GpioDigitalRead(handle(), GpioPinNumber_5, &level), -2);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(GpioFunctionTest, ReadingAPinStoresTheLevelOrZeroWhereverTheResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x03, 0x14, 0x05}, {0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01},
                        [&](const Bytes& received) {
                            GpioLogicLevel level{0xEE};
                            EXPECT_EQ(VeltraSDK_GpioDigitalRead(handle(), GpioPinNumber_5, &level),
                                      0x1234);
                            EXPECT_EQ(level, received[6]);
                        });
}

TEST_P(GpioFunctionWithoutWaitingTest, ReadingAPinWithoutAResponseLeavesTheLevel) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05});
    GpioLogicLevel level{0xEE};
    EXPECT_EQ(VeltraSDK_GpioDigitalRead(handle(), GpioPinNumber_5, &level), noResponse);
    EXPECT_EQ(level, 0xEE);
}

TEST_P(GpioFunctionTest, ConfiguringAnInterruptReturnsTheStatus) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x04, 0x14, 0x06, 0x02});
    EXPECT_EQ(
        VeltraSDK_GpioConfigureInterrupt(handle(), GpioPinNumber_6, GpioTriggerType_BothEdges), 0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x04, 0x14, 0x07, 0x01});
    EXPECT_EQ(
        VeltraSDK_GpioConfigureInterrupt(handle(), GpioPinNumber_7, GpioTriggerType_FallingEdge),
        0x1234);
}

TEST_P(GpioFunctionTest, DisablingAnInterruptReturnsTheStatus) {
    onCommand(0, {0x17, 0x00, 0x01, 0x00, 0x05, 0x14, 0x06});
    EXPECT_EQ(VeltraSDK_GpioDisableInterrupt(handle(), GpioPinNumber_6), 0);
    onCommand(0x1234, {0x17, 0x00, 0x02, 0x00, 0x05, 0x14, 0x07});
    EXPECT_EQ(VeltraSDK_GpioDisableInterrupt(handle(), GpioPinNumber_7), 0x1234);
}

TEST_P(GpioFunctionTest, ANullHandleIsNotConnected) {
    GpioLogicLevel level = GpioLogicLevel_High;
    EXPECT_EQ(VeltraSDK_GpioSetVoltage(nullptr, 3300, true), notConnected);
    EXPECT_EQ(VeltraSDK_GpioConfigurePin(nullptr, GpioPinNumber_0, GpioFunctionality_Output, true,
                                         GpioLogicLevel_High),
              notConnected);
    EXPECT_EQ(VeltraSDK_GpioDigitalWrite(nullptr, GpioPinNumber_0, GpioLogicLevel_High),
              notConnected);
    EXPECT_EQ(VeltraSDK_GpioDigitalRead(nullptr, GpioPinNumber_0, &level), notConnected);
    EXPECT_EQ(VeltraSDK_GpioDigitalRead(nullptr, GpioPinNumber_0, nullptr), notConnected);
    EXPECT_EQ(
        VeltraSDK_GpioConfigureInterrupt(nullptr, GpioPinNumber_0, GpioTriggerType_RisingEdge),
        notConnected);
    EXPECT_EQ(VeltraSDK_GpioDisableInterrupt(nullptr, GpioPinNumber_0), notConnected);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(GpioFunctionTest, NothingIsSentBeforeConnecting) {
    const OwnedHandle unconnected(VeltraSDK_Create(0));
    GpioLogicLevel level = GpioLogicLevel_High;
    EXPECT_EQ(VeltraSDK_GpioDigitalRead(unconnected.get(), GpioPinNumber_0, &level), notConnected);
    EXPECT_EQ(level, GpioLogicLevel_High);
    expectNothingSent();
}

} // namespace
