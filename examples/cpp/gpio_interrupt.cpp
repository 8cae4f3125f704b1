// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Drives pin 0 high and low again, and receives the interrupts of pin 1, which is wired to it.
#include "example.hpp"
#include "inbox.hpp"

namespace {

constexpr GpioPinNumber drivenPin = GpioPinNumber_0;
constexpr GpioPinNumber watchedPin = GpioPinNumber_1;

const char* nameOf(GpioLogicLevel level) {
    return level == GpioLogicLevel_High ? "high" : "low";
}

bool setUp(VeltraSDK& sdk) {
    return succeeded("Setting the voltage", sdk.gpioSetVoltage(3300, true)) &&
           succeeded(
               "Configuring the output",
               sdk.gpioConfigurePin(drivenPin, GpioFunctionality_Output, GpioLogicLevel_Low)) &&
           succeeded(
               "Configuring the input",
               sdk.gpioConfigurePin(watchedPin, GpioFunctionality_Input, GpioLogicLevel_Low)) &&
           succeeded("Arming the interrupt",
                     sdk.gpioConfigureInterrupt(watchedPin, GpioTriggerType_BothEdges));
}

bool drive(VeltraSDK& sdk, Inbox& inbox, GpioLogicLevel level) {
    std::cout << "Driving pin " << int{drivenPin} << ' ' << nameOf(level) << '\n';
    if (!succeeded("Writing the output", sdk.gpioDigitalWrite(drivenPin, level))) {
        return false;
    }
    const auto item = inbox.take(NotificationKind_Gpio);
    const auto notification = item ? item->notification() : Notification{};
    const GpioData* const event = notification.gpio();
    if (event == nullptr) {
        std::cerr << "No interrupt came.\n";
        return false;
    }
    GpioLogicLevel seen = GpioLogicLevel_Low;
    if (!succeeded("Reading the input", sdk.gpioDigitalRead(watchedPin, seen))) {
        return false;
    }
    std::cout << "Interrupt of pin " << int{event->value} << ", which is " << nameOf(seen)
              << " now\n";
    return true;
}

} // namespace

int main() {
    Inbox inbox;
    VeltraSDK sdk(1000);
    // Before connecting.
    sdk.onNotification([&inbox](const Notification& notification) { inbox.put(notification); });
    const bool done = connectOrExplain(sdk) && setUp(sdk) &&
                      drive(sdk, inbox, GpioLogicLevel_High) &&
                      drive(sdk, inbox, GpioLogicLevel_Low) &&
                      succeeded("Disarming the interrupt", sdk.gpioDisableInterrupt(watchedPin));
    return done ? 0 : 1;
}
