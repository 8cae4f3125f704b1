// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "trace/Session.hpp"

#include <veltrasdk/Notification.hpp>
#include <veltrasdk/veltrasdk.h>

#include <array>
#include <utility>

namespace test_support {

namespace {

const Bytes registerAddress{0x12, 0x34};
const Bytes sent{0xDE, 0xAD, 0xBE};
const Bytes longMessage(1100, 0x55);

/// As much as an adapter can make a function store.
std::array<uint8_t, 0xFFFF> room;

Bytes stored(size_t count) {
    return {room.begin(), room.begin() + static_cast<std::ptrdiff_t>(count)};
}

Session* listening = nullptr;

void onNotification(const Notification* each) {
    listening->say("notification", each->kind, Bytes(each->data, each->data + each->size));
}

void useI2c(Session& session, VeltraSDK_Handle* handle) {
    uint8_t* const data = room.data();
    uint8_t sevenBit = 0;
    uint8_t tenBit = 0;
    session.say("I2cSetBusVoltage", VeltraSDK_I2cSetBusVoltage(handle, 3300, true));
    session.say("I2cControllerInit", VeltraSDK_I2cControllerInit(handle, 1, 400'000, 2));
    session.say("I2cSetParameters", VeltraSDK_I2cSetParameters(handle, 1, 100'000, 0));
    session.say("I2cSetPullUpResistors", VeltraSDK_I2cSetPullUpResistors(handle, 1, 2));
    const int16_t scan = VeltraSDK_I2cScanBus(handle, data, 255, &sevenBit, &tenBit, 1, true);
    session.say("I2cScanBus", scan, stored(scan == 0 ? sevenBit : 0U), sevenBit, tenBit);
    session.say("I2cWrite", VeltraSDK_I2cWrite(handle, 1, 0x50, registerAddress.data(), 2,
                                               sent.data(), 3, false));
    session.say("I2cWrite",
                VeltraSDK_I2cWrite(handle, 1, 0x50, nullptr, 0, longMessage.data(), 1100, true));
    const int16_t shortRead =
        VeltraSDK_I2cRead(handle, 1, 0x50, registerAddress.data(), 2, 7, data, false);
    session.say("I2cRead", shortRead, stored(7));
    const int16_t longRead = VeltraSDK_I2cRead(handle, 1, 0x50, nullptr, 0, 1100, data, true);
    session.say("I2cRead", longRead, stored(1100));
    session.say("I2cRead",
                VeltraSDK_I2cRead(handle, 1, 0x50, registerAddress.data(), 5, 1, data, true));
}

void useSpiAndUart(Session& session, VeltraSDK_Handle* handle) {
    session.say("SpiSetBusVoltage", VeltraSDK_SpiSetBusVoltage(handle, 1800, true));
    session.say("SpiControllerInit",
                VeltraSDK_SpiControllerInit(handle, SpiBitOrder_MsbFirst, SpiMode_3,
                                            SpiDataWidth_8Bits, SpiChipSelect_1,
                                            SpiChipSelectPolarity_ActiveLow, 1'000'000));
    session.say("SpiSetParameters",
                VeltraSDK_SpiSetParameters(handle, SpiBitOrder_MsbFirst, SpiMode_0,
                                           SpiDataWidth_16Bits, SpiChipSelect_0,
                                           SpiChipSelectPolarity_ActiveLow, 2'000'000));
    const int16_t transfer = VeltraSDK_SpiTransfer(handle, sent.data(), 3, room.data(), 5);
    session.say("SpiTransfer", transfer, stored(5));
    session.say("UartSetBusVoltage", VeltraSDK_UartSetBusVoltage(handle, 3300, false));
    session.say("UartInit", VeltraSDK_UartInit(handle, UartBaudRate_115200, UartHwHandshake_None,
                                               UartParity_None, UartDataSize_8Bits, UartStopBit_1));
    session.say("UartSetParameters",
                VeltraSDK_UartSetParameters(handle, UartBaudRate_9600, UartHwHandshake_None,
                                            UartParity_None, UartDataSize_8Bits, UartStopBit_1));
    session.say("UartSendMessage", VeltraSDK_UartSendMessage(handle, sent.data(), 3));
    session.say("UartSendMessage", VeltraSDK_UartSendMessage(handle, longMessage.data(), 1100));
}

void useGpio(Session& session, VeltraSDK_Handle* handle) {
    auto level = GpioLogicLevel_Low;
    session.say("GpioSetVoltage", VeltraSDK_GpioSetVoltage(handle, 3300, true));
    session.say("GpioConfigurePin",
                VeltraSDK_GpioConfigurePin(handle, GpioPinNumber_2, GpioFunctionality_Output, true,
                                           GpioLogicLevel_High));
    session.say("GpioConfigurePin",
                VeltraSDK_GpioConfigurePin(handle, GpioPinNumber_3, GpioFunctionality_Input, false,
                                           GpioLogicLevel_High));
    session.say("GpioDigitalWrite",
                VeltraSDK_GpioDigitalWrite(handle, GpioPinNumber_2, GpioLogicLevel_High));
    session.say("GpioDigitalRead", VeltraSDK_GpioDigitalRead(handle, GpioPinNumber_3, &level),
                level);
    session.say("GpioConfigureInterrupt", VeltraSDK_GpioConfigureInterrupt(
                                              handle, GpioPinNumber_3, GpioTriggerType_BothEdges));
    session.say("GpioDisableInterrupt", VeltraSDK_GpioDisableInterrupt(handle, GpioPinNumber_3));
}

void useI3cBus(Session& session, VeltraSDK_Handle* handle) {
    const I3cTargetInfo target{0x50, 0x09, {1, 2, 3, 4, 5, 6}, 7, 8, 0x0A0B, 0x0C0D, 1, 1};
    const std::array<I3cTargetInfo, 2> targets{target, target};
    std::array<I3cTargetInfo, 16> table{};
    uint8_t count = 0;
    session.say("I3cSetBusVoltage", VeltraSDK_I3cSetBusVoltage(handle, 1800));
    session.say("I3cControllerInit",
                VeltraSDK_I3cControllerInit(handle, I3cPushPullRate_8_MHz,
                                            I3cOpenDrainTransferRate_1_MHz, I2cTransferRate_0_4_MHz,
                                            I3cDriveStrength_8_mA));
    session.say("I3cSetParameters",
                VeltraSDK_I3cSetParameters(handle, I3cPushPullRate_4_MHz,
                                           I3cOpenDrainTransferRate_1_MHz, I2cTransferRate_0_4_MHz,
                                           I3cDriveStrength_4_mA));
    session.say("I3cResetBus", VeltraSDK_I3cResetBus(handle));
    session.say("I3cInitBus", VeltraSDK_I3cInitBus(handle, targets.data(), 2));
    session.say("I3cGetDeviceTable",
                VeltraSDK_I3cGetDeviceTable(handle, table.data(), table.size(), &count), count);
    for (size_t i = 0; i < count; ++i) {
        session.append(shown(table.at(i)));
    }
    session.say(
        "I3cSetTargetDeviceConfiguration",
        VeltraSDK_I3cSetTargetDeviceConfiguration(handle, 0x09, I3cTargetConfiguration_RejectIbi));
    session.say("I3cTargetResetPattern", VeltraSDK_I3cTargetResetPattern(handle));
    session.say("I3cHdrExitPattern", VeltraSDK_I3cHdrExitPattern(handle));
}

void useI3cTransfers(Session& session, VeltraSDK_Handle* handle) {
    const auto flags = I3cTransferFlags_None;
    const uint8_t* const sub = registerAddress.data();
    uint16_t count = 0;
    session.say("I3cSdrWrite", VeltraSDK_I3cSdrWrite(handle, 0x09, sub, 2, sent.data(), 3, flags));
    const int16_t sdr = VeltraSDK_I3cSdrRead(handle, 0x09, sub, 2, 5, room.data(), &count, flags);
    session.say("I3cSdrRead", sdr, stored(count));
    session.say("I3cHdrDdrWrite", VeltraSDK_I3cHdrDdrWrite(handle, 0x09, 0x20, sent.data(), 3));
    const int16_t ddr = VeltraSDK_I3cHdrDdrRead(handle, 0x09, 0xA0, 5, &count, room.data());
    session.say("I3cHdrDdrRead", ddr, stored(count));
    session.say("I3cLegacyI2CWrite",
                VeltraSDK_I3cLegacyI2CWrite(handle, 0x50, sub, 2, sent.data(), 3, flags));
    const int16_t legacy =
        VeltraSDK_I3cLegacyI2CRead(handle, 0x50, sub, 2, 5, room.data(), &count, flags);
    session.say("I3cLegacyI2CRead", legacy, stored(count));
}

void useI3cCcc(Session& session, VeltraSDK_Handle* handle) {
    uint8_t* const data = room.data();
    uint8_t byte = 0;
    uint8_t count = 0;
    uint16_t word = 0;
    uint8_t hasSize = 0;
    const int16_t pid = VeltraSDK_I3cCccGETPID(handle, 0x09, data);
    session.say("I3cCccGETPID", pid, stored(6));
    session.say("I3cCccGETBCR", VeltraSDK_I3cCccGETBCR(handle, 0x09, &byte), byte);
    session.say("I3cCccGETDCR", VeltraSDK_I3cCccGETDCR(handle, 0x09, &byte), byte);
    session.say("I3cCccGETMWL", VeltraSDK_I3cCccGETMWL(handle, 0x09, &word), word);
    session.say("I3cCccGETMRL", VeltraSDK_I3cCccGETMRL(handle, 0x09, &word, &byte, &hasSize), word,
                byte, hasSize);
    const int16_t capabilities = VeltraSDK_I3cCccGETCAPS(handle, 0x09, data, &count, false, 0);
    session.say("I3cCccGETCAPS", capabilities, stored(count));
    const int16_t more = VeltraSDK_I3cCccGETCAPS(handle, 0x09, data, &count, true, 0x5A);
    session.say("I3cCccGETCAPS", more, stored(count));
    const int16_t status = VeltraSDK_I3cCccGETSTATUS(handle, 0x09, data, &count, false, 0);
    session.say("I3cCccGETSTATUS", status, stored(count));
    const int16_t other = VeltraSDK_I3cCccGETSTATUS(handle, 0x09, data, &count, true, 0x91);
    session.say("I3cCccGETSTATUS", other, stored(count));
    session.say("I3cCccSETMWLDirect", VeltraSDK_I3cCccSETMWLDirect(handle, 0x09, 0x1234));
    session.say("I3cCccSETMWLBroadcast", VeltraSDK_I3cCccSETMWLBroadcast(handle, 0x1234));
    session.say("I3cCccSETMRLDirect", VeltraSDK_I3cCccSETMRLDirect(handle, 0x09, 0x1234, true, 7));
    session.say("I3cCccSETMRLBroadcast", VeltraSDK_I3cCccSETMRLBroadcast(handle, 0x1234, false, 7));
    session.say("I3cCccSETNEWDA", VeltraSDK_I3cCccSETNEWDA(handle, 0x09, 0x0A));
    session.say("I3cCccSETDASA", VeltraSDK_I3cCccSETDASA(handle, 0x50, 0x0B));
    session.say("I3cCccSETAASA", VeltraSDK_I3cCccSETAASA(handle, registerAddress.data(), 2));
    session.say("I3cCccENECDirect", VeltraSDK_I3cCccENECDirect(handle, 0x09, 0x0B));
    session.say("I3cCccENECBroadcast", VeltraSDK_I3cCccENECBroadcast(handle, 0x08));
    session.say("I3cCccDISECDirect", VeltraSDK_I3cCccDISECDirect(handle, 0x09, 0x0B));
    session.say("I3cCccDISECBroadcast", VeltraSDK_I3cCccDISECBroadcast(handle, 0x08));
    session.say("I3cCccRSTACTDirect",
                VeltraSDK_I3cCccRSTACTDirect(handle, 0x09,
                                             I3cTargetResetDefByte_TimeToResetPeripheral,
                                             I3cTransferDirection_Read, &byte),
                byte);
    session.say("I3cCccRSTACTDirect",
                VeltraSDK_I3cCccRSTACTDirect(handle, 0x09, I3cTargetResetDefByte_NoReset,
                                             I3cTransferDirection_Write, nullptr));
    session.say("I3cCccRSTACTBroadcast",
                VeltraSDK_I3cCccRSTACTBroadcast(handle, I3cTargetResetDefByte_ResetWholeTarget));
    session.say("I3cCccRSTDAA", VeltraSDK_I3cCccRSTDAA(handle));
    session.say("I3cCccENTDAA", VeltraSDK_I3cCccENTDAA(handle));
}

void useSystem(Session& session, VeltraSDK_Handle* handle) {
    VeltraSDK_DeviceInfo info{};
    const int16_t result = VeltraSDK_GetDeviceInfo(handle, &info);
    std::string strings;
    for (const auto& [text, length] : {std::pair(info.usbString1, info.usbString1Length),
                                       std::pair(info.usbString2, info.usbString2Length),
                                       std::pair(info.usbString3, info.usbString3Length),
                                       std::pair(info.usbString4, info.usbString4Length),
                                       std::pair(info.usbString5, info.usbString5Length)}) {
        strings += text == nullptr ? "null" : std::string(text, length + 1);
        delete[] text;
    }
    session.say("GetDeviceInfo", result, strings);
}

void useEvery(Session& session, VeltraSDK_Handle* handle) {
    useSystem(session, handle);
    useI2c(session, handle);
    useSpiAndUart(session, handle);
    useGpio(session, handle);
    useI3cBus(session, handle);
    useI3cTransfers(session, handle);
    useI3cCcc(session, handle);
}

void useWhileItFails(Session& session, VeltraSDK_Handle* handle) {
    auto level = GpioLogicLevel_Low;
    const auto readPin = [&] {
        session.say("GpioDigitalRead", VeltraSDK_GpioDigitalRead(handle, GpioPinNumber_3, &level),
                    level);
    };
    session.append("# a late response");
    session.answer(false);
    readPin();
    session.deliver({0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    readPin();
    readPin();
    session.deliver({0x02, 0x00, 0x03, 0x14, 0x35, 0x12, 0x01});
    useSystem(session, handle);
    session.answer(true);
    readPin();
    session.append("# writes that fail");
    session.answer(false);
    session.failWriting();
    session.say("UartSendMessage", VeltraSDK_UartSendMessage(handle, longMessage.data(), 1100));
    session.append("# unplugged");
    session.unplug();
    readPin();
    useSystem(session, handle);
    session.say("Connect", VeltraSDK_Connect(handle, nullptr));
    readPin();
    session.plugIn();
    session.answer(true);
}

} // namespace

void useHandle(Session& session) {
    listening = &session;
    VeltraSDK_Handle* const handle = VeltraSDK_Create(0);
    VeltraSDK_onNotification(handle, onNotification);
    session.append("# not connected");
    session.say("I3cResetBus", VeltraSDK_I3cResetBus(handle));
    session.say("Connect", VeltraSDK_Connect(handle, "1-2:1.0"));
    session.append("# connected");
    session.say("Connect", VeltraSDK_Connect(handle, nullptr));
    session.say("Connect", VeltraSDK_Connect(handle, "1-2:1.0"));
    useEvery(session, handle);
    session.append("# notifications");
    session.deliver(gpioNotification);
    session.deliver(longNotification());
    useWhileItFails(session, handle);
    session.append("# connected again");
    VeltraSDK_Disconnect(handle);
    session.say("ConnectWithSerialNumber", VeltraSDK_ConnectWithSerialNumber(handle, "VA-0002"));
    session.say("ConnectWithSerialNumber", VeltraSDK_ConnectWithSerialNumber(handle, "VA-0001"));
    useSystem(session, handle);
    session.append("# boot mode");
    session.say("EnterBootMode", VeltraSDK_EnterBootMode(handle));
    session.say("EnterBootMode", VeltraSDK_EnterBootMode(handle));
    useSystem(session, handle);
    session.append("# connected, disconnected twice and destroyed");
    session.say("Connect", VeltraSDK_Connect(handle, "1-1:1.0"));
    VeltraSDK_Disconnect(handle);
    VeltraSDK_Disconnect(handle);
    VeltraSDK_Destroy(handle);
    listening = nullptr;
}

} // namespace test_support
