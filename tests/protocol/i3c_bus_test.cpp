// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/AsyncSdkTest.hpp"
#include "support/I3cTargets.hpp"

namespace {

using test_support::Bytes;
using test_support::recordBytes;
using test_support::sensor;
using test_support::sensors;

using I3cBusEncoderTest = test_support::AsyncSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(I3cBusEncoderTest);

TEST_P(I3cBusEncoderTest, TheVoltageIsSentInSixBytesWithoutAnEnableByte) {
    EXPECT_EQ(sdk.i3cSetBusVoltage(0x0201, 3300), 0);
    expectSent({0x1B, 0x00, 0x01, 0x02, 0x04, 0x04, 0xE4, 0x0C});
}

TEST_P(I3cBusEncoderTest, InitialisingTheControllerSendsTheFourParametersInOrder) {
    EXPECT_EQ(sdk.i3cControllerInit(1, 0x11, 0x22, 0x33, 0x44), 0);
    expectSent({0x23, 0x00, 0x01, 0x00, 0x01, 0x19, 0x11, 0x22, 0x33, 0x44});
}

TEST_P(I3cBusEncoderTest, SettingParametersDiffersFromInitialisingInTheCommandCodeOnly) {
    EXPECT_EQ(sdk.i3cSetParameters(1, 0x11, 0x22, 0x33, 0x44), 0);
    expectSent({0x23, 0x00, 0x01, 0x00, 0x02, 0x19, 0x11, 0x22, 0x33, 0x44});
}

TEST_P(I3cBusEncoderTest, AnEmptyListSendsFiveBytesThatEndInACountOfZero) {
    EXPECT_EQ(sdk.i3cInitBus(1, {}), 0);
    expectSent({0x17, 0x00, 0x01, 0x00, 0x04, 0x19, 0x00});
}

TEST_P(I3cBusEncoderTest, ARecordIsSentFieldByFieldInOrder) {
    EXPECT_EQ(sdk.i3cInitBus(1, {sensor}), 0);
    expectSent({0x57, 0x00, 0x01, 0x00, 0x04, 0x19, 0x01,             //
                0x48, 0x0A, 0x02, 0x46, 0x13, 0x57, 0x9B, 0xDF, 0x27, //
                0x63, 0x00, 0x01, 0x80, 0x02, 0x10, 0x01});
    EXPECT_EQ(recordBytes({sensor}), (Bytes{0x48, 0x0A, 0x02, 0x46, 0x13, 0x57, 0x9B, 0xDF, 0x27,
                                            0x63, 0x00, 0x01, 0x80, 0x02, 0x10, 0x01}));
}

TEST_P(I3cBusEncoderTest, TheLongestListHas255Records) {
    const std::vector<I3cTargetInfo> list = sensors(255);
    EXPECT_EQ(sdk.i3cInitBus(1, list), 0);
    Bytes message{0x01, 0x00, 0x04, 0x19, 0xFF};
    const Bytes records = recordBytes(list);
    message.insert(message.end(), records.begin(), records.end());
    expectSentLong(message);
}

TEST_P(I3cBusEncoderTest, AListOf256RecordsIsSentAsAnEmptyOne) {
    EXPECT_EQ(sdk.i3cInitBus(1, sensors(256)), 0);
    expectSent({0x17, 0x00, 0x01, 0x00, 0x04, 0x19, 0x00});
}

TEST_P(I3cBusEncoderTest, ResettingTheBusSendsTheBareCommand) {
    EXPECT_EQ(sdk.i3cResetBus(1), 0);
    expectSent({0x13, 0x00, 0x01, 0x00, 0x05, 0x19});
}

TEST_P(I3cBusEncoderTest, ReadingTheDeviceTableSendsTheBareCommand) {
    EXPECT_EQ(sdk.i3cGetDeviceTable(1), 0);
    expectSent({0x13, 0x00, 0x01, 0x00, 0x06, 0x19});
}

TEST_P(I3cBusEncoderTest, ConfiguringATargetSendsItsAddressAndTheConfiguration) {
    EXPECT_EQ(sdk.i3cSetTargetDeviceConfiguration(1, 0x0A, I3cTargetConfiguration_LegacyI2c), 0);
    expectSent({0x1B, 0x00, 0x01, 0x00, 0x07, 0x19, 0x0A, 0x02});
}

TEST_P(I3cBusEncoderTest, NothingIsSentWithoutALink) {
    sdk.disconnect();
    EXPECT_EQ(sdk.i3cSetBusVoltage(1, 3300), 0x4000);
    EXPECT_EQ(sdk.i3cControllerInit(1, 0, 0, 0, 0), 0x4000);
    EXPECT_EQ(sdk.i3cSetParameters(1, 0, 0, 0, 0), 0x4000);
    EXPECT_EQ(sdk.i3cInitBus(1, {sensor}), 0x4000);
    EXPECT_EQ(sdk.i3cInitBus(1, sensors(256)), 0x4000);
    EXPECT_EQ(sdk.i3cResetBus(1), 0x4000);
    EXPECT_EQ(sdk.i3cGetDeviceTable(1), 0x4000);
    EXPECT_EQ(sdk.i3cSetTargetDeviceConfiguration(1, 0, I3cTargetConfiguration_AcceptIbi), 0x4000);
    expectNothingSent();
}

} // namespace
