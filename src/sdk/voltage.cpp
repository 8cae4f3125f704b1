// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

uint16_t VeltraSDK::i2cSetBusVoltage(uint16_t millivolts, bool flag) {
    return engine->command(&VeltraAsyncSDK::i2cSetBusVoltage, millivolts, flag);
}

uint16_t VeltraSDK::spiSetBusVoltage(uint16_t millivolts, bool flag) {
    return engine->command(&VeltraAsyncSDK::spiSetBusVoltage, millivolts, flag);
}

uint16_t VeltraSDK::uartSetBusVoltage(uint16_t millivolts, bool flag) {
    return engine->command(&VeltraAsyncSDK::uartSetBusVoltage, millivolts, flag);
}

uint16_t VeltraSDK::gpioSetVoltage(uint16_t millivolts, bool flag) {
    return engine->command(&VeltraAsyncSDK::gpioSetVoltage, millivolts, flag);
}
