// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/AsyncSdkTest.hpp"

namespace {

using GpioEncoderTest = test_support::AsyncSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(GpioEncoderTest);

TEST_P(GpioEncoderTest, TheVoltageIsTheSharedIoVoltage) {
    EXPECT_EQ(sdk.gpioSetVoltage(0x1234, 1800, true), 0);
    expectSent({0x1F, 0x00, 0x34, 0x12, 0x05, 0x04, 0x08, 0x07, 0x01});
}

TEST_P(GpioEncoderTest, AnOutputIsConfiguredWithItsLevel) {
    EXPECT_EQ(sdk.gpioConfigurePin(0x1234, GpioPinNumber_3, GpioFunctionality_Output,
                                   GpioLogicLevel_High),
              0);
    expectSent({0x1F, 0x00, 0x34, 0x12, 0x01, 0x14, 0x03, 0x01, 0x01});
}

TEST_P(GpioEncoderTest, AnInputIsConfiguredWithoutLevelWhateverTheLevel) {
    EXPECT_EQ(
        sdk.gpioConfigurePin(0x1234, GpioPinNumber_3, GpioFunctionality_Input, GpioLogicLevel_High),
        0);
    expectSent({0x1B, 0x00, 0x34, 0x12, 0x01, 0x14, 0x03, 0x00});
}

TEST_P(GpioEncoderTest, AnOpenDrainOutputIsConfiguredWithoutLevelWhateverTheLevel) {
    EXPECT_EQ(sdk.gpioConfigurePin(0x1234, GpioPinNumber_3, GpioFunctionality_OpenDrainOutput,
                                   GpioLogicLevel_High),
              0);
    expectSent({0x1B, 0x00, 0x34, 0x12, 0x01, 0x14, 0x03, 0x04});
}

TEST_P(GpioEncoderTest, AWriteTravelsAsPinAndLevel) {
    EXPECT_EQ(sdk.gpioDigitalWrite(0x1234, GpioPinNumber_5, GpioLogicLevel_High), 0);
    expectSent({0x1B, 0x00, 0x34, 0x12, 0x02, 0x14, 0x05, 0x01});
}

TEST_P(GpioEncoderTest, AReadTravelsAsPin) {
    EXPECT_EQ(sdk.gpioDigitalRead(0x1234, GpioPinNumber_5), 0);
    expectSent({0x17, 0x00, 0x34, 0x12, 0x03, 0x14, 0x05});
}

TEST_P(GpioEncoderTest, AnInterruptIsConfiguredWithItsTrigger) {
    EXPECT_EQ(sdk.gpioConfigureInterrupt(0x1234, GpioPinNumber_6, GpioTriggerType_BothEdges), 0);
    expectSent({0x1B, 0x00, 0x34, 0x12, 0x04, 0x14, 0x06, 0x02});
}

TEST_P(GpioEncoderTest, AnInterruptIsDisabledByItsPin) {
    EXPECT_EQ(sdk.gpioDisableInterrupt(0x1234, GpioPinNumber_6), 0);
    expectSent({0x17, 0x00, 0x34, 0x12, 0x05, 0x14, 0x06});
}

TEST_P(GpioEncoderTest, ValuesWithoutAnEnumeratorTravelUnchanged) {
    EXPECT_EQ(sdk.gpioConfigureInterrupt(0xFFFF, GpioPinNumber{0xF1}, GpioTriggerType{0xF2}), 0);
    expectSent({0x1B, 0x00, 0xFF, 0xFF, 0x04, 0x14, 0xF1, 0xF2});
}

TEST_P(GpioEncoderTest, NothingIsSentBeforeConnecting) {
    VeltraAsyncSDK unconnected;
    EXPECT_EQ(unconnected.gpioSetVoltage(1, 3300, true), 0x4000);
    EXPECT_EQ(unconnected.gpioConfigurePin(1, GpioPinNumber_0, GpioFunctionality_Output,
                                           GpioLogicLevel_High),
              0x4000);
    EXPECT_EQ(unconnected.gpioDigitalWrite(1, GpioPinNumber_0, GpioLogicLevel_High), 0x4000);
    EXPECT_EQ(unconnected.gpioDigitalRead(1, GpioPinNumber_0), 0x4000);
    EXPECT_EQ(unconnected.gpioConfigureInterrupt(1, GpioPinNumber_0, GpioTriggerType_RisingEdge),
              0x4000);
    EXPECT_EQ(unconnected.gpioDisableInterrupt(1, GpioPinNumber_0), 0x4000);
    expectNothingSent();
}

} // namespace
