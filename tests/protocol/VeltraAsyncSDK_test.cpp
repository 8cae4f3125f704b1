// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/AsyncSdkTest.hpp"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

using namespace test_support;

namespace {

/// Every encoder, with arguments that it accepts.
const std::map<std::string, std::function<uint16_t(VeltraAsyncSDK&)>> encoders{
    {"enterBootMode", [](auto& sdk) { return sdk.enterBootMode(1); }},
    {"getUsbString", [](auto& sdk) { return sdk.getUsbString(1, 1); }},
    {"setI2cSpiUartGpioVoltage",
     [](auto& sdk) { return sdk.setI2cSpiUartGpioVoltage(1, 3300, false); }},
    {"i2cSetBusVoltage", [](auto& sdk) { return sdk.i2cSetBusVoltage(1, 3300, false); }},
    {"spiSetBusVoltage", [](auto& sdk) { return sdk.spiSetBusVoltage(1, 3300, false); }},
    {"uartSetBusVoltage", [](auto& sdk) { return sdk.uartSetBusVoltage(1, 3300, false); }},
    {"gpioSetVoltage", [](auto& sdk) { return sdk.gpioSetVoltage(1, 3300, false); }},
    {"i2cControllerInit", [](auto& sdk) { return sdk.i2cControllerInit(1, 0, 400'000, 0); }},
    {"i2cSetParameters", [](auto& sdk) { return sdk.i2cSetParameters(1, 0, 400'000, 0); }},
    {"i2cSetPullUpResistors", [](auto& sdk) { return sdk.i2cSetPullUpResistors(1, 0, 0); }},
    {"i2cScanBus", [](auto& sdk) { return sdk.i2cScanBus(1, 0, false); }},
    {"i2cWrite", [](auto& sdk) { return sdk.i2cWrite(1, 0, 0x50, {}, {0x01}, false); }},
    {"i2cRead", [](auto& sdk) { return sdk.i2cRead(1, 0, 0x50, {}, 1, false); }},
    {"spiControllerInit",
     [](auto& sdk) {
         return sdk.spiControllerInit(1, SpiBitOrder_MsbFirst, SpiMode_0, SpiDataWidth_8Bits,
                                      SpiChipSelect_0, SpiChipSelectPolarity_ActiveLow, 1'000'000);
     }},
    {"spiSetParameters",
     [](auto& sdk) {
         return sdk.spiSetParameters(1, SpiBitOrder_MsbFirst, SpiMode_0, SpiDataWidth_8Bits,
                                     SpiChipSelect_0, SpiChipSelectPolarity_ActiveLow, 1'000'000);
     }},
    {"spiTransfer",
     [](auto& sdk) {
         Bytes data{0x01};
         return sdk.spiTransfer(1, data, 1);
     }},
    {"uartInit",
     [](auto& sdk) {
         return sdk.uartInit(1, UartBaudRate_9600, UartHwHandshake_None, UartParity_None,
                             UartDataSize_8Bits, UartStopBit_1);
     }},
    {"uartSetParameters",
     [](auto& sdk) {
         return sdk.uartSetParameters(1, UartBaudRate_9600, UartHwHandshake_None, UartParity_None,
                                      UartDataSize_8Bits, UartStopBit_1);
     }},
    {"uartSendMessage", [](auto& sdk) { return sdk.uartSendMessage(1, {0x01}); }},
    {"gpioConfigurePin",
     [](auto& sdk) {
         return sdk.gpioConfigurePin(1, GpioPinNumber_0, GpioFunctionality_Input,
                                     GpioLogicLevel_Low);
     }},
    {"gpioDigitalWrite",
     [](auto& sdk) { return sdk.gpioDigitalWrite(1, GpioPinNumber_0, GpioLogicLevel_Low); }},
    {"gpioDigitalRead", [](auto& sdk) { return sdk.gpioDigitalRead(1, GpioPinNumber_0); }},
    {"gpioConfigureInterrupt",
     [](auto& sdk) {
         return sdk.gpioConfigureInterrupt(1, GpioPinNumber_0, GpioTriggerType_RisingEdge);
     }},
    {"gpioDisableInterrupt",
     [](auto& sdk) { return sdk.gpioDisableInterrupt(1, GpioPinNumber_0); }},
    {"i3cSetBusVoltage", [](auto& sdk) { return sdk.i3cSetBusVoltage(1, 3300); }},
    {"i3cControllerInit", [](auto& sdk) { return sdk.i3cControllerInit(1, 0, 0, 0, 0); }},
    {"i3cSetParameters", [](auto& sdk) { return sdk.i3cSetParameters(1, 0, 0, 0, 0); }},
    {"i3cInitBus", [](auto& sdk) { return sdk.i3cInitBus(1, {}); }},
    {"i3cResetBus", [](auto& sdk) { return sdk.i3cResetBus(1); }},
    {"i3cGetDeviceTable", [](auto& sdk) { return sdk.i3cGetDeviceTable(1); }},
    {"i3cSetTargetDeviceConfiguration",
     [](auto& sdk) {
         return sdk.i3cSetTargetDeviceConfiguration(1, 0x08, I3cTargetConfiguration_AcceptIbi);
     }},
    {"i3cSdrWrite",
     [](auto& sdk) { return sdk.i3cSdrWrite(1, 0x08, {}, {0x01}, I3cTransferFlags_None); }},
    {"i3cSdrRead", [](auto& sdk) { return sdk.i3cSdrRead(1, 0x08, {}, 1, I3cTransferFlags_None); }},
    {"i3cHdrDdrWrite",
     [](auto& sdk) {
         return sdk.i3cHdrDdrWrite(1, 0x08, 0x00, {0x01, 0x02});
     }},
    {"i3cHdrDdrRead", [](auto& sdk) { return sdk.i3cHdrDdrRead(1, 0x08, 0x80, 2); }},
    {"i3cLegacyI2cWrite",
     [](auto& sdk) { return sdk.i3cLegacyI2cWrite(1, 0x50, {}, {0x01}, I3cTransferFlags_None); }},
    {"i3cLegacyI2cRead",
     [](auto& sdk) { return sdk.i3cLegacyI2cRead(1, 0x50, {}, 1, I3cTransferFlags_None); }},
    {"i3cTargetResetPattern", [](auto& sdk) { return sdk.i3cTargetResetPattern(1); }},
    {"i3cHdrExitPattern", [](auto& sdk) { return sdk.i3cHdrExitPattern(1); }},
    {"i3cCccTransfer",
     [](auto& sdk) {
         return sdk.i3cCccTransfer(1, 0x7E, I3cTransferDirection_Write, I3cTransferMode_Sdr, false,
                                   I3cCccType_WithoutDefiningByte, 0, CCC_RSTDAA, 0, {});
     }},
};

TEST(VeltraAsyncSDK, EveryEncoderRefusesToSendBeforeTheFirstConnect) {
    ScriptedHid hid;
    VeltraAsyncSDK sdk;
    for (const auto& [name, encode] : encoders) {
        EXPECT_EQ(encode(sdk), 0x4000) << name;
    }
    EXPECT_TRUE(hid.writes().empty());
    EXPECT_EQ(hid.enumerateCalls(), 0U);
}

TEST(VeltraAsyncSDK, NotBeingConnectedIsToldBeforeAnArgumentIsRefused) {
    ScriptedHid hid;
    VeltraAsyncSDK sdk;
    const Bytes tooLong(5);
    EXPECT_EQ(sdk.i2cWrite(1, 0, 0x50, tooLong, {}, false), 0x4000);
    EXPECT_EQ(sdk.i2cRead(1, 0, 0x50, tooLong, 1, false), 0x4000);
    EXPECT_EQ(sdk.i3cSdrWrite(1, 0x08, tooLong, {}, I3cTransferFlags_None), 0x4000);
    EXPECT_EQ(sdk.i3cSdrRead(1, 0x08, tooLong, 1, I3cTransferFlags_None), 0x4000);
}

using VeltraAsyncSDKTest = AsyncSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(VeltraAsyncSDKTest);

TEST_P(VeltraAsyncSDKTest, EveryEncoderRefusesToSendAfterADisconnect) {
    sdk.disconnect();
    for (const auto& [name, encode] : encoders) {
        EXPECT_EQ(encode(sdk), 0x4000) << name;
    }
    expectNothingSent();
}

TEST_P(VeltraAsyncSDKTest, EveryEncoderSendsOneReportWithItsIdentifier) {
    for (const auto& [name, encode] : encoders) {
        EXPECT_TRUE(sdk.connect("")) << name;
        const size_t before = hid.writes().size();
        EXPECT_EQ(encode(sdk), 0) << name;
        ASSERT_EQ(hid.writes().size(), before + 1) << name;
        const Bytes report = hid.writes().back();
        EXPECT_EQ(report.size(), GetParam().reportSize + 1) << name;
        EXPECT_EQ(report[3], 0x01) << name;
        EXPECT_EQ(report[4], 0x00) << name;
    }
}

TEST_P(VeltraAsyncSDKTest, BootModeIsOneFrameAndTheEndOfTheLink) {
    EXPECT_EQ(sdk.enterBootMode(0x1234), 0);
    expectSent({0x13, 0x00, 0x34, 0x12, 0x02, 0x04});
    EXPECT_FALSE(sdk.isConnected());
    EXPECT_EQ(hid.openDevices(), 0U);
    EXPECT_EQ(sdk.enterBootMode(2), 0x4000);
    EXPECT_EQ(hid.writes().size(), 1U);
}

TEST_P(VeltraAsyncSDKTest, AStringIsAskedForByItsIndex) {
    EXPECT_EQ(sdk.getUsbString(5, 3), 0);
    expectSent({0x17, 0x00, 0x05, 0x00, 0x07, 0x04, 0x03});
}

TEST_P(VeltraAsyncSDKTest, ARequestThatCannotBeWrittenCountsAsHandedOver) {
    hid.failWriting(-1);
    EXPECT_EQ(sdk.getUsbString(5, 3), 0);
    EXPECT_TRUE(sdk.isConnected());
}

// Connecting.

TEST_P(VeltraAsyncSDKTest, ConnectingByPathOpensTheAdapterWithThatPath) {
    hid.attach({"1-2:1.0", vendorId, GetParam().productId, L"VA-0002"});
    sdk.disconnect();
    EXPECT_TRUE(sdk.connect("1-2:1.0"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
    EXPECT_TRUE(sdk.isConnected());
}

TEST_P(VeltraAsyncSDKTest, ConnectingBySerialNumberOpensTheAdapterWithThatSerialNumber) {
    hid.attach({"1-2:1.0", vendorId, GetParam().productId, L"VA-0002"});
    sdk.disconnect();
    EXPECT_TRUE(sdk.connectWithSerialNumber("VA-0002"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
    EXPECT_TRUE(sdk.isConnected());
}

TEST_P(VeltraAsyncSDKTest, APathIsNoSerialNumberAndASerialNumberNoPath) {
    sdk.disconnect();
    EXPECT_FALSE(sdk.connect("VA-0001"));
    EXPECT_FALSE(sdk.connectWithSerialNumber("1-1:1.0"));
    EXPECT_FALSE(sdk.isConnected());
}

TEST_P(VeltraAsyncSDKTest, AnEmptySerialNumberOpensTheFirstAdapter) {
    sdk.disconnect();
    EXPECT_TRUE(sdk.connectWithSerialNumber(""));
    EXPECT_EQ(hid.openedPath(), "1-1:1.0");
}

TEST_P(VeltraAsyncSDKTest, AnOpenLinkStaysConnectedWhateverIsAskedFor) {
    EXPECT_TRUE(sdk.connect("no such path"));
    EXPECT_TRUE(sdk.connectWithSerialNumber("no such serial number"));
    EXPECT_TRUE(sdk.isConnected());
    EXPECT_EQ(hid.enumerateCalls(), 1U);
}

TEST_P(VeltraAsyncSDKTest, ASerialNumberThatCannotBeConvertedLeavesConnectAsARangeError) {
    sdk.disconnect();
    hid.detachAll();
    hid.attach({"1-1:1.0", vendorId, GetParam().productId, std::wstring(1, wchar_t{0x110000})});
    try {
        sdk.connectWithSerialNumber("VA-0001");
        ADD_FAILURE() << "no exception";
    } catch (const std::range_error& error) {
        EXPECT_STREQ(error.what(), "wstring_convert::to_bytes");
    }
    EXPECT_FALSE(sdk.isConnected());
    EXPECT_TRUE(sdk.connect("")) << "the link is as usable as before";
}

TEST_P(VeltraAsyncSDKTest, ADisconnectOfAClosedLinkDoesNothing) {
    sdk.disconnect();
    sdk.disconnect();
    EXPECT_FALSE(sdk.isConnected());
}

TEST(VeltraAsyncSDK, DestructionClosesTheLinkBeforeTheReceiverIsReleased) {
    ScriptedHid hid;
    hid.attach({"1-1:1.0", vendorId, fullSpeed.productId, L"VA-0001"});
    std::optional<size_t> openDevices;
    auto sdk = std::make_unique<VeltraAsyncSDK>();
    std::shared_ptr<void> releasedWithTheReceiver(nullptr,
                                                  [&](void*) { openDevices = hid.openDevices(); });
    sdk->onResponse([held = std::move(releasedWithTheReceiver)](const Bytes&) {});
    ASSERT_TRUE(sdk->connect(""));
    ASSERT_EQ(openDevices, std::nullopt);
    sdk.reset();
    EXPECT_EQ(openDevices, 0U);
}

// Receiving.

TEST_P(VeltraAsyncSDKTest, FramesBeforeAReceiverIsInstalledAreDropped) {
    hid.deliver(GetParam().input({0x1B, 0x00, 0x01, 0x00, 0x02, 0x04, 0x00, 0x00}));
    ASSERT_TRUE(hid.waitUntilDrained());
    sdk.disconnect();
    std::vector<Bytes> received;
    sdk.onResponse([&](const Bytes& frame) { received.push_back(frame); });
    ASSERT_TRUE(sdk.connect(""));
    hid.deliver(GetParam().input({0x1B, 0x00, 0x02, 0x00, 0x02, 0x04, 0x00, 0x00}));
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, (std::vector<Bytes>{{0x02, 0x00, 0x02, 0x04, 0x00, 0x00}}));
    sdk.disconnect();
}

TEST_P(VeltraAsyncSDKTest, FramesOfAnyLengthAndIdentifierAreHandedUp) {
    sdk.disconnect();
    std::vector<Bytes> received;
    sdk.onResponse([&](const Bytes& frame) { received.push_back(frame); });
    ASSERT_TRUE(sdk.connect(""));
    hid.deliver(GetParam().input({0x03, 0x00}));
    hid.deliver(GetParam().input({0x07, 0x00, 0xAA}));
    hid.deliver(GetParam().input({0x1B, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00}));
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, (std::vector<Bytes>{{}, {0xAA}, {0x00, 0x00, 0x81, 0x14, 0x00, 0x00}}));
    sdk.disconnect();
}

TEST_P(VeltraAsyncSDKTest, TheLastReceiverInstalledGetsTheFrames) {
    sdk.disconnect();
    size_t received = 0;
    sdk.onResponse([](const Bytes&) { ADD_FAILURE() << "a replaced receiver was called"; });
    sdk.onResponse([&](const Bytes&) { ++received; });
    ASSERT_TRUE(sdk.connect(""));
    hid.deliver(GetParam().input({0x07, 0x00, 0xAA}));
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, 1U);
    sdk.disconnect();
}

} // namespace
