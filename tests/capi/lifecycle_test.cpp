// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>

using namespace test_support;

namespace {

using Operation = std::function<int16_t(VeltraSDK_Handle*)>;

/// A C function with all its arguments but the handle.
template <typename... Parameters>
Operation with(int16_t (*function)(VeltraSDK_Handle*, Parameters...),
               std::common_type_t<Parameters>... arguments) {
    return [=](VeltraSDK_Handle* handle) { return function(handle, arguments...); };
}

template <typename Function>
Operation withSpiSettings(Function* function) {
    return with(function, SpiBitOrder_MsbFirst, SpiMode_0, SpiDataWidth_8Bits, SpiChipSelect_0,
                SpiChipSelectPolarity_ActiveLow, 1'000'000);
}

template <typename Function>
Operation withUartSettings(Function* function) {
    return with(function, UartBaudRate_9600, UartHwHandshake_None, UartParity_None,
                UartDataSize_8Bits, UartStopBit_1);
}

template <typename Function>
Operation withI3cSettings(Function* function) {
    return with(function, I3cPushPullRate_12_5_MHz, I3cOpenDrainTransferRate_4_MHz,
                I2cTransferRate_1_MHz, I3cDriveStrength_2_mA);
}

/// Every C function with a result code, with arguments that it accepts.
const std::map<std::string, Operation> operations = [] {
    static std::array<uint8_t, 256> bytes{};
    static I3cTargetInfo target{};
    static uint16_t word{};
    static VeltraSDK_DeviceInfo info{};
    static GpioLogicLevel level{};
    static char text[255];
    uint8_t* const buffer = bytes.data();
    return std::map<std::string, Operation>{
        {"GetDeviceInfo", with(VeltraSDK_GetDeviceInfo, &info)},
        {"GetUsbString", with(VeltraSDK_GetUsbString, 1, text, sizeof text)},
        {"EnterBootMode", with(VeltraSDK_EnterBootMode)},
        {"I2cSetBusVoltage", with(VeltraSDK_I2cSetBusVoltage, 3300, false)},
        {"I2cControllerInit", with(VeltraSDK_I2cControllerInit, 0, 400'000, 0)},
        {"I2cSetParameters", with(VeltraSDK_I2cSetParameters, 0, 400'000, 0)},
        {"I2cSetPullUpResistors", with(VeltraSDK_I2cSetPullUpResistors, 0, 0)},
        {"I2cScanBus", with(VeltraSDK_I2cScanBus, buffer, 128, buffer, buffer, 0, false)},
        {"I2cWrite", with(VeltraSDK_I2cWrite, 0, 0x50, buffer, 1, buffer, 1, false)},
        {"I2cRead", with(VeltraSDK_I2cRead, 0, 0x50, buffer, 1, 1, buffer, false)},
        {"SpiSetBusVoltage", with(VeltraSDK_SpiSetBusVoltage, 3300, false)},
        {"SpiControllerInit", withSpiSettings(VeltraSDK_SpiControllerInit)},
        {"SpiSetParameters", withSpiSettings(VeltraSDK_SpiSetParameters)},
        {"SpiTransfer", with(VeltraSDK_SpiTransfer, buffer, 1, buffer, 1)},
        {"UartSetBusVoltage", with(VeltraSDK_UartSetBusVoltage, 3300, false)},
        {"UartInit", withUartSettings(VeltraSDK_UartInit)},
        {"UartSetParameters", withUartSettings(VeltraSDK_UartSetParameters)},
        {"UartSendMessage", with(VeltraSDK_UartSendMessage, buffer, 1)},
        {"GpioSetVoltage", with(VeltraSDK_GpioSetVoltage, 3300, false)},
        {"GpioConfigurePin", with(VeltraSDK_GpioConfigurePin, GpioPinNumber_0,
                                  GpioFunctionality_Input, false, GpioLogicLevel_Low)},
        {"GpioDigitalWrite", with(VeltraSDK_GpioDigitalWrite, GpioPinNumber_0, GpioLogicLevel_Low)},
        {"GpioDigitalRead", with(VeltraSDK_GpioDigitalRead, GpioPinNumber_0, &level)},
        {"GpioConfigureInterrupt",
         with(VeltraSDK_GpioConfigureInterrupt, GpioPinNumber_0, GpioTriggerType_RisingEdge)},
        {"GpioDisableInterrupt", with(VeltraSDK_GpioDisableInterrupt, GpioPinNumber_0)},
        {"I3cSetBusVoltage", with(VeltraSDK_I3cSetBusVoltage, 3300)},
        {"I3cControllerInit", withI3cSettings(VeltraSDK_I3cControllerInit)},
        {"I3cSetParameters", withI3cSettings(VeltraSDK_I3cSetParameters)},
        {"I3cResetBus", with(VeltraSDK_I3cResetBus)},
        {"I3cInitBus", with(VeltraSDK_I3cInitBus, &target, 1)},
        {"I3cGetDeviceTable", with(VeltraSDK_I3cGetDeviceTable, &target, 1, buffer)},
        {"I3cSetTargetDeviceConfiguration",
         with(VeltraSDK_I3cSetTargetDeviceConfiguration, 0x08, I3cTargetConfiguration_AcceptIbi)},
        {"I3cSdrWrite",
         with(VeltraSDK_I3cSdrWrite, 0x08, buffer, 1, buffer, 1, I3cTransferFlags_None)},
        {"I3cSdrRead",
         with(VeltraSDK_I3cSdrRead, 0x08, buffer, 1, 1, buffer, &word, I3cTransferFlags_None)},
        {"I3cHdrDdrWrite", with(VeltraSDK_I3cHdrDdrWrite, 0x08, 0x00, buffer, 2)},
        {"I3cHdrDdrRead", with(VeltraSDK_I3cHdrDdrRead, 0x08, 0x80, 2, &word, buffer)},
        {"I3cLegacyI2CWrite",
         with(VeltraSDK_I3cLegacyI2CWrite, 0x50, buffer, 1, buffer, 1, I3cTransferFlags_None)},
        {"I3cLegacyI2CRead", with(VeltraSDK_I3cLegacyI2CRead, 0x50, buffer, 1, 1, buffer, &word,
                                  I3cTransferFlags_None)},
        {"I3cTargetResetPattern", with(VeltraSDK_I3cTargetResetPattern)},
        {"I3cHdrExitPattern", with(VeltraSDK_I3cHdrExitPattern)},
        {"I3cCccGETPID", with(VeltraSDK_I3cCccGETPID, 0x08, buffer)},
        {"I3cCccGETBCR", with(VeltraSDK_I3cCccGETBCR, 0x08, buffer)},
        {"I3cCccGETDCR", with(VeltraSDK_I3cCccGETDCR, 0x08, buffer)},
        {"I3cCccGETMWL", with(VeltraSDK_I3cCccGETMWL, 0x08, &word)},
        {"I3cCccGETMRL", with(VeltraSDK_I3cCccGETMRL, 0x08, &word, buffer, buffer)},
        {"I3cCccGETCAPS", with(VeltraSDK_I3cCccGETCAPS, 0x08, buffer, buffer, false, 0)},
        {"I3cCccGETSTATUS", with(VeltraSDK_I3cCccGETSTATUS, 0x08, buffer, buffer, false, 0)},
        {"I3cCccSETMWLDirect", with(VeltraSDK_I3cCccSETMWLDirect, 0x08, 64)},
        {"I3cCccSETMWLBroadcast", with(VeltraSDK_I3cCccSETMWLBroadcast, 64)},
        {"I3cCccSETMRLDirect", with(VeltraSDK_I3cCccSETMRLDirect, 0x08, 64, false, 0)},
        {"I3cCccSETMRLBroadcast", with(VeltraSDK_I3cCccSETMRLBroadcast, 64, false, 0)},
        {"I3cCccSETNEWDA", with(VeltraSDK_I3cCccSETNEWDA, 0x08, 0x09)},
        {"I3cCccSETDASA", with(VeltraSDK_I3cCccSETDASA, 0x50, 0x09)},
        {"I3cCccSETAASA", with(VeltraSDK_I3cCccSETAASA, buffer, 1)},
        {"I3cCccENECDirect", with(VeltraSDK_I3cCccENECDirect, 0x08, 1)},
        {"I3cCccENECBroadcast", with(VeltraSDK_I3cCccENECBroadcast, 1)},
        {"I3cCccDISECDirect", with(VeltraSDK_I3cCccDISECDirect, 0x08, 1)},
        {"I3cCccDISECBroadcast", with(VeltraSDK_I3cCccDISECBroadcast, 1)},
        {"I3cCccRSTACTDirect",
         with(VeltraSDK_I3cCccRSTACTDirect, 0x08, I3cTargetResetDefByte_NoReset,
              I3cTransferDirection_Write, buffer)},
        {"I3cCccRSTACTBroadcast",
         with(VeltraSDK_I3cCccRSTACTBroadcast, I3cTargetResetDefByte_NoReset)},
        {"I3cCccRSTDAA", with(VeltraSDK_I3cCccRSTDAA)},
        {"I3cCccENTDAA", with(VeltraSDK_I3cCccENTDAA)},
        {"I3cCccTransfer",
         with(VeltraSDK_I3cCccTransfer, 0x08, I3cTransferDirection_Read, I3cTransferMode_Sdr, false,
              I3cCccType_WithoutDefiningByte, 1, CCC_GETBCR, 0, buffer, 0, buffer, 1, buffer)},
    };
}();

// Null handles.

TEST(NullHandle, EveryOperationIsNotConnected) {
    for (const auto& [name, operation] : operations) {
        EXPECT_EQ(operation(nullptr), 0x4000) << name;
    }
}

TEST(NullHandle, ConnectingFails) {
    EXPECT_FALSE(VeltraSDK_Connect(nullptr, nullptr));
    EXPECT_FALSE(VeltraSDK_Connect(nullptr, ""));
    EXPECT_FALSE(VeltraSDK_Connect(nullptr, "1-1:1.0"));
    EXPECT_FALSE(VeltraSDK_ConnectWithSerialNumber(nullptr, "VA-0001"));
    EXPECT_FALSE(VeltraSDK_ConnectWithSerialNumber(nullptr, nullptr));
}

TEST(NullHandle, DisconnectingAndDestroyingDoNothing) {
    VeltraSDK_Disconnect(nullptr);
    VeltraSDK_Destroy(nullptr);
}

// Create, destroy, version.

TEST(Lifecycle, TheVersionNeedsNoHandle) {
    EXPECT_STREQ(VeltraSDK_GetVersion(), "1.2.3");
    EXPECT_EQ(VeltraSDK_GetVersion(), VeltraSDK_GetVersion()) << "a constant";
}

TEST(Lifecycle, CreatingAndDestroyingSendsNothingAndOpensNothing) {
    ScriptedHid hid;
    for (const int32_t milliseconds : {-1, 0, 1000, INT32_MIN, INT32_MAX}) {
        VeltraSDK_Handle* const handle = VeltraSDK_Create(milliseconds);
        ASSERT_NE(handle, nullptr);
        VeltraSDK_Destroy(handle);
    }
    EXPECT_TRUE(hid.writes().empty());
    EXPECT_EQ(hid.enumerateCalls(), 0U);
    EXPECT_EQ(hid.initCalls(), 5U);
    EXPECT_EQ(hid.exitCalls(), 5U);
}

using LifecycleTest = SdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(LifecycleTest);
using ImpatientLifecycleTest = ImpatientSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(ImpatientLifecycleTest);

TEST_P(LifecycleTest, DestroyingAConnectedHandleClosesTheLinkAndSendsNothing) {
    VeltraSDK_Handle* const handle = VeltraSDK_Create(0);
    ASSERT_TRUE(VeltraSDK_Connect(handle, nullptr));
    VeltraSDK_Destroy(handle);
    EXPECT_EQ(hid.openDevices(), 0U);
    expectNothingSent();
}

TEST_P(LifecycleTest, TheTimeOutIsPassedOnUnchanged) {
    for (const int32_t milliseconds : {0, -2, INT32_MIN}) {
        const OwnedHandle handle(VeltraSDK_Create(milliseconds));
        ASSERT_TRUE(VeltraSDK_Connect(handle.get(), nullptr));
        EXPECT_EQ(VeltraSDK_I3cResetBus(handle.get()), 0x2000) << milliseconds;
    }
    for (const int32_t milliseconds : {-1, INT32_MAX}) {
        const OwnedHandle handle(VeltraSDK_Create(milliseconds));
        ASSERT_TRUE(VeltraSDK_Connect(handle.get(), nullptr));
        hid.expectWrite(GetParam().output({0x13, 0x00, 0x01, 0x00, 0x05, 0x19}),
                        {GetParam().input({0x1B, 0x00, 0x01, 0x00, 0x05, 0x19, 0x34, 0x12})});
        EXPECT_EQ(VeltraSDK_I3cResetBus(handle.get()), 0x1234) << milliseconds;
    }
}

TEST_P(LifecycleTest, EveryOperationIsNotConnectedBeforeTheFirstConnect) {
    const OwnedHandle handle(VeltraSDK_Create(-1));
    for (const auto& [name, operation] : operations) {
        EXPECT_EQ(operation(handle.get()), 0x4000) << name;
    }
    expectNothingSent();
}

TEST_P(LifecycleTest, EveryOperationIsNotConnectedAfterADisconnect) {
    VeltraSDK_Disconnect(handle());
    for (const auto& [name, operation] : operations) {
        EXPECT_EQ(operation(handle()), 0x4000) << name;
    }
    expectNothingSent();
}

TEST_P(ImpatientLifecycleTest, EveryOperationThatGetsNoResponseSaysSo) {
    for (const auto& [name, operation] : operations) {
        ASSERT_TRUE(VeltraSDK_Connect(handle(), nullptr));
        const int16_t expected = name == "EnterBootMode" ? 0 : 0x2000;
        EXPECT_EQ(operation(handle()), expected) << name;
    }
}

TEST_P(ImpatientLifecycleTest, EveryOperationReturnsTheAdaptersStatus) {
    for (const auto& [name, operation] : operations) {
        if (name == "EnterBootMode" || name == "GetDeviceInfo" || name == "GetUsbString") {
            continue; // the first awaits no response, the others ignore the status
        }
        handle();
        // With the fields that the I2C scan insists on.
        deliver({0x27, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x80, 0x00, 0x00, 0x00});
        EXPECT_EQ(operation(handle()), -32767) << name;
    }
}

// Connecting.

TEST_P(LifecycleTest, ANullOrEmptyPathConnectsTheFirstKnownAdapter) {
    const OwnedHandle handle(VeltraSDK_Create(0));
    for (const char* const path : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_TRUE(VeltraSDK_Connect(handle.get(), path));
        EXPECT_EQ(hid.openedPath(), "1-1:1.0");
        VeltraSDK_Disconnect(handle.get());
    }
}

TEST_P(LifecycleTest, APathIsMatchedExactly) {
    hid.attach({"1-2:1.0", vendorId, GetParam().productId, L"VA-0002"});
    const OwnedHandle handle(VeltraSDK_Create(0));
    EXPECT_FALSE(VeltraSDK_Connect(handle.get(), "1-2"));
    EXPECT_FALSE(VeltraSDK_Connect(handle.get(), "VA-0002"));
    EXPECT_TRUE(VeltraSDK_Connect(handle.get(), "1-2:1.0"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
}

TEST_P(LifecycleTest, ASerialNumberIsMatchedExactly) {
    hid.attach({"1-2:1.0", vendorId, GetParam().productId, L"VA-\u00E9\U0001F50C"});
    const OwnedHandle handle(VeltraSDK_Create(0));
    EXPECT_FALSE(VeltraSDK_ConnectWithSerialNumber(handle.get(), "va-0001"));
    EXPECT_FALSE(VeltraSDK_ConnectWithSerialNumber(handle.get(), "1-2:1.0"));
    EXPECT_TRUE(VeltraSDK_ConnectWithSerialNumber(handle.get(), "VA-\u00E9\U0001F50C"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
}

TEST_P(LifecycleTest, AnEmptySerialNumberConnectsTheFirstKnownAdapter) {
    const OwnedHandle handle(VeltraSDK_Create(0));
    EXPECT_TRUE(VeltraSDK_ConnectWithSerialNumber(handle.get(), ""));
    EXPECT_EQ(hid.openedPath(), "1-1:1.0");
}

TEST_P(LifecycleTest, ANullSerialNumberIsALogicError) {
    const OwnedHandle handle(VeltraSDK_Create(0));
    try {
        VeltraSDK_ConnectWithSerialNumber(handle.get(), nullptr);
        ADD_FAILURE() << "no exception";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "basic_string: construction from null is not valid");
    }
    EXPECT_EQ(hid.enumerateCalls(), 0U);
    EXPECT_TRUE(VeltraSDK_Connect(handle.get(), nullptr)) << "the handle is as usable as before";
}

TEST_P(LifecycleTest, ASerialNumberThatCannotBeConvertedIsARangeError) {
    hid.detachAll();
    hid.attach({"1-1:1.0", vendorId, GetParam().productId, std::wstring(1, wchar_t{0x110000})});
    const OwnedHandle handle(VeltraSDK_Create(0));
    try {
        VeltraSDK_ConnectWithSerialNumber(handle.get(), "VA-0001");
        ADD_FAILURE() << "no exception";
    } catch (const std::range_error& error) {
        EXPECT_STREQ(error.what(), "wstring_convert::to_bytes");
    }
    EXPECT_TRUE(VeltraSDK_Connect(handle.get(), nullptr));
}

TEST_P(LifecycleTest, ConnectingFailsWithoutAnAdapter) {
    hid.detachAll();
    const OwnedHandle handle(VeltraSDK_Create(0));
    EXPECT_FALSE(VeltraSDK_Connect(handle.get(), nullptr));
    EXPECT_FALSE(VeltraSDK_ConnectWithSerialNumber(handle.get(), ""));
}

TEST_P(LifecycleTest, ADisconnectedHandleConnectsAgain) {
    VeltraSDK_Disconnect(handle());
    VeltraSDK_Disconnect(handle());
    EXPECT_EQ(hid.openDevices(), 0U);
    EXPECT_TRUE(VeltraSDK_Connect(handle(), nullptr));
    EXPECT_EQ(hid.openDevices(), 1U);
}

// Required pointers.

TEST_P(LifecycleTest, AMissingOutputPointerIsRefusedAndNothingIsSent) {
    uint8_t data = 0;
    uint16_t count = 0;
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 0, 1, nullptr, false), refused);
    EXPECT_EQ(
        VeltraSDK_I3cSdrRead(handle(), 0x08, nullptr, 0, 1, nullptr, &count, I3cTransferFlags_None),
        refused);
    EXPECT_EQ(
        VeltraSDK_I3cSdrRead(handle(), 0x08, nullptr, 0, 1, &data, nullptr, I3cTransferFlags_None),
        refused);
    expectNothingSent();
}

} // namespace
