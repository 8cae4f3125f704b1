// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Options.hpp"

#include <CLI/CLI.hpp>

#include <functional>

namespace veltra {

/// Every command that may also stand in a script, in the order in which the help lists them.
void addCommands(CLI::App& app, Invocation& invocation);

void addListCommand(CLI::App& app, Invocation& invocation);
void addInfoCommand(CLI::App& app, Invocation& invocation);
void addDoctorCommand(CLI::App& app, Invocation& invocation);
void addPowerCommands(CLI::App& app, Invocation& invocation);
void addGpioCommands(CLI::App& app, Invocation& invocation);
void addSpiCommands(CLI::App& app, Invocation& invocation);
void addFlashCommands(CLI::App& spi, Invocation& invocation);
void addI3cCommands(CLI::App& app, Invocation& invocation);
void addI3cCcc(CLI::App& i3c, Invocation& invocation);
void addI3cTransfers(CLI::App& i3c, Invocation& invocation);
void addWatchCommand(CLI::App& app, Invocation& invocation);
void addCompletionCommands(CLI::App& app, Invocation& invocation);
void addUartCommands(CLI::App& app, Invocation& invocation);
void addBatchCommand(CLI::App& app, Invocation& invocation);
void addI2cCommands(CLI::App& app, Invocation& invocation);
void addI2cTransfers(CLI::App& i2c, Invocation& invocation);
void addEepromCommand(CLI::App& i2c, Invocation& invocation);

/// Makes `action` the one that is carried out when the command has been chosen.
inline void onChosen(CLI::App& command, Invocation& invocation, Action action) {
    command.callback([&invocation, action = std::move(action)] { invocation.action = action; });
}

} // namespace veltra
