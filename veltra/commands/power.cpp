// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Confirmation.hpp"
#include "Output.hpp"
#include "Session.hpp"
#include "buses/Gpio.hpp"
#include "commands/commands.hpp"

#include <memory>

namespace veltra {

namespace {

// The voltage must be one that the output can have, also when it is switched off.
constexpr uint16_t anyMillivolts = 1800;

struct Power {
    std::string state;
    bool i3c = false;
};

// Off holds: in a script no later command takes it for an order to switch the same voltage on.
void switchOffPins(Session& session) {
    session.perform("I/O voltage: off",
                    [](VeltraSDK& sdk) { return sdk.i2cSetBusVoltage(anyMillivolts, false); });
}

void switchOffI3c(Session& session) {
    session.perform("I3C voltage: off", [](VeltraSDK& sdk) { return sdk.i3cSetBusVoltage(0); });
}

void power(const Power& wanted, Context& context) {
    Session& session = context.session;
    if (wanted.state == "on" && context.options.voltage.empty()) {
        throw Failure::ofUsage("which voltage? " + context.options.typedBehind + "-V 3.3 power on");
    }
    if (wanted.state == "on") {
        session.forget(wanted.i3c ? "I3C supply" : "pins' supply");
        wanted.i3c ? session.supplyI3c() : session.supplyPins();
    } else {
        wanted.i3c ? switchOffI3c(session) : switchOffPins(session);
    }
    context.output.result(
        {{"op", "power"}, {"supply", wanted.i3c ? "i3c" : "io"}, {"on", wanted.state == "on"}}, "");
}

/// What has no voltage or was never set up is as safe as it gets.
void relax(Session& session, const std::string& request, const Session::Call& call) {
    const uint16_t result = session.attempt(request, call);
    if (result != ResultCode_Success && result != VeltraStatus_NoVoltage &&
        result != VeltraStatus_NotInitialised) {
        throw session.failureOf(result);
    }
}

void safe(Context& context) {
    Session& session = context.session;
    for (uint8_t pin = 0; pin < Gpio::pinCount; ++pin) {
        const auto number = static_cast<GpioPinNumber>(pin);
        const std::string name = "gpio pin " + std::to_string(pin);
        relax(session, name + ": no interrupt",
              [=](VeltraSDK& sdk) { return sdk.gpioDisableInterrupt(number); });
        relax(session, name + ": in", [=](VeltraSDK& sdk) {
            return sdk.gpioConfigurePin(number, GpioFunctionality_Input, GpioLogicLevel_Low);
        });
    }
    for (const uint8_t bus : {uint8_t{0}, uint8_t{1}}) {
        const std::string name = "i2c bus " + std::to_string(bus) + " pull-ups";
        session.forget(name);
        relax(session, name + " none",
              [=](VeltraSDK& sdk) { return sdk.i2cSetPullUpResistors(bus, 0); });
    }
    switchOffPins(session);
    switchOffI3c(session);
    context.output.result({{"op", "safe"}}, "pins are inputs, pull-ups and voltages off");
}

void boot(Context& context) {
    confirm(context.options, "the adapter will leave the bus for its boot mode");
    context.session.perform("boot mode", [](VeltraSDK& sdk) { return sdk.enterBootMode(); });
    context.output.result({{"op", "boot"}}, "the adapter is in its boot mode");
}

} // namespace

void addPowerCommands(Command app, Invocation& invocation) {
    const Command powerCommand = app.addCommand("power", "Switches a supply, as -V does");
    const auto wanted = std::make_shared<Power>();
    powerCommand.addOption("STATE", wanted->state, "on, with -V in front; or off")
        .required()
        .typeName("")
        .oneOf({"on", "off"});
    powerCommand.addFlag("--i3c", wanted->i3c, "The I3C bus's supply, not that of the pins");
    onChosen(powerCommand, invocation, [wanted](Context& context) { power(*wanted, context); });
    onChosen(app.addCommand("safe", "Switches everything off that can be"), invocation, safe);
    onChosen(app.addCommand("boot", "Sends the adapter into its boot mode"), invocation, boot);
}

} // namespace veltra
