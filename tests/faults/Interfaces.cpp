// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/Interfaces.hpp"

#include "faults/FailingAllocation.hpp"
#include "support/ScriptedHid.hpp"

namespace test_support {

namespace {

/// Longer than what a string holds without the heap.
const char* const longSerialNumber = "VA-0001-with-more-characters-than-a-string-keeps-inside";

const Bytes subAddress{0x12, 0x34};

/// Takes several reports, also on the high-speed variant.
const Bytes longData = counting(3000);

} // namespace

bool isSpared() {
    return ScriptedHid::isServing();
}

bool ClassInterface::connectWithSerialNumber(const Object& sdk) {
    return sdk->connectWithSerialNumber(longSerialNumber);
}

void ClassInterface::onNotification(const Object& sdk, void (*handler)(const Notification*)) {
    // A handler too large to be kept inside the function object.
    const std::string text = longSerialNumber;
    sdk->onNotification([handler, text](const Notification& each) { handler(&each); });
}

const std::vector<ClassInterface::Operation>& ClassInterface::operations() {
    static const std::vector<Operation> all{
        {"gpioDigitalRead",
         [](const Object& sdk) {
             auto level = GpioLogicLevel_Low;
             return sdk->gpioDigitalRead(GpioPinNumber_1, level);
         }},
        {"getDeviceInfo",
         [](const Object& sdk) {
             VeltraSDK::DeviceInfo info;
             return sdk->getDeviceInfo(info);
         }},
        {"i2cScanBus",
         [](const Object& sdk) {
             Bytes found;
             uint8_t sevenBit = 0;
             uint8_t tenBit = 0;
             return sdk->i2cScanBus(found, &sevenBit, &tenBit, 0, false);
         }},
        {"i2cWrite",
         [](const Object& sdk) { return sdk->i2cWrite(0, 0x51, subAddress, longData, false); }},
        {"i2cRead",
         [](const Object& sdk) {
             Bytes data;
             return sdk->i2cRead(0, 0x51, subAddress, 20, data, false);
         }},
        {"spiTransfer",
         [](const Object& sdk) {
             Bytes sent{0x9F};
             Bytes received;
             return sdk->spiTransfer(sent, received, 4);
         }},
        {"uartSendMessage", [](const Object& sdk) { return sdk->uartSendMessage(longData); }},
        {"i3cInitBus",
         [](const Object& sdk) { return sdk->i3cInitBus(std::vector<I3cTargetInfo>(8)); }},
        {"i3cGetDeviceTable",
         [](const Object& sdk) {
             std::vector<I3cTargetInfo> table;
             return sdk->i3cGetDeviceTable(table);
         }},
        {"i3cSdrWrite",
         [](const Object& sdk) {
             return sdk->i3cSdrWrite(0x09, subAddress, longData, I3cTransferFlags_None);
         }},
        {"i3cSdrRead",
         [](const Object& sdk) {
             Bytes data;
             return sdk->i3cSdrRead(0x09, subAddress, 4, data, I3cTransferFlags_None);
         }},
        {"i3cCccGETPID",
         [](const Object& sdk) {
             Bytes pid;
             return sdk->i3cCccGETPID(0x09, pid);
         }},
        {"i3cCccGETCAPS",
         [](const Object& sdk) {
             Bytes capabilities;
             return sdk->i3cCccGETCAPS(0x09, capabilities, 0x01);
         }},
        {"i3cCccGETSTATUS",
         [](const Object& sdk) {
             Bytes status;
             return sdk->i3cCccGETSTATUS(0x09, status, 0x01);
         }},
        {"i3cCccSETAASA", [](const Object& sdk) { return sdk->i3cCccSETAASA(subAddress); }},
        {"i3cCccTransfer",
         [](const Object& sdk) {
             Bytes reply;
             return sdk->i3cCccTransfer(0x09, I3cTransferDirection_Write, I3cTransferMode_Sdr,
                                        false, I3cCccType_WithoutDefiningByte, 2, CCC{0x0B}, 0,
                                        subAddress, reply);
         }},
        {"enterBootMode", [](const Object& sdk) { return sdk->enterBootMode(); }},
    };
    return all;
}

bool FlatInterface::connectWithSerialNumber(const Object& handle) {
    return VeltraSDK_ConnectWithSerialNumber(handle.get(), longSerialNumber);
}

const std::vector<FlatInterface::Operation>& FlatInterface::operations() {
    static const std::vector<Operation> all{
        {"VeltraSDK_GpioDigitalRead",
         [](const Object& handle) {
             auto level = GpioLogicLevel_Low;
             return VeltraSDK_GpioDigitalRead(handle.get(), GpioPinNumber_1, &level);
         }},
        {"VeltraSDK_GetDeviceInfo",
         [](const Object& handle) {
             VeltraSDK_DeviceInfo info{};
             const int16_t result = VeltraSDK_GetDeviceInfo(handle.get(), &info);
             for (const char* const text : {info.usbString1, info.usbString2, info.usbString3,
                                            info.usbString4, info.usbString5}) {
                 delete[] text;
             }
             return result;
         }},
        {"VeltraSDK_I2cScanBus",
         [](const Object& handle) {
             std::array<uint8_t, 255> found{};
             uint8_t sevenBit = 0;
             uint8_t tenBit = 0;
             return VeltraSDK_I2cScanBus(handle.get(), found.data(), found.size(), &sevenBit,
                                         &tenBit, 0, false);
         }},
        {"VeltraSDK_I2cWrite",
         [](const Object& handle) {
             return VeltraSDK_I2cWrite(handle.get(), 0, 0x51, subAddress.data(), 2, longData.data(),
                                       static_cast<uint32_t>(longData.size()), false);
         }},
        {"VeltraSDK_I2cRead",
         [](const Object& handle) {
             std::array<uint8_t, 20> data{};
             return VeltraSDK_I2cRead(handle.get(), 0, 0x51, subAddress.data(), 2, data.size(),
                                      data.data(), false);
         }},
        {"VeltraSDK_SpiTransfer",
         [](const Object& handle) {
             Bytes received(0xFFFF);
             return VeltraSDK_SpiTransfer(handle.get(), subAddress.data(), 2, received.data(), 4);
         }},
        {"VeltraSDK_UartSendMessage",
         [](const Object& handle) {
             return VeltraSDK_UartSendMessage(handle.get(), longData.data(),
                                              static_cast<uint16_t>(longData.size()));
         }},
        {"VeltraSDK_I3cInitBus",
         [](const Object& handle) {
             const std::array<I3cTargetInfo, 8> targets{};
             return VeltraSDK_I3cInitBus(handle.get(), targets.data(), targets.size());
         }},
        {"VeltraSDK_I3cGetDeviceTable",
         [](const Object& handle) {
             std::array<I3cTargetInfo, 8> table{};
             uint8_t count = 0;
             return VeltraSDK_I3cGetDeviceTable(handle.get(), table.data(), table.size(), &count);
         }},
        {"VeltraSDK_I3cSdrWrite",
         [](const Object& handle) {
             return VeltraSDK_I3cSdrWrite(handle.get(), 0x09, subAddress.data(), 2, longData.data(),
                                          static_cast<uint16_t>(longData.size()),
                                          I3cTransferFlags_None);
         }},
        {"VeltraSDK_I3cSdrRead",
         [](const Object& handle) {
             Bytes data(0xFFFF);
             uint16_t count = 0;
             return VeltraSDK_I3cSdrRead(handle.get(), 0x09, subAddress.data(), 2, 4, data.data(),
                                         &count, I3cTransferFlags_None);
         }},
        {"VeltraSDK_I3cCccGETPID",
         [](const Object& handle) {
             std::array<uint8_t, 255> pid{};
             return VeltraSDK_I3cCccGETPID(handle.get(), 0x09, pid.data());
         }},
        {"VeltraSDK_GetUsbString",
         [](const Object& handle) {
             std::array<char, 255> text{};
             return VeltraSDK_GetUsbString(handle.get(), 3, text.data(), text.size());
         }},
        {"VeltraSDK_I3cCccTransfer",
         [](const Object& handle) {
             std::array<uint8_t, 255> reply{};
             uint8_t count = 0;
             return VeltraSDK_I3cCccTransfer(
                 handle.get(), 0x09, I3cTransferDirection_Write, I3cTransferMode_Sdr, false,
                 I3cCccType_WithoutDefiningByte, 2, CCC{0x0B}, 0, subAddress.data(), 2,
                 reply.data(), reply.size(), &count);
         }},
        {"VeltraSDK_I3cCccSETAASA",
         [](const Object& handle) {
             return VeltraSDK_I3cCccSETAASA(handle.get(), subAddress.data(), subAddress.size());
         }},
        {"VeltraSDK_EnterBootMode",
         [](const Object& handle) { return VeltraSDK_EnterBootMode(handle.get()); }},
    };
    return all;
}

} // namespace test_support
