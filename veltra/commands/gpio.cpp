// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "buses/Gpio.hpp"
#include "Output.hpp"
#include "commands/commands.hpp"

#include <memory>

namespace veltra {

namespace {

using Words = std::vector<std::string>;

void tell(Context& context, uint8_t pin, GpioLogicLevel level) {
    const int value = level; // the adapter's word, which may be neither
    context.output.lastBytes.push_back(static_cast<uint8_t>(value));
    context.output.result({{"op", "gpio.get"}, {"pin", pin}, {"level", value}},
                          std::to_string(pin) + "=" + std::to_string(value));
}

void get(const Words& words, Context& context) {
    std::vector<uint8_t> pins;
    for (const std::string& word : words) {
        pins.push_back(Gpio::parsePin(word));
    }
    Gpio gpio(context.session);
    context.output.lastBytes.clear();
    for (const uint8_t pin : pins) {
        tell(context, pin, gpio.read(pin));
    }
}

void set(const Words& words, Context& context) {
    std::vector<std::pair<uint8_t, GpioLogicLevel>> wanted;
    for (const std::string& word : words) {
        const Assignment assignment = parseAssignment(word, "PIN=VALUE");
        wanted.emplace_back(Gpio::parsePin(assignment.name), Gpio::parseLevel(assignment.value));
    }
    Gpio gpio(context.session);
    for (const auto& [pin, level] : wanted) {
        gpio.write(pin, level);
        context.output.result({{"op", "gpio.set"}, {"pin", pin}, {"level", int{level}}}, "");
    }
}

void mode(const Words& words, Context& context) {
    std::vector<std::pair<uint8_t, std::string>> wanted;
    for (const std::string& word : words) {
        const Assignment assignment = parseAssignment(word, "PIN=MODE");
        wanted.emplace_back(Gpio::parsePin(assignment.name), assignment.value);
    }
    Gpio gpio(context.session);
    for (const auto& [pin, name] : wanted) {
        gpio.configure(pin, name);
        context.output.result({{"op", "gpio.mode"}, {"pin", pin}, {"mode", name}}, "");
    }
}

void info(const Words& /*wanted*/, Context& context) {
    Gpio gpio(context.session);
    for (uint8_t pin = 0; pin < Gpio::pinCount; ++pin) {
        const std::optional<GpioLogicLevel> level = gpio.look(pin);
        context.output.result(
            {{"op", "gpio.info"},
             {"pin", pin},
             {"configured", level.has_value()},
             {"level", level ? Json(int{*level}) : Json(nullptr)}},
            std::to_string(pin) + ": " +
                (level ? "level " + std::to_string(int{*level}) : "not configured"));
    }
}

using Carry = void (*)(const Words&, Context&);

void add(Command gpio, Invocation& invocation, const std::string& name,
         const std::string& description, const std::string& operands, Carry carry) {
    const Command command = gpio.addCommand(name, description);
    const auto words = std::make_shared<Words>();
    if (!operands.empty()) {
        command.addOption(operands, *words, "A pin is 0 to 7").required().typeName("");
    }
    onChosen(command, invocation, [=](Context& context) { carry(*words, context); });
}

} // namespace

void addGpioCommands(Command app, Invocation& invocation) {
    const Command gpio = app.addCommand("gpio", "The eight pins");
    gpio.requireCommand();
    add(gpio, invocation, "get", "Reads pins; one that is not configured becomes an input", "PIN",
        get);
    add(gpio, invocation, "set", "Drives pins; one that is not configured becomes an output",
        "PIN=VALUE", set);
    add(gpio, invocation, "mode", "Configures pins: in, in-up, in-down, out, out-high or od",
        "PIN=MODE", mode);
    add(gpio, invocation, "info", "Shows every pin, and configures none", "", info);
}

} // namespace veltra
