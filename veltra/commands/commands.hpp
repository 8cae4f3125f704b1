// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Options.hpp"

#include "command-line/Grammar.hpp"

#include <utility>

namespace veltra {

using command_line::Command;

/// Every command that may also stand in a script, in the order in which the help lists them.
void addCommands(Command app, Invocation& invocation);

void addListCommand(Command app, Invocation& invocation);
void addInfoCommand(Command app, Invocation& invocation);
void addDoctorCommand(Command app, Invocation& invocation);
void addPowerCommands(Command app, Invocation& invocation);
void addGpioCommands(Command app, Invocation& invocation);
void addSpiCommands(Command app, Invocation& invocation);
void addFlashCommands(Command spi, Invocation& invocation);
void addI3cCommands(Command app, Invocation& invocation);
void addI3cCcc(Command i3c, Invocation& invocation);
void addI3cTransfers(Command i3c, Invocation& invocation);
void addWatchCommand(Command app, Invocation& invocation);
void addCompletionCommands(Command app, Invocation& invocation);
void addUartCommands(Command app, Invocation& invocation);
void addExposeCommands(Command app, Invocation& invocation);
void addExposeKernel(Command expose, Invocation& invocation);
void addExposeTty(Command expose, Invocation& invocation);
void addRunCommand(Command app, Invocation& invocation);
void addBatchCommand(Command app, Invocation& invocation);
void addCaptureCommand(Command app, Invocation& invocation);
void addI2cCommands(Command app, Invocation& invocation);
void addI2cTransfers(Command i2c, Invocation& invocation);
void addEepromCommand(Command i2c, Invocation& invocation);

/// Makes `action` the one that is carried out when the command has been chosen.
inline void onChosen(Command command, Invocation& invocation, Action action) {
    command.onChosen([&invocation, action = std::move(action)] { invocation.action = action; });
}

} // namespace veltra
