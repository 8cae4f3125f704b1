// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "trace/Session.hpp"

#include <veltrasdk/VeltraSDK.hpp>

namespace test_support {

namespace {

const Bytes registerAddress{0x12, 0x34};
const Bytes sent{0xDE, 0xAD, 0xBE};
const Bytes longMessage(1100, 0x55);

void useI2c(Session& session, VeltraSDK& sdk) {
    Bytes data;
    uint8_t sevenBit = 0;
    uint8_t tenBit = 0;
    session.say("i2cSetBusVoltage", sdk.i2cSetBusVoltage(3300, true));
    session.say("i2cControllerInit", sdk.i2cControllerInit(1, 400'000, 2));
    session.say("i2cSetParameters", sdk.i2cSetParameters(1, 100'000, 0));
    session.say("i2cSetPullUpResistors", sdk.i2cSetPullUpResistors(1, 2));
    session.say("i2cScanBus", sdk.i2cScanBus(data, &sevenBit, &tenBit, 1, true), data, sevenBit,
                tenBit);
    session.say("i2cWrite", sdk.i2cWrite(1, 0x50, registerAddress, sent, false));
    session.say("i2cWrite", sdk.i2cWrite(1, 0x50, {}, longMessage, true));
    session.say("i2cRead", sdk.i2cRead(1, 0x50, registerAddress, 7, data, false), data);
    session.say("i2cRead", sdk.i2cRead(1, 0x50, {}, 1100, data, true), data);
    session.say("i2cRead", sdk.i2cRead(1, 0x50, Bytes(5), 1, data, true), data);
}

void useSpiAndUart(Session& session, VeltraSDK& sdk) {
    Bytes command = sent;
    Bytes data;
    session.say("spiSetBusVoltage", sdk.spiSetBusVoltage(1800, true));
    session.say("spiControllerInit",
                sdk.spiControllerInit(SpiBitOrder_MsbFirst, SpiMode_3, SpiDataWidth_8Bits,
                                      SpiChipSelect_1, SpiChipSelectPolarity_ActiveLow, 1'000'000));
    session.say("spiSetParameters",
                sdk.spiSetParameters(SpiBitOrder_MsbFirst, SpiMode_0, SpiDataWidth_16Bits,
                                     SpiChipSelect_0, SpiChipSelectPolarity_ActiveLow, 2'000'000));
    session.say("spiTransfer", sdk.spiTransfer(command, data, 5), data);
    session.say("uartSetBusVoltage", sdk.uartSetBusVoltage(3300, false));
    session.say("uartInit", sdk.uartInit(UartBaudRate_115200, UartHwHandshake_None, UartParity_None,
                                         UartDataSize_8Bits, UartStopBit_1));
    session.say("uartSetParameters",
                sdk.uartSetParameters(UartBaudRate_9600, UartHwHandshake_None, UartParity_None,
                                      UartDataSize_8Bits, UartStopBit_1));
    session.say("uartSendMessage", sdk.uartSendMessage(sent));
    session.say("uartSendMessage", sdk.uartSendMessage(longMessage));
}

void useGpio(Session& session, VeltraSDK& sdk) {
    auto level = GpioLogicLevel_Low;
    session.say("gpioSetVoltage", sdk.gpioSetVoltage(3300, true));
    session.say("gpioConfigurePin", sdk.gpioConfigurePin(GpioPinNumber_2, GpioFunctionality_Output,
                                                         GpioLogicLevel_High));
    session.say("gpioDigitalWrite", sdk.gpioDigitalWrite(GpioPinNumber_2, GpioLogicLevel_High));
    session.say("gpioDigitalRead", sdk.gpioDigitalRead(GpioPinNumber_3, level), level);
    session.say("gpioConfigureInterrupt",
                sdk.gpioConfigureInterrupt(GpioPinNumber_3, GpioTriggerType_BothEdges));
    session.say("gpioDisableInterrupt", sdk.gpioDisableInterrupt(GpioPinNumber_3));
}

void useI3cBus(Session& session, VeltraSDK& sdk) {
    const I3cTargetInfo target{0x50, 0x09, {1, 2, 3, 4, 5, 6}, 7, 8, 0x0A0B, 0x0C0D, 1, 1};
    std::vector<I3cTargetInfo> table;
    session.say("i3cSetBusVoltage", sdk.i3cSetBusVoltage(1800));
    session.say("i3cControllerInit",
                sdk.i3cControllerInit(I3cPushPullRate_8_MHz, I3cOpenDrainTransferRate_1_MHz,
                                      I2cTransferRate_0_4_MHz, I3cDriveStrength_8_mA));
    session.say("i3cSetParameters",
                sdk.i3cSetParameters(I3cPushPullRate_4_MHz, I3cOpenDrainTransferRate_1_MHz,
                                     I2cTransferRate_0_4_MHz, I3cDriveStrength_4_mA));
    session.say("i3cResetBus", sdk.i3cResetBus());
    session.say("i3cInitBus", sdk.i3cInitBus({target, target}));
    const uint16_t tableRead = sdk.i3cGetDeviceTable(table); // before its size is taken
    session.say("i3cGetDeviceTable", tableRead, table.size());
    for (const I3cTargetInfo& each : table) {
        session.append(shown(each));
    }
    session.say("i3cSetTargetDeviceConfiguration",
                sdk.i3cSetTargetDeviceConfiguration(0x09, I3cTargetConfiguration_RejectIbi));
    session.say("i3cTargetResetPattern", sdk.i3cTargetResetPattern());
    session.say("i3cHdrExitPattern", sdk.i3cHdrExitPattern());
}

void useI3cTransfers(Session& session, VeltraSDK& sdk) {
    const auto flags = I3cTransferFlags_None;
    Bytes data;
    session.say("i3cSdrWrite", sdk.i3cSdrWrite(0x09, registerAddress, sent, flags));
    session.say("i3cSdrRead", sdk.i3cSdrRead(0x09, registerAddress, 5, data, flags), data);
    session.say("i3cHdrDdrWrite", sdk.i3cHdrDdrWrite(0x09, 0x20, sent));
    session.say("i3cHdrDdrRead", sdk.i3cHdrDdrRead(0x09, 0xA0, 5, data), data);
    session.say("i3cLegacyI2cWrite", sdk.i3cLegacyI2cWrite(0x50, registerAddress, sent, flags));
    session.say("i3cLegacyI2cRead", sdk.i3cLegacyI2cRead(0x50, registerAddress, 5, data, flags),
                data);
}

void useI3cCcc(Session& session, VeltraSDK& sdk) {
    Bytes data;
    uint8_t byte = 0;
    uint16_t word = 0;
    std::optional<uint8_t> size;
    session.say("i3cCccGETPID", sdk.i3cCccGETPID(0x09, data), data);
    session.say("i3cCccGETBCR", sdk.i3cCccGETBCR(0x09, byte), byte);
    session.say("i3cCccGETDCR", sdk.i3cCccGETDCR(0x09, byte), byte);
    session.say("i3cCccGETMWL", sdk.i3cCccGETMWL(0x09, word), word);
    session.say("i3cCccGETMRL", sdk.i3cCccGETMRL(0x09, word, size), word, size);
    session.say("i3cCccGETCAPS", sdk.i3cCccGETCAPS(0x09, data, std::nullopt), data);
    session.say("i3cCccGETCAPS", sdk.i3cCccGETCAPS(0x09, data, 0x5A), data);
    session.say("i3cCccGETSTATUS", sdk.i3cCccGETSTATUS(0x09, data, std::nullopt), data);
    session.say("i3cCccGETSTATUS", sdk.i3cCccGETSTATUS(0x09, data, 0x91), data);
    session.say("i3cCccSETMWLDirect", sdk.i3cCccSETMWLDirect(0x09, 0x1234));
    session.say("i3cCccSETMWLBroadcast", sdk.i3cCccSETMWLBroadcast(0x1234));
    session.say("i3cCccSETMRLDirect", sdk.i3cCccSETMRLDirect(0x09, 0x1234, 7));
    session.say("i3cCccSETMRLBroadcast", sdk.i3cCccSETMRLBroadcast(0x1234, std::nullopt));
    session.say("i3cCccSETNEWDA", sdk.i3cCccSETNEWDA(0x09, 0x0A));
    session.say("i3cCccSETDASA", sdk.i3cCccSETDASA(0x50, 0x0B));
    session.say("i3cCccSETAASA", sdk.i3cCccSETAASA({0x50, 0x51}));
    session.say("i3cCccENECDirect", sdk.i3cCccENECDirect(0x09, 0x0B));
    session.say("i3cCccENECBroadcast", sdk.i3cCccENECBroadcast(0x08));
    session.say("i3cCccDISECDirect", sdk.i3cCccDISECDirect(0x09, 0x0B));
    session.say("i3cCccDISECBroadcast", sdk.i3cCccDISECBroadcast(0x08));
    session.say("i3cCccRSTACTDirect",
                sdk.i3cCccRSTACTDirect(0x09, I3cTargetResetDefByte_TimeToResetPeripheral,
                                       I3cTransferDirection_Read, &byte),
                byte);
    session.say("i3cCccRSTACTDirect", sdk.i3cCccRSTACTDirect(0x09, I3cTargetResetDefByte_NoReset,
                                                             I3cTransferDirection_Write, nullptr));
    session.say("i3cCccRSTACTBroadcast",
                sdk.i3cCccRSTACTBroadcast(I3cTargetResetDefByte_ResetWholeTarget));
    session.say("i3cCccRSTDAA", sdk.i3cCccRSTDAA());
    session.say("i3cCccENTDAA", sdk.i3cCccENTDAA());
}

void useSystem(Session& session, VeltraSDK& sdk) {
    Bytes string;
    VeltraSDK::DeviceInfo info;
    session.say("getUsbString", sdk.getUsbString(string, 3), string);
    session.say("getDeviceInfo", sdk.getDeviceInfo(info), info.usbString1, info.usbString2,
                info.usbString3, info.usbString4, info.usbString5);
}

void useEvery(Session& session, VeltraSDK& sdk) {
    useSystem(session, sdk);
    useI2c(session, sdk);
    useSpiAndUart(session, sdk);
    useGpio(session, sdk);
    useI3cBus(session, sdk);
    useI3cTransfers(session, sdk);
    useI3cCcc(session, sdk);
}

void useWhileItFails(Session& session, VeltraSDK& sdk) {
    auto level = GpioLogicLevel_Low;
    const auto readPin = [&] {
        session.say("gpioDigitalRead", sdk.gpioDigitalRead(GpioPinNumber_3, level), level);
    };
    session.append("# a late response");
    session.answer(false);
    readPin();
    session.deliver({0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    readPin();
    readPin();
    session.deliver({0x02, 0x00, 0x03, 0x14, 0x35, 0x12, 0x01});
    useSystem(session, sdk);
    session.answer(true);
    readPin();
    session.append("# writes that fail");
    session.answer(false);
    session.failWriting();
    session.say("uartSendMessage", sdk.uartSendMessage(longMessage));
    session.append("# unplugged");
    session.unplug();
    readPin();
    useSystem(session, sdk);
    session.say("connect", sdk.connect(""));
    readPin();
    session.plugIn();
    session.answer(true);
}

} // namespace

void useClass(Session& session) {
    VeltraSDK sdk(0);
    sdk.onNotification([&](const Notification& each) {
        session.say("notification", each.kind, Bytes(each.data, each.data + each.size));
    });
    session.append("# not connected");
    session.say("i3cResetBus", sdk.i3cResetBus());
    session.say("connect", sdk.connect("1-2:1.0"));
    session.append("# connected");
    session.say("connect", sdk.connect(""));
    session.say("connect", sdk.connect("1-2:1.0"));
    useEvery(session, sdk);
    session.append("# notifications");
    session.deliver(gpioNotification);
    session.deliver(longNotification());
    useWhileItFails(session, sdk);
    session.append("# connected again");
    sdk.disconnect();
    session.say("connectWithSerialNumber", sdk.connectWithSerialNumber("VA-0002"));
    session.say("connectWithSerialNumber", sdk.connectWithSerialNumber("VA-0001"));
    useSystem(session, sdk);
    session.append("# boot mode");
    session.say("enterBootMode", sdk.enterBootMode());
    session.say("enterBootMode", sdk.enterBootMode());
    useSystem(session, sdk);
    session.append("# connected, disconnected twice and destroyed");
    session.say("connect", sdk.connect("1-1:1.0"));
    sdk.disconnect();
    sdk.disconnect();
}

} // namespace test_support
