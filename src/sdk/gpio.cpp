// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

namespace {

constexpr size_t levelOffset = 6;

} // namespace

uint16_t VeltraSDK::gpioConfigurePin(GpioPinNumber pin, GpioFunctionality functionality,
                                     GpioLogicLevel level) {
    return engine->command(&VeltraAsyncSDK::gpioConfigurePin, pin, functionality, level);
}

uint16_t VeltraSDK::gpioDigitalWrite(GpioPinNumber pin, GpioLogicLevel level) {
    return engine->command(&VeltraAsyncSDK::gpioDigitalWrite, pin, level);
}

uint16_t VeltraSDK::gpioDigitalRead(GpioPinNumber pin, GpioLogicLevel& level) {
    return engine->ask(levelOffset + sizeof(level), &VeltraAsyncSDK::gpioDigitalRead, pin)
        .decoded([&](const ResponseFrame& response) {
            response.copyTo(&level, levelOffset, sizeof(level));
        });
}

uint16_t VeltraSDK::gpioConfigureInterrupt(GpioPinNumber pin, GpioTriggerType trigger) {
    return engine->command(&VeltraAsyncSDK::gpioConfigureInterrupt, pin, trigger);
}

uint16_t VeltraSDK::gpioDisableInterrupt(GpioPinNumber pin) {
    return engine->command(&VeltraAsyncSDK::gpioDisableInterrupt, pin);
}
