// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;

using SpiTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(SpiTest);

TEST_P(SpiTest, SettingTheBusVoltageReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01});
    EXPECT_EQ(sdk().spiSetBusVoltage(3300, true), 0);
    onCommand(0x1234, {0x1F, 0x00, 0x02, 0x00, 0x05, 0x04, 0xFF, 0xFF, 0x00});
    EXPECT_EQ(sdk().spiSetBusVoltage(0xFFFF, false), 0x1234);
}

TEST_P(SpiTest, InitialisingTheControllerReturnsTheStatus) {
    onCommand(0, {0x37, 0x00, 0x01, 0x00, 0x01, 0x0D, 0x01, 0x03, 0x10, 0x02, 0x01, 0x40, 0x42,
                  0x0F, 0x00});
    EXPECT_EQ(sdk().spiControllerInit(SpiBitOrder_LsbFirst, SpiMode_3, SpiDataWidth_16Bits,
                                      SpiChipSelect_2, SpiChipSelectPolarity_ActiveHigh, 1'000'000),
              0);
    onCommand(0x1234, {0x37, 0x00, 0x02, 0x00, 0x01, 0x0D, 0x00, 0x01, 0x08, 0x03, 0x00, 0x98, 0xBA,
                       0xDC, 0xFE});
    EXPECT_EQ(sdk().spiControllerInit(SpiBitOrder_MsbFirst, SpiMode_1, SpiDataWidth_8Bits,
                                      SpiChipSelect_3, SpiChipSelectPolarity_ActiveLow,
                                      0xFEDC'BA98),
              0x1234);
}

TEST_P(SpiTest, SettingParametersReturnsTheStatus) {
    onCommand(0, {0x37, 0x00, 0x01, 0x00, 0x02, 0x0D, 0x01, 0x03, 0x10, 0x02, 0x01, 0x40, 0x42,
                  0x0F, 0x00});
    EXPECT_EQ(sdk().spiSetParameters(SpiBitOrder_LsbFirst, SpiMode_3, SpiDataWidth_16Bits,
                                     SpiChipSelect_2, SpiChipSelectPolarity_ActiveHigh, 1'000'000),
              0);
    onCommand(0x1234, {0x37, 0x00, 0x02, 0x00, 0x02, 0x0D, 0x00, 0x01, 0x08, 0x03, 0x00, 0x98, 0xBA,
                       0xDC, 0xFE});
    EXPECT_EQ(sdk().spiSetParameters(SpiBitOrder_MsbFirst, SpiMode_1, SpiDataWidth_8Bits,
                                     SpiChipSelect_3, SpiChipSelectPolarity_ActiveLow, 0xFEDC'BA98),
              0x1234);
}

TEST_P(SpiTest, ATransferTakesAsManyBytesAsTheResponseCounts) {
    onWire({0x2F, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x03, 0x00, 0x03, 0x00, 0x9F, 0x00, 0x00},
           {0x2F, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x03, 0x00, 0xFF, 0xEF, 0x40});
    Bytes send{0x9F, 0x00, 0x00};
    Bytes received;
    EXPECT_EQ(sdk().spiTransfer(send, received, 3), 0);
    EXPECT_EQ(received, (Bytes{0xFF, 0xEF, 0x40}));
    EXPECT_EQ(send, (Bytes{0x9F, 0x00, 0x00}));
}

TEST_P(SpiTest, ATransferTakesItsDataWhateverTheStatus) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x01, 0x00, 0x01, 0x00, 0x9F},
           {0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x34, 0x12, 0x01, 0x00, 0xEF});
    Bytes send{0x9F};
    Bytes received;
    EXPECT_EQ(sdk().spiTransfer(send, received, 1), 0x1234);
    EXPECT_EQ(received, (Bytes{0xEF}));
}

TEST_P(SpiTest, ATransferMayYieldMoreOrLessThanTheRequestedLength) {
    onWire({0x23, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x01, 0x00},
           {0x2B, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x02, 0x00, 0xAA, 0xBB});
    onWire({0x23, 0x00, 0x02, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x05, 0x00},
           {0x27, 0x00, 0x02, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x01, 0x00, 0xCC});
    Bytes send;
    Bytes received;
    EXPECT_EQ(sdk().spiTransfer(send, received, 1), 0);
    EXPECT_EQ(received, (Bytes{0xAA, 0xBB}));
    EXPECT_EQ(sdk().spiTransfer(send, received, 5), 0);
    EXPECT_EQ(received, (Bytes{0xCC}));
}

TEST_P(SpiTest, AResponseWithCountZeroEmptiesTheReceivedBytes) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x01, 0x00, 0x00, 0x00, 0x06},
           {0x23, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x34, 0x12, 0x00, 0x00});
    Bytes send{0x06};
    Bytes received{0x01};
    EXPECT_EQ(sdk().spiTransfer(send, received, 0), 0x1234);
    EXPECT_TRUE(received.empty());
}

TEST_P(SpiTest, ATransferOfFourKibibytesTakesSeveralReportsBothWays) {
    Bytes send = counting(4096);
    const Bytes answered(send.rbegin(), send.rend());
    Bytes request{0x01, 0x00, 0x04, 0x0D, 0x00, 0x10, 0x00, 0x10};
    request.insert(request.end(), send.begin(), send.end());
    Bytes response{0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x00, 0x10};
    response.insert(response.end(), answered.begin(), answered.end());
    onWireLong(request, response);
    Bytes received;
    EXPECT_EQ(sdk().spiTransfer(send, received, 4096), 0);
    EXPECT_EQ(received, answered);
}

TEST_P(SpiTest, ATransferYieldsItsCountWhereverTheResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x03, 0x00},
                        {0x01, 0x00, 0x04, 0x0D, 0x34, 0x12, 0x03, 0x00, 0xAA, 0xBB, 0xCC},
                        [&](const Bytes& frame) {
                            Bytes send;
                            Bytes received;
                            EXPECT_EQ(sdk().spiTransfer(send, received, 3), 0x1234);
                            const auto data = frame.begin() + 8;
                            EXPECT_EQ(received, Bytes(data, data + frame[6]));
                        });
}

TEST_P(SpiTest, AnOverlongCountIsFilledWithZeros) {
    onWire({0x23, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0x01, 0x00},
           {0x27, 0x00, 0x01, 0x00, 0x04, 0x0D, 0x00, 0x00, 0xFF, 0xFF, 0xAA});
    Bytes send;
    Bytes received;
    EXPECT_EQ(sdk().spiTransfer(send, received, 1), 0);
    Bytes expected(0xFFFF);
    expected[0] = 0xAA;
    EXPECT_EQ(received, expected);
}

using SpiWithoutWaitingTest = test_support::ImpatientSdkTest;
INSTANTIATE_IN_BOTH_MODES(SpiWithoutWaitingTest);

TEST_P(SpiWithoutWaitingTest, ATransferWithoutResponseLeavesTheReceivedBytes) {
    Bytes send{0x9F};
    Bytes received{0x01};
    EXPECT_EQ(sdk().spiTransfer(send, received, 3), 0x2000);
    EXPECT_EQ(received, (Bytes{0x01}));
}

} // namespace
