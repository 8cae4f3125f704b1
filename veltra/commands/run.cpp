// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/run.hpp"
#include "commands/commands.hpp"
#include "commands/i2c_options.hpp"

#include <memory>

namespace veltra {

void addRunCommand(Command app, Invocation& invocation) {
    const Command command =
        app.addCommand("run", "Starts a program that finds the adapter's buses as Linux's "
                              "/dev/i2c-N and /dev/spidevB.C");
    command.setFooter("The program and its arguments come last, behind --:\n"
                      "  veltra -V 3.3 run --pull-up 4k7 -- i2cdetect -y 0");
    const auto wanted = std::make_shared<DevicesOfProgram>();
    command
        .addOption("--i2c", wanted->i2c,
                   "/dev/i2c-N is this bus; 0=0 and 1=1 unless given, again for another")
        .typeName("N=BUS")
        .oneEachTime();
    command
        .addOption("--spi", wanted->spi,
                   "/dev/spidevB.C is this chip select; 0.0=0 and 0.1=1 unless given")
        .typeName("B.C=CS")
        .oneEachTime();
    addI2cSettings(command, wanted->settings);
    command.addOption("PROGRAM", wanted->program, "Behind --, with its arguments")
        .typeName("")
        .required();
    onChosen(command, invocation,
             [wanted](Context& context) { context.exitStatus = runProgram(*wanted, context); });
}

} // namespace veltra
