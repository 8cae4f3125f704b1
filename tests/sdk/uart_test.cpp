// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;

using UartTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(UartTest);

TEST_P(UartTest, SettingTheBusVoltageReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01});
    EXPECT_EQ(sdk().uartSetBusVoltage(3300, true), 0);
    onCommand(0x1234, {0x1F, 0x00, 0x02, 0x00, 0x05, 0x04, 0xFF, 0xFF, 0x00});
    EXPECT_EQ(sdk().uartSetBusVoltage(0xFFFF, false), 0x1234);
}

TEST_P(UartTest, InitialisingReturnsTheStatus) {
    onCommand(0, {0x27, 0x00, 0x01, 0x00, 0x02, 0x10, 0x07, 0x01, 0x02, 0x08, 0x01});
    EXPECT_EQ(sdk().uartInit(UartBaudRate_115200, UartHwHandshake_RtsCts, UartParity_Even,
                             UartDataSize_8Bits, UartStopBit_1),
              0);
    onCommand(0x1234, {0x27, 0x00, 0x02, 0x00, 0x02, 0x10, 0x03, 0x00, 0x01, 0x07, 0x02});
    EXPECT_EQ(sdk().uartInit(UartBaudRate_9600, UartHwHandshake_None, UartParity_Odd,
                             UartDataSize_7Bits, UartStopBit_2),
              0x1234);
}

TEST_P(UartTest, SettingParametersReturnsTheStatus) {
    onCommand(0, {0x27, 0x00, 0x01, 0x00, 0x03, 0x10, 0x07, 0x01, 0x02, 0x08, 0x01});
    EXPECT_EQ(sdk().uartSetParameters(UartBaudRate_115200, UartHwHandshake_RtsCts, UartParity_Even,
                                      UartDataSize_8Bits, UartStopBit_1),
              0);
    onCommand(0x1234, {0x27, 0x00, 0x02, 0x00, 0x03, 0x10, 0x03, 0x00, 0x01, 0x07, 0x02});
    EXPECT_EQ(sdk().uartSetParameters(UartBaudRate_9600, UartHwHandshake_None, UartParity_Odd,
                                      UartDataSize_7Bits, UartStopBit_2),
              0x1234);
}

TEST_P(UartTest, SendingAMessageReturnsTheStatus) {
    onCommand(0, {0x23, 0x00, 0x01, 0x00, 0x05, 0x10, 0x02, 0x00, 0x41, 0x42});
    EXPECT_EQ(sdk().uartSendMessage({0x41, 0x42}), 0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x05, 0x10, 0x00, 0x00});
    EXPECT_EQ(sdk().uartSendMessage({}), 0x1234);
}

TEST_P(UartTest, TheLongestMessageGoesOutInSeveralReports) {
    const Bytes message = counting(65'535);
    Bytes request{0x01, 0x00, 0x05, 0x10, 0xFF, 0xFF};
    request.insert(request.end(), message.begin(), message.end());
    onWireLong(request, {0x01, 0x00, 0x05, 0x10, 0x00, 0x00});
    EXPECT_EQ(sdk().uartSendMessage(message), 0);
}

using UartWithoutWaitingTest = test_support::ImpatientSdkTest;
INSTANTIATE_IN_BOTH_MODES(UartWithoutWaitingTest);

TEST_P(UartWithoutWaitingTest, AMessageWithoutResponseIsSent) {
    onWire({0x1F, 0x00, 0x01, 0x00, 0x05, 0x10, 0x01, 0x00, 0x41});
    EXPECT_EQ(sdk().uartSendMessage({0x41}), 0x2000);
}

} // namespace
