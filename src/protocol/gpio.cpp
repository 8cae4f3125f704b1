// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

uint16_t VeltraAsyncSDK::gpioConfigurePin(uint16_t transactionId, GpioPinNumber pin,
                                          GpioFunctionality functionality, GpioLogicLevel level) {
    RequestFrame request(transactionId, CommandCode::GpioConfigurePin);
    request.u8(pin).u8(functionality);
    if (functionality == GpioFunctionality_Output) {
        request.u8(level);
    }
    return link->send(request);
}

uint16_t VeltraAsyncSDK::gpioDigitalWrite(uint16_t transactionId, GpioPinNumber pin,
                                          GpioLogicLevel level) {
    return link->send(RequestFrame(transactionId, CommandCode::GpioDigitalWrite).u8(pin).u8(level));
}

uint16_t VeltraAsyncSDK::gpioDigitalRead(uint16_t transactionId, GpioPinNumber pin) {
    return link->send(RequestFrame(transactionId, CommandCode::GpioDigitalRead).u8(pin));
}

uint16_t VeltraAsyncSDK::gpioConfigureInterrupt(uint16_t transactionId, GpioPinNumber pin,
                                                GpioTriggerType trigger) {
    return link->send(
        RequestFrame(transactionId, CommandCode::GpioConfigureInterrupt).u8(pin).u8(trigger));
}

uint16_t VeltraAsyncSDK::gpioDisableInterrupt(uint16_t transactionId, GpioPinNumber pin) {
    return link->send(RequestFrame(transactionId, CommandCode::GpioDisableInterrupt).u8(pin));
}
