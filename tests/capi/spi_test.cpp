// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;
using test_support::noResponse;
using test_support::notConnected;
using test_support::OwnedHandle;

using SpiFunctionTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(SpiFunctionTest);
using SpiFunctionWithoutWaitingTest = test_support::ImpatientSdkTest;
INSTANTIATE_IN_BOTH_MODES(SpiFunctionWithoutWaitingTest);

TEST_P(SpiFunctionTest, SettingTheBusVoltageReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01});
    EXPECT_EQ(VeltraSDK_SpiSetBusVoltage(handle(), 3300, true), 0);
    onCommand(0x1234, {0x1F, 0x00, 0x02, 0x00, 0x05, 0x04, 0xFF, 0xFF, 0x00});
    EXPECT_EQ(VeltraSDK_SpiSetBusVoltage(handle(), 0xFFFF, false), 0x1234);
}

TEST_P(SpiFunctionTest, InitialisingTheControllerReturnsTheStatus) {
    onCommand(0, {0x37, 0x00, 0x01, 0x00, 0x01, 0x0D, 0x01, 0x03, 0x10, 0x02, 0x01, 0x40, 0x42,
                  0x0F, 0x00});
    EXPECT_EQ(VeltraSDK_SpiControllerInit(handle(), SpiBitOrder_LsbFirst, SpiMode_3,
                                          SpiDataWidth_16Bits, SpiChipSelect_2,
                                          SpiChipSelectPolarity_ActiveHigh, 1'000'000),
              0);
    onCommand(0x1234, {0x37, 0x00, 0x02, 0x00, 0x01, 0x0D, 0x00, 0x01, 0x08, 0x03, 0x00, 0x98, 0xBA,
                       0xDC, 0xFE});
    EXPECT_EQ(VeltraSDK_SpiControllerInit(handle(), SpiBitOrder_MsbFirst, SpiMode_1,
                                          SpiDataWidth_8Bits, SpiChipSelect_3,
                                          SpiChipSelectPolarity_ActiveLow, 0xFEDC'BA98),
              0x1234);
}

TEST_P(SpiFunctionTest, SettingParametersReturnsTheStatus) {
    onCommand(0, {0x37, 0x00, 0x01, 0x00, 0x02, 0x0D, 0x01, 0x03, 0x10, 0x02, 0x01, 0x40, 0x42,
                  0x0F, 0x00});
    EXPECT_EQ(VeltraSDK_SpiSetParameters(handle(), SpiBitOrder_LsbFirst, SpiMode_3,
                                         SpiDataWidth_16Bits, SpiChipSelect_2,
                                         SpiChipSelectPolarity_ActiveHigh, 1'000'000),
              0);
    onCommand(0x1234, {0x37, 0x00, 0x02, 0x00, 0x02, 0x0D, 0x00, 0x01, 0x08, 0x03, 0x00, 0x98, 0xBA,
                       0xDC, 0xFE});
    EXPECT_EQ(VeltraSDK_SpiSetParameters(handle(), SpiBitOrder_MsbFirst, SpiMode_1,
                                         SpiDataWidth_8Bits, SpiChipSelect_3,
                                         SpiChipSelectPolarity_ActiveLow, 0xFEDC'BA98),
              0x1234);
}

TEST_P(SpiFunctionTest, ATransferFillsTheBufferWithAsManyBytesAsTheResponseCounts) {
    onWire({0x2F, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x03, 0x00, 0x03, 0x00, 0x9F, 0x00, 0x00},
           {0x2F, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x03, 0x00, 0xFF, 0xEF, 0x40});
    const Bytes send{0x9F, 0x00, 0x00};
    Bytes received(4, 0xEE);
    EXPECT_EQ(VeltraSDK_SpiTransfer(handle(), send.data(), 3, received.data(), 3), 0);
    EXPECT_EQ(received, (Bytes{0xFF, 0xEF, 0x40, 0xEE}));
}

TEST_P(SpiFunctionTest, AFailedTransferLeavesTheBuffer) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x01, 0x00, 0x01, 0x00, 0x9F},
           {0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0xFE, 0xFF, 0x01, 0x00, 0xEF});
    const Bytes send{0x9F};
    Bytes received(1, 0xEE);
    EXPECT_EQ(VeltraSDK_SpiTransfer(handle(), send.data(), 1, received.data(), 1), -2);
    EXPECT_EQ(received, (Bytes{0xEE}));
}

TEST_P(SpiFunctionWithoutWaitingTest, ATransferWithoutAResponseLeavesTheBuffer) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x01, 0x00, 0x01, 0x00, 0x9F});
    const Bytes send{0x9F};
    Bytes received(1, 0xEE);
    EXPECT_EQ(VeltraSDK_SpiTransfer(handle(), send.data(), 1, received.data(), 1), noResponse);
    EXPECT_EQ(received, (Bytes{0xEE}));
}

TEST_P(SpiFunctionTest, ATransferWithoutBytesToSendSendsNoneWhateverTheLength) {
    onWire({0x23, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x02, 0x00},
           {0x2B, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x02, 0x00, 0xAA, 0xBB});
    Bytes received(2, 0xEE);
    EXPECT_EQ(VeltraSDK_SpiTransfer(handle(), nullptr, 5, received.data(), 2), 0);
    EXPECT_EQ(received, (Bytes{0xAA, 0xBB}));
}

TEST_P(SpiFunctionTest, ATransferOfSendLengthZeroSendsNoBytes) {
    onWire({0x23, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x01, 0x00},
           {0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x01, 0x00, 0xAA});
    const Bytes send{0x9F};
    Bytes received(1, 0xEE);
    EXPECT_EQ(VeltraSDK_SpiTransfer(handle(), send.data(), 0, received.data(), 1), 0);
    EXPECT_EQ(received, (Bytes{0xAA}));
}

TEST_P(SpiFunctionTest, ATransferWithoutReceiveBufferDiscardsTheData) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x01, 0x00, 0x01, 0x00, 0x06},
           {0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x01, 0x00, 0xEF});
    const Bytes send{0x06};
    EXPECT_EQ(VeltraSDK_SpiTransfer(handle(), send.data(), 1, nullptr, 1), 0);
}

TEST_P(SpiFunctionTest, ATransferOfFourKibibytesTakesSeveralReportsBothWays) {
    const Bytes send = counting(4096);
    const Bytes answered(send.rbegin(), send.rend());
    Bytes request{0x01, 0x00, 0x04, 0x0D, 0x00, 0x10, 0x00, 0x10};
    request.insert(request.end(), send.begin(), send.end());
    Bytes response{0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x00, 0x10};
    response.insert(response.end(), answered.begin(), answered.end());
    onWireLong(request, response);
    Bytes received(4096);
    EXPECT_EQ(VeltraSDK_SpiTransfer(handle(), send.data(), 4096, received.data(), 4096), 0);
    EXPECT_EQ(received, answered);
}

TEST_P(SpiFunctionTest, ATransferFillsItsCountWhereverTheResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x03, 0x00},
                        {0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x03, 0x00, 0xAA, 0xBB, 0xCC},
                        [&](const Bytes& frame) {
                            Bytes received(frame[6]);
                            EXPECT_EQ(
                                VeltraSDK_SpiTransfer(handle(), nullptr, 0, received.data(), 3), 0);
                            const auto data = frame.begin() + 8;
                            EXPECT_EQ(received, Bytes(data, data + frame[6]));
                        });
}

TEST_P(SpiFunctionTest, AnOverlongCountIsFilledWithZeros) {
    onWire({0x23, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x01, 0x00},
           {0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0xFF, 0xFF, 0xAA});
    Bytes received(0xFFFF, 0xEE);
    EXPECT_EQ(VeltraSDK_SpiTransfer(handle(), nullptr, 0, received.data(), 1), 0);
    Bytes expected(0xFFFF);
    expected[0] = 0xAA;
    EXPECT_EQ(received, expected);
}

TEST_P(SpiFunctionTest, ANullHandleIsNotConnected) {
    const Bytes send{0x9F};
    Bytes received(1, 0xEE);
    EXPECT_EQ(VeltraSDK_SpiSetBusVoltage(nullptr, 3300, true), notConnected);
    EXPECT_EQ(VeltraSDK_SpiControllerInit(nullptr, SpiBitOrder_MsbFirst, SpiMode_0,
                                          SpiDataWidth_8Bits, SpiChipSelect_0,
                                          SpiChipSelectPolarity_ActiveLow, 1'000'000),
              notConnected);
    EXPECT_EQ(VeltraSDK_SpiSetParameters(nullptr, SpiBitOrder_MsbFirst, SpiMode_0,
                                         SpiDataWidth_8Bits, SpiChipSelect_0,
                                         SpiChipSelectPolarity_ActiveLow, 1'000'000),
              notConnected);
    EXPECT_EQ(VeltraSDK_SpiTransfer(nullptr, send.data(), 1, received.data(), 1), notConnected);
    EXPECT_EQ(VeltraSDK_SpiTransfer(nullptr, nullptr, 5, nullptr, 1), notConnected);
    EXPECT_EQ(received, (Bytes{0xEE}));
}

TEST_P(SpiFunctionTest, NothingIsSentBeforeConnecting) {
    const OwnedHandle unconnected(VeltraSDK_Create(0));
    const Bytes send{0x9F};
    Bytes received(1, 0xEE);
    EXPECT_EQ(VeltraSDK_SpiTransfer(unconnected.get(), send.data(), 1, received.data(), 1),
              notConnected);
    EXPECT_EQ(received, (Bytes{0xEE}));
    expectNothingSent();
}

} // namespace
