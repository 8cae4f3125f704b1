// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"

int16_t VeltraSDK_GpioConfigurePin(VeltraSDK_Handle* handle, GpioPinNumber pin,
                                   GpioFunctionality functionality, bool hasLevel,
                                   GpioLogicLevel level) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.gpioConfigurePin(pin, functionality, hasLevel ? level : GpioLogicLevel_Low);
    });
}

int16_t VeltraSDK_GpioDigitalWrite(VeltraSDK_Handle* handle, GpioPinNumber pin,
                                   GpioLogicLevel level) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.gpioDigitalWrite(pin, level); });
}

int16_t VeltraSDK_GpioDigitalRead(VeltraSDK_Handle* handle, GpioPinNumber pin,
                                  GpioLogicLevel* level) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.gpioDigitalRead(pin, *level); });
}

int16_t VeltraSDK_GpioConfigureInterrupt(VeltraSDK_Handle* handle, GpioPinNumber pin,
                                         GpioTriggerType trigger) {
    return withSdk(handle,
                   [&](VeltraSDK& sdk) { return sdk.gpioConfigureInterrupt(pin, trigger); });
}

int16_t VeltraSDK_GpioDisableInterrupt(VeltraSDK_Handle* handle, GpioPinNumber pin) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.gpioDisableInterrupt(pin); });
}
