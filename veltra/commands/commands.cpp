// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "commands/commands.hpp"

namespace veltra {

void addCommands(Command app, Invocation& invocation) {
    addListCommand(app, invocation);
    addInfoCommand(app, invocation);
    addDoctorCommand(app, invocation);
    addPowerCommands(app, invocation);
    addI2cCommands(app, invocation);
    addI3cCommands(app, invocation);
    addSpiCommands(app, invocation);
    addUartCommands(app, invocation);
    addGpioCommands(app, invocation);
    addWatchCommand(app, invocation);
}

} // namespace veltra
