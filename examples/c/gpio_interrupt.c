/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Drives pin 0 high and low again, and receives the interrupts of pin 1, which is wired to it. */
#include "example.h"
#include "inbox.h"

enum { DrivenPin = GpioPinNumber_0, WatchedPin = GpioPinNumber_1 };

static const char* nameOf(GpioLogicLevel level) {
    return level == GpioLogicLevel_High ? "high" : "low";
}

static bool setUp(VeltraSDK_Handle* handle) {
    return succeeded("Setting the voltage", VeltraSDK_GpioSetVoltage(handle, 3300, true)) &&
           succeeded("Configuring the output",
                     VeltraSDK_GpioConfigurePin(handle, DrivenPin, GpioFunctionality_Output, true,
                                                GpioLogicLevel_Low)) &&
           succeeded("Configuring the input",
                     VeltraSDK_GpioConfigurePin(handle, WatchedPin, GpioFunctionality_Input, false,
                                                GpioLogicLevel_Low)) &&
           succeeded("Arming the interrupt", VeltraSDK_GpioConfigureInterrupt(
                                                 handle, WatchedPin, GpioTriggerType_BothEdges));
}

static bool drive(VeltraSDK_Handle* handle, GpioLogicLevel level) {
    InboxItem item;
    unsigned char event = 0;
    GpioLogicLevel seen = GpioLogicLevel_Low;
    printf("Driving pin %d %s\n", DrivenPin, nameOf(level));
    if (!succeeded("Writing the output", VeltraSDK_GpioDigitalWrite(handle, DrivenPin, level))) {
        return false;
    }
    if (!takeFromInbox(NotificationKind_Gpio, &item) ||
        !VeltraSDK_notificationAsGpio(&item.notification, &event)) {
        fputs("No interrupt came.\n", stderr);
        return false;
    }
    if (!succeeded("Reading the input", VeltraSDK_GpioDigitalRead(handle, WatchedPin, &seen))) {
        return false;
    }
    printf("Interrupt of pin %d, which is %s now\n", event, nameOf(seen));
    return true;
}

int main(void) {
    VeltraSDK_Handle* handle = VeltraSDK_Create(1000);
    VeltraSDK_onNotification(handle, putIntoInbox); /* before connecting */
    const bool done =
        connectOrExplain(handle) && setUp(handle) && drive(handle, GpioLogicLevel_High) &&
        drive(handle, GpioLogicLevel_Low) &&
        succeeded("Disarming the interrupt", VeltraSDK_GpioDisableInterrupt(handle, WatchedPin));
    VeltraSDK_Destroy(handle);
    return done ? 0 : 1;
}
