// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "commands/commands.hpp"
#include "expose/KernelBuses.hpp"

#include <memory>
#include <string>
#include <vector>

namespace veltra {

namespace {

/// The kernel gives up a message behind two seconds; it must hear why before.
constexpr int maxPatienceMs = 1500;

struct Lent {
    I2cSettings settings;
    std::vector<std::string> buses;
};

void exposeKernel(const Lent& wanted, Context& context) {
    std::vector<I2cSettings> buses;
    for (const std::string& bus : wanted.buses) {
        buses.push_back(wanted.settings);
        buses.back().bus = static_cast<int>(parseNumber("bus", bus, 0, 1));
    }
    if (buses.size() > 1 && buses[0].bus == buses[1].bus) {
        throw Failure::ofUsage("a bus can be lent once only");
    }
    if (context.session.rehearses()) {
        for (const I2cSettings& settings : buses) {
            const I2c bus(context.session, settings);
        }
        return; // the rest is for others to say
    }
    context.session.limitPatience(maxPatienceMs);
    context.session.concernFamily("i2c");
    lendToKernel(context.session, context.output, buses);
}

} // namespace

void addExposeKernel(Command expose, Invocation& invocation) {
    const Command command =
        expose.addCommand("kernel", "I2C buses to Linux itself and its drivers; needs root");
    const auto wanted = std::make_shared<Lent>();
    command.addOption("--i2c", wanted->buses, "The bus, 0 or 1; or both, one behind the other")
        .required()
        .typeName("BUS...");
    command.addOption("--clock", wanted->settings.clock, "Such as 100k; 400k unless given")
        .typeName("HZ");
    command
        .addOption("--pull-up", wanted->settings.pullUp,
                   "The adapter's resistors: none, 10k, 4k7 or 2k2; left alone unless given")
        .typeName("OHMS");
    command.addFlag("--retry-busy", wanted->settings.retryBusy,
                    "Repeats an address that is not acknowledged");
    onChosen(command, invocation, [wanted](Context& context) { exposeKernel(*wanted, context); });
}

} // namespace veltra
