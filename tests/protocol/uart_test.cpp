// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/AsyncSdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;

using UartEncoderTest = test_support::AsyncSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(UartEncoderTest);

TEST_P(UartEncoderTest, TheBusVoltageIsTheSharedIoVoltage) {
    EXPECT_EQ(sdk.uartSetBusVoltage(0x1234, 1800, true), 0);
    expectSent({0x1F, 0x00, 0x34, 0x12, 0x05, 0x04, 0x08, 0x07, 0x01});
}

TEST_P(UartEncoderTest, InitialisingTravelsAsFiveEnumerations) {
    EXPECT_EQ(sdk.uartInit(0x1234, UartBaudRate_115200, UartHwHandshake_RtsCts, UartParity_Even,
                           UartDataSize_8Bits, UartStopBit_1),
              0);
    expectSent({0x27, 0x00, 0x34, 0x12, 0x02, 0x10, 0x07, 0x01, 0x02, 0x08, 0x01});
}

TEST_P(UartEncoderTest, SettingParametersDiffersFromInitialisingInTheCommandCodeOnly) {
    EXPECT_EQ(sdk.uartSetParameters(0x1234, UartBaudRate_115200, UartHwHandshake_RtsCts,
                                    UartParity_Even, UartDataSize_8Bits, UartStopBit_1),
              0);
    expectSent({0x27, 0x00, 0x34, 0x12, 0x03, 0x10, 0x07, 0x01, 0x02, 0x08, 0x01});
}

TEST_P(UartEncoderTest, ValuesWithoutAnEnumeratorTravelUnchanged) {
    EXPECT_EQ(sdk.uartInit(0xFFFF, UartBaudRate{0xF1}, UartHwHandshake{0xF2}, UartParity{0xF3},
                           UartDataSize{0xF4}, UartStopBit{0xF5}),
              0);
    expectSent({0x27, 0x00, 0xFF, 0xFF, 0x02, 0x10, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5});
}

TEST_P(UartEncoderTest, AMessageTravelsBehindItsCount) {
    EXPECT_EQ(sdk.uartSendMessage(0x1234, {0x41, 0x42}), 0);
    expectSent({0x23, 0x00, 0x34, 0x12, 0x05, 0x10, 0x02, 0x00, 0x41, 0x42});
}

TEST_P(UartEncoderTest, AnEmptyMessageIsSentWithCountZeroAndNoData) {
    EXPECT_EQ(sdk.uartSendMessage(0x1234, {}), 0);
    expectSent({0x1B, 0x00, 0x34, 0x12, 0x05, 0x10, 0x00, 0x00});
}

TEST_P(UartEncoderTest, TheLongestMessageTakesSeveralReports) {
    const Bytes message = counting(65'535);
    Bytes request{0x34, 0x12, 0x05, 0x10, 0xFF, 0xFF};
    request.insert(request.end(), message.begin(), message.end());
    EXPECT_EQ(sdk.uartSendMessage(0x1234, message), 0);
    expectSentLong(request);
}

TEST_P(UartEncoderTest, TheCountOfAnOverlongMessageWrapsAndEveryByteIsSent) {
    const Bytes message = counting(0x1'0001);
    Bytes request{0x34, 0x12, 0x05, 0x10, 0x01, 0x00};
    request.insert(request.end(), message.begin(), message.end());
    EXPECT_EQ(sdk.uartSendMessage(0x1234, message), 0);
    expectSentLong(request);
}

TEST_P(UartEncoderTest, NothingIsSentBeforeConnecting) {
    VeltraAsyncSDK unconnected;
    EXPECT_EQ(unconnected.uartSetBusVoltage(1, 3300, true), 0x4000);
    EXPECT_EQ(unconnected.uartInit(1, UartBaudRate_9600, UartHwHandshake_None, UartParity_None,
                                   UartDataSize_8Bits, UartStopBit_1),
              0x4000);
    EXPECT_EQ(unconnected.uartSetParameters(1, UartBaudRate_9600, UartHwHandshake_None,
                                            UartParity_None, UartDataSize_8Bits, UartStopBit_1),
              0x4000);
    EXPECT_EQ(unconnected.uartSendMessage(1, {0x41}), 0x4000);
    expectNothingSent();
}

} // namespace
