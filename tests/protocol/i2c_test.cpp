// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/AsyncSdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;

using I2cEncoderTest = test_support::AsyncSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(I2cEncoderTest);

TEST_P(I2cEncoderTest, TheSharedIoVoltageTravelsWithItsFlag) {
    EXPECT_EQ(sdk.setI2cSpiUartGpioVoltage(0x1234, 3300, true), 0);
    expectSent({0x1F, 0x00, 0x34, 0x12, 0x05, 0x04, 0xE4, 0x0C, 0x01});
}

TEST_P(I2cEncoderTest, TheBusVoltageIsTheSharedIoVoltage) {
    EXPECT_EQ(sdk.i2cSetBusVoltage(0x1234, 1800, false), 0);
    expectSent({0x1F, 0x00, 0x34, 0x12, 0x05, 0x04, 0x08, 0x07, 0x00});
}

TEST_P(I2cEncoderTest, InitialisingTravelsAsBusClockAndOption) {
    EXPECT_EQ(sdk.i2cControllerInit(0x1234, 1, 400'000, 2), 0);
    expectSent({0x2B, 0x00, 0x34, 0x12, 0x01, 0x09, 0x01, 0x80, 0x1A, 0x06, 0x00, 0x02});
}

TEST_P(I2cEncoderTest, SettingParametersDiffersFromInitialisingInTheCommandCodeOnly) {
    EXPECT_EQ(sdk.i2cSetParameters(0x1234, 1, 400'000, 2), 0);
    expectSent({0x2B, 0x00, 0x34, 0x12, 0x02, 0x09, 0x01, 0x80, 0x1A, 0x06, 0x00, 0x02});
}

TEST_P(I2cEncoderTest, TheWidestClockFillsFourBytesLittleEndian) {
    EXPECT_EQ(sdk.i2cControllerInit(0xFFFF, 0xFF, 0xFEDC'BA98, 0xFF), 0);
    expectSent({0x2B, 0x00, 0xFF, 0xFF, 0x01, 0x09, 0xFF, 0x98, 0xBA, 0xDC, 0xFE, 0xFF});
}

TEST_P(I2cEncoderTest, PullUpResistorsHaveAGroupOfTheirOwn) {
    EXPECT_EQ(sdk.i2cSetPullUpResistors(0x1234, 1, 3), 0);
    expectSent({0x1B, 0x00, 0x34, 0x12, 0x02, 0x08, 0x01, 0x03});
}

TEST_P(I2cEncoderTest, AScanTravelsAsBusAndFlag) {
    EXPECT_EQ(sdk.i2cScanBus(0x1234, 1, true), 0);
    expectSent({0x1B, 0x00, 0x34, 0x12, 0x06, 0x09, 0x01, 0x01});
}

TEST_P(I2cEncoderTest, AScanOfAnyBusIsEncoded) {
    EXPECT_EQ(sdk.i2cScanBus(0x1234, 2, false), 0);
    expectSent({0x1B, 0x00, 0x34, 0x12, 0x06, 0x09, 0x02, 0x00});
}

TEST_P(I2cEncoderTest, AWriteCarriesItsDataBehindTheRegisterAddress) {
    EXPECT_EQ(sdk.i2cWrite(0x1234, 1, 0x50, {0x12, 0x34}, {0xAA, 0xBB, 0xCC}, true), 0);
    expectSent({0x47, 0x00, 0x34, 0x12, 0x04, 0x09, 0x01, 0x03, 0x00, 0x50, 0x02, 0x34, 0x12, 0x00,
                0x00, 0x01, 0xAA, 0xBB, 0xCC});
}

TEST_P(I2cEncoderTest, AWriteWithoutRegisterAddressCarriesCountZeroAndValueZero) {
    EXPECT_EQ(sdk.i2cWrite(0x1234, 0, 0x50, {}, {0xAA}, false), 0);
    expectSent({0x3F, 0x00, 0x34, 0x12, 0x04, 0x09, 0x00, 0x01, 0x00, 0x50, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x00, 0xAA});
}

TEST_P(I2cEncoderTest, AWriteWithoutDataIsEncoded) {
    EXPECT_EQ(sdk.i2cWrite(0x1234, 0, 0x50, {0x07}, {}, false), 0);
    expectSent({0x3B, 0x00, 0x34, 0x12, 0x04, 0x09, 0x00, 0x00, 0x00, 0x50, 0x01, 0x07, 0x00, 0x00,
                0x00, 0x00});
}

TEST_P(I2cEncoderTest, AWriteOfFourKibibytesTakesSeveralReports) {
    const Bytes data = counting(4096);
    Bytes request{0x34, 0x12, 0x04, 0x09, 0x01, 0x00, 0x10,
                  0x50, 0x02, 0x34, 0x12, 0x00, 0x00, 0x00};
    request.insert(request.end(), data.begin(), data.end());
    EXPECT_EQ(sdk.i2cWrite(0x1234, 1, 0x50, {0x12, 0x34}, data, false), 0);
    expectSentLong(request);
}

TEST_P(I2cEncoderTest, TheCountOfAnOverlongWriteWrapsAndEveryByteIsSent) {
    const Bytes data = counting(0x1'0001);
    Bytes request{0x34, 0x12, 0x04, 0x09, 0x01, 0x01, 0x00,
                  0x50, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
    request.insert(request.end(), data.begin(), data.end());
    EXPECT_EQ(sdk.i2cWrite(0x1234, 1, 0x50, {}, data, false), 0);
    expectSentLong(request);
}

TEST_P(I2cEncoderTest, AReadCarriesItsLengthAndNoData) {
    EXPECT_EQ(sdk.i2cRead(0x1234, 1, 0x50, {0x12, 0x34}, 0x0201, true), 0);
    expectSent({0x3B, 0x00, 0x34, 0x12, 0x05, 0x09, 0x01, 0x01, 0x02, 0x50, 0x02, 0x34, 0x12, 0x00,
                0x00, 0x01});
}

TEST_P(I2cEncoderTest, AReadWithoutRegisterAddressCarriesCountZeroAndValueZero) {
    EXPECT_EQ(sdk.i2cRead(0x1234, 0, 0x48, {}, 2, false), 0);
    expectSent({0x3B, 0x00, 0x34, 0x12, 0x05, 0x09, 0x00, 0x02, 0x00, 0x48, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x00});
}

TEST_P(I2cEncoderTest, ARegisterAddressOfFourBytesTravelsLastByteFirst) {
    EXPECT_EQ(sdk.i2cRead(0x1234, 0, 0x50, {0x01, 0x02, 0x03, 0x04}, 1, false), 0);
    expectSent({0x3B, 0x00, 0x34, 0x12, 0x05, 0x09, 0x00, 0x01, 0x00, 0x50, 0x04, 0x04, 0x03, 0x02,
                0x01, 0x00});
}

TEST_P(I2cEncoderTest, AReadWithARegisterAddressOfFiveBytesIsRefused) {
    EXPECT_EQ(sdk.i2cRead(1, 0, 0x50, Bytes(5), 1, false), 0x8000);
    expectNothingSent();
}

TEST_P(I2cEncoderTest, AWriteWithARegisterAddressOfFiveBytesIsRefused) {
    EXPECT_EQ(sdk.i2cWrite(1, 0, 0x50, Bytes(5), {0xAA}, false), 0x8000);
    expectNothingSent();
}

TEST_P(I2cEncoderTest, NothingIsSentBeforeConnectingWhateverTheArguments) {
    VeltraAsyncSDK unconnected;
    EXPECT_EQ(unconnected.setI2cSpiUartGpioVoltage(1, 3300, true), 0x4000);
    EXPECT_EQ(unconnected.i2cSetBusVoltage(1, 3300, true), 0x4000);
    EXPECT_EQ(unconnected.i2cControllerInit(1, 0, 400'000, 0), 0x4000);
    EXPECT_EQ(unconnected.i2cSetParameters(1, 0, 400'000, 0), 0x4000);
    EXPECT_EQ(unconnected.i2cSetPullUpResistors(1, 0, 0), 0x4000);
    EXPECT_EQ(unconnected.i2cScanBus(1, 0, false), 0x4000);
    EXPECT_EQ(unconnected.i2cWrite(1, 0, 0x50, {}, {0xAA}, false), 0x4000);
    EXPECT_EQ(unconnected.i2cWrite(1, 0, 0x50, Bytes(5), {0xAA}, false), 0x4000);
    EXPECT_EQ(unconnected.i2cRead(1, 0, 0x50, {}, 1, false), 0x4000);
    EXPECT_EQ(unconnected.i2cRead(1, 0, 0x50, Bytes(5), 1, false), 0x4000);
    expectNothingSent();
}

} // namespace
