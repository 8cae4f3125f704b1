// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "commands/commands.hpp"
#include "commands/uart_options.hpp"
#include "expose/UartTerminal.hpp"
#include "expose/tty/FixedName.hpp"

#include <memory>
#include <optional>
#include <stdexcept>

namespace veltra {

namespace {

struct Terminal {
    UartSettings settings;
    std::string link;
};

void exposeTty(const Terminal& wanted, Context& context) {
    if (context.session.rehearses()) {
        const Uart uart(context.session, context.output, wanted.settings);
        return; // the rest is for others to say
    }
    try {
        UartTerminal terminal(context.session, context.output, wanted.settings);
        std::optional<tty::FixedName> link;
        if (!wanted.link.empty()) {
            link.emplace(wanted.link, terminal.path());
        }
        context.output.result({{"op", "expose.tty"},
                               {"path", terminal.path()},
                               {"link", wanted.link.empty() ? Json(nullptr) : Json(wanted.link)}},
                              terminal.path());
        terminal.run();
    } catch (const std::runtime_error& error) { // of the terminal or its name
        throw Failure(ExitStatus::Refused, "file", error.what());
    }
}

} // namespace

void addExposeTty(Command expose, Invocation& invocation) {
    const Command command =
        expose.addCommand("tty", "The UART to programs for serial ports, as a terminal");
    const auto wanted = std::make_shared<Terminal>();
    addUartOptions(command, wanted->settings);
    command.addOption("--link", wanted->link, "A name for it that stays the same; without a colon")
        .typeName("PATH");
    onChosen(command, invocation, [wanted](Context& context) { exposeTty(*wanted, context); });
}

} // namespace veltra
