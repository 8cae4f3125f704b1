// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;
using test_support::notConnected;
using test_support::OwnedHandle;

using UartFunctionTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(UartFunctionTest);

TEST_P(UartFunctionTest, SettingTheBusVoltageReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01});
    EXPECT_EQ(VeltraSDK_UartSetBusVoltage(handle(), 3300, true), 0);
    onCommand(0x1234, {0x1F, 0x00, 0x02, 0x00, 0x05, 0x04, 0xFF, 0xFF, 0x00});
    EXPECT_EQ(VeltraSDK_UartSetBusVoltage(handle(), 0xFFFF, false), 0x1234);
}

TEST_P(UartFunctionTest, InitialisingReturnsTheStatus) {
    onCommand(0, {0x27, 0x00, 0x01, 0x00, 0x02, 0x10, 0x07, 0x01, 0x02, 0x08, 0x01});
    EXPECT_EQ(VeltraSDK_UartInit(handle(), UartBaudRate_115200, UartHwHandshake_RtsCts,
                                 UartParity_Even, UartDataSize_8Bits, UartStopBit_1),
              0);
    onCommand(0x1234, {0x27, 0x00, 0x02, 0x00, 0x02, 0x10, 0x03, 0x00, 0x01, 0x07, 0x02});
    EXPECT_EQ(VeltraSDK_UartInit(handle(), UartBaudRate_9600, UartHwHandshake_None, UartParity_Odd,
                                 UartDataSize_7Bits, UartStopBit_2),
              0x1234);
}

TEST_P(UartFunctionTest, SettingParametersReturnsTheStatus) {
    onCommand(0, {0x27, 0x00, 0x01, 0x00, 0x03, 0x10, 0x07, 0x01, 0x02, 0x08, 0x01});
    EXPECT_EQ(VeltraSDK_UartSetParameters(handle(), UartBaudRate_115200, UartHwHandshake_RtsCts,
                                          UartParity_Even, UartDataSize_8Bits, UartStopBit_1),
              0);
    onCommand(0x1234, {0x27, 0x00, 0x02, 0x00, 0x03, 0x10, 0x03, 0x00, 0x01, 0x07, 0x02});
    EXPECT_EQ(VeltraSDK_UartSetParameters(handle(), UartBaudRate_9600, UartHwHandshake_None,
                                          UartParity_Odd, UartDataSize_7Bits, UartStopBit_2),
              0x1234);
}

TEST_P(UartFunctionTest, SendingAMessageReturnsTheStatus) {
    onCommand(0, {0x23, 0x00, 0x01, 0x00, 0x05, 0x10, 0x02, 0x00, 0x41, 0x42});
    onCommand(0xFFFE, {0x1F, 0x00, 0x02, 0x00, 0x05, 0x10, 0x01, 0x00, 0x41});
    const Bytes message{0x41, 0x42};
    EXPECT_EQ(VeltraSDK_UartSendMessage(handle(), message.data(), 2), 0);
    EXPECT_EQ(VeltraSDK_UartSendMessage(handle(), message.data(), 1), -2);
}

TEST_P(UartFunctionTest, AMessageOfLengthZeroIsSentWhateverThePointer) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x05, 0x10, 0x00, 0x00});
    onCommand(0, {0x1B, 0x00, 0x02, 0x00, 0x05, 0x10, 0x00, 0x00});
    const Bytes message{0x41};
    EXPECT_EQ(VeltraSDK_UartSendMessage(handle(), message.data(), 0), 0);
    EXPECT_EQ(VeltraSDK_UartSendMessage(handle(), nullptr, 0), 0);
}

TEST_P(UartFunctionTest, TheLongestMessageGoesOutInSeveralReports) {
    const Bytes message = counting(65'535);
    Bytes request{0x01, 0x00, 0x05, 0x10, 0xFF, 0xFF};
    request.insert(request.end(), message.begin(), message.end());
    onWireLong(request, {0x01, 0x00, 0x05, 0x10, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_UartSendMessage(handle(), message.data(), 65'535), 0);
}

TEST_P(UartFunctionTest, ANullHandleIsNotConnected) {
    const Bytes message{0x41};
    EXPECT_EQ(VeltraSDK_UartSetBusVoltage(nullptr, 3300, true), notConnected);
    EXPECT_EQ(VeltraSDK_UartInit(nullptr, UartBaudRate_9600, UartHwHandshake_None, UartParity_None,
                                 UartDataSize_8Bits, UartStopBit_1),
              notConnected);
    EXPECT_EQ(VeltraSDK_UartSetParameters(nullptr, UartBaudRate_9600, UartHwHandshake_None,
                                          UartParity_None, UartDataSize_8Bits, UartStopBit_1),
              notConnected);
    EXPECT_EQ(VeltraSDK_UartSendMessage(nullptr, message.data(), 1), notConnected);
    EXPECT_EQ(VeltraSDK_UartSendMessage(nullptr, nullptr, 0), notConnected);
}

TEST_P(UartFunctionTest, NothingIsSentBeforeConnecting) {
    const OwnedHandle unconnected(VeltraSDK_Create(0));
    const Bytes message{0x41};
    EXPECT_EQ(VeltraSDK_UartSendMessage(unconnected.get(), message.data(), 1), notConnected);
    expectNothingSent();
}

} // namespace
