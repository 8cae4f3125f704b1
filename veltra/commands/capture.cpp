// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Capturing.hpp"
#include "commands/commands.hpp"

#include <memory>

namespace veltra {

void addCaptureCommand(Command app, Invocation& invocation) {
    struct Captured {
        std::string file;
        std::vector<std::string> program;
    };
    const Command command = app.addCommand(
        "capture", "Starts a program and keeps what it says with adapters in a file for Wireshark");
    command.setFooter("The program and its arguments come last, behind --:\n"
                      "  veltra capture bench.pcapng -- ./my_program its arguments");
    const auto captured = std::make_shared<Captured>();
    command.addOption("FILE", captured->file, "In pcapng; what is captured is appended to it")
        .required()
        .typeName("");
    command.addOption("PROGRAM", captured->program, "Behind --, with its arguments")
        .required()
        .typeName("");
    onChosen(command, invocation,
             [captured](Context&) { startCaptured(captured->file, captured->program); });
}

} // namespace veltra
