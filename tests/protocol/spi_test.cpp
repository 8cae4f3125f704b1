// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/AsyncSdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;

using SpiEncoderTest = test_support::AsyncSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(SpiEncoderTest);

TEST_P(SpiEncoderTest, TheBusVoltageIsTheSharedIoVoltage) {
    EXPECT_EQ(sdk.spiSetBusVoltage(0x1234, 1800, true), 0);
    expectSent({0x1F, 0x00, 0x34, 0x12, 0x05, 0x04, 0x08, 0x07, 0x01});
}

TEST_P(SpiEncoderTest, InitialisingTravelsAsFiveEnumerationsAndTheClock) {
    EXPECT_EQ(sdk.spiControllerInit(0x1234, SpiBitOrder_LsbFirst, SpiMode_3, SpiDataWidth_16Bits,
                                    SpiChipSelect_2, SpiChipSelectPolarity_ActiveHigh, 1'000'000),
              0);
    expectSent(
        {0x37, 0x00, 0x34, 0x12, 0x01, 0x0D, 0x01, 0x03, 0x10, 0x02, 0x01, 0x40, 0x42, 0x0F, 0x00});
}

TEST_P(SpiEncoderTest, SettingParametersDiffersFromInitialisingInTheCommandCodeOnly) {
    EXPECT_EQ(sdk.spiSetParameters(0x1234, SpiBitOrder_LsbFirst, SpiMode_3, SpiDataWidth_16Bits,
                                   SpiChipSelect_2, SpiChipSelectPolarity_ActiveHigh, 1'000'000),
              0);
    expectSent(
        {0x37, 0x00, 0x34, 0x12, 0x02, 0x0D, 0x01, 0x03, 0x10, 0x02, 0x01, 0x40, 0x42, 0x0F, 0x00});
}

TEST_P(SpiEncoderTest, ValuesWithoutAnEnumeratorTravelUnchanged) {
    EXPECT_EQ(sdk.spiControllerInit(0xFFFF, SpiBitOrder{0xF1}, SpiMode{0xF2}, SpiDataWidth{0xF3},
                                    SpiChipSelect{0xF4}, SpiChipSelectPolarity{0xF5}, 0xFEDC'BA98),
              0);
    expectSent(
        {0x37, 0x00, 0xFF, 0xFF, 0x01, 0x0D, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0x98, 0xBA, 0xDC, 0xFE});
}

TEST_P(SpiEncoderTest, ATransferCarriesTheBytesToSendBehindTheTwoLengths) {
    Bytes send{0x9F, 0xAA, 0xBB};
    EXPECT_EQ(sdk.spiTransfer(0x1234, send, 3), 0);
    expectSent({0x2F, 0x00, 0x34, 0x12, 0x04, 0x0D, 0x03, 0x00, 0x03, 0x00, 0x9F, 0xAA, 0xBB});
}

TEST_P(SpiEncoderTest, TheRequestedLengthMayDifferFromTheNumberOfBytesToSend) {
    Bytes send{0x9F};
    EXPECT_EQ(sdk.spiTransfer(0x1234, send, 0x0201), 0);
    expectSent({0x27, 0x00, 0x34, 0x12, 0x04, 0x0D, 0x01, 0x00, 0x01, 0x02, 0x9F});
}

TEST_P(SpiEncoderTest, ATransferWithNothingToSendIsEncoded) {
    Bytes send;
    EXPECT_EQ(sdk.spiTransfer(0x1234, send, 5), 0);
    expectSent({0x23, 0x00, 0x34, 0x12, 0x04, 0x0D, 0x00, 0x00, 0x05, 0x00});
}

TEST_P(SpiEncoderTest, ATransferOfFourKibibytesTakesSeveralReports) {
    Bytes send = counting(4096);
    Bytes request{0x34, 0x12, 0x04, 0x0D, 0x00, 0x10, 0x00, 0x10};
    request.insert(request.end(), send.begin(), send.end());
    EXPECT_EQ(sdk.spiTransfer(0x1234, send, 4096), 0);
    expectSentLong(request);
}

TEST_P(SpiEncoderTest, TheCountOfAnOverlongTransferWrapsAndEveryByteIsSent) {
    Bytes send = counting(0x1'0001);
    Bytes request{0x34, 0x12, 0x04, 0x0D, 0x01, 0x00, 0x00, 0x00};
    request.insert(request.end(), send.begin(), send.end());
    EXPECT_EQ(sdk.spiTransfer(0x1234, send, 0), 0);
    expectSentLong(request);
}

TEST_P(SpiEncoderTest, NothingIsSentBeforeConnecting) {
    VeltraAsyncSDK unconnected;
    Bytes send{0x9F};
    EXPECT_EQ(unconnected.spiSetBusVoltage(1, 3300, true), 0x4000);
    EXPECT_EQ(unconnected.spiControllerInit(1, SpiBitOrder_MsbFirst, SpiMode_0, SpiDataWidth_8Bits,
                                            SpiChipSelect_0, SpiChipSelectPolarity_ActiveLow,
                                            1'000'000),
              0x4000);
    EXPECT_EQ(unconnected.spiSetParameters(1, SpiBitOrder_MsbFirst, SpiMode_0, SpiDataWidth_8Bits,
                                           SpiChipSelect_0, SpiChipSelectPolarity_ActiveLow,
                                           1'000'000),
              0x4000);
    EXPECT_EQ(unconnected.spiTransfer(1, send, 1), 0x4000);
    expectNothingSent();
}

} // namespace
