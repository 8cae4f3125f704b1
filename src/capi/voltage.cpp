// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"

int16_t VeltraSDK_I2cSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts, bool flag) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i2cSetBusVoltage(millivolts, flag); });
}

int16_t VeltraSDK_SpiSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts, bool flag) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.spiSetBusVoltage(millivolts, flag); });
}

int16_t VeltraSDK_UartSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts, bool flag) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.uartSetBusVoltage(millivolts, flag); });
}

int16_t VeltraSDK_GpioSetVoltage(VeltraSDK_Handle* handle, uint16_t millivolts, bool flag) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.gpioSetVoltage(millivolts, flag); });
}
