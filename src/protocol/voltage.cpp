// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

// One setting serves the four families.

uint16_t VeltraAsyncSDK::setI2cSpiUartGpioVoltage(uint16_t transactionId, uint16_t millivolts,
                                                  bool flag) {
    return link->send(RequestFrame(transactionId, CommandCode::SetI2cSpiUartGpioVoltage)
                          .u16(millivolts)
                          .flag(flag));
}

uint16_t VeltraAsyncSDK::i2cSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag) {
    return setI2cSpiUartGpioVoltage(transactionId, millivolts, flag);
}

uint16_t VeltraAsyncSDK::spiSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag) {
    return setI2cSpiUartGpioVoltage(transactionId, millivolts, flag);
}

uint16_t VeltraAsyncSDK::uartSetBusVoltage(uint16_t transactionId, uint16_t millivolts, bool flag) {
    return setI2cSpiUartGpioVoltage(transactionId, millivolts, flag);
}

uint16_t VeltraAsyncSDK::gpioSetVoltage(uint16_t transactionId, uint16_t millivolts, bool flag) {
    return setI2cSpiUartGpioVoltage(transactionId, millivolts, flag);
}
