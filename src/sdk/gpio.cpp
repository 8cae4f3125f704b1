#include "sdk/Transaction.hpp"

namespace {

constexpr size_t levelOffset = 6;

} // namespace

uint16_t VeltraSDK::gpioSetVoltage(uint16_t millivolts, bool flag) {
    return transact([&](uint16_t id) { return asyncSdk->gpioSetVoltage(id, millivolts, flag); });
}

uint16_t VeltraSDK::gpioConfigurePin(GpioPinNumber pin, GpioFunctionality functionality,
                                     GpioLogicLevel level) {
    return transact(
        [&](uint16_t id) { return asyncSdk->gpioConfigurePin(id, pin, functionality, level); });
}

uint16_t VeltraSDK::gpioDigitalWrite(GpioPinNumber pin, GpioLogicLevel level) {
    return transact([&](uint16_t id) { return asyncSdk->gpioDigitalWrite(id, pin, level); });
}

uint16_t VeltraSDK::gpioDigitalRead(GpioPinNumber pin, GpioLogicLevel& level) {
    return transact([&](uint16_t id) { return asyncSdk->gpioDigitalRead(id, pin); },
                    [&](const ResponseFrame& response) {
                        response.copyTo(&level, levelOffset, sizeof(level));
                    });
}

uint16_t VeltraSDK::gpioConfigureInterrupt(GpioPinNumber pin, GpioTriggerType trigger) {
    return transact(
        [&](uint16_t id) { return asyncSdk->gpioConfigureInterrupt(id, pin, trigger); });
}

uint16_t VeltraSDK::gpioDisableInterrupt(GpioPinNumber pin) {
    return transact([&](uint16_t id) { return asyncSdk->gpioDisableInterrupt(id, pin); });
}
