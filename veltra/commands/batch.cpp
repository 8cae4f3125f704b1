// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "Script.hpp"
#include "Session.hpp"
#include "commands/commands.hpp"

#include <memory>
#include <optional>
#include <sstream>

namespace veltra {

namespace {

constexpr size_t maxScriptBytes = size_t{16} << 20U;

struct Batch {
    std::string file = "-";
    bool keepGoing = false;
};

void batch(const Batch& wanted, Context& context) {
    const Bytes contents = readFile(wanted.file, maxScriptBytes);
    std::istringstream lines(std::string(contents.begin(), contents.end()));
    // What one line brings about, such as an interrupt, a later line may watch for.
    context.session.keepArrivals();
    Script script(context);
    std::optional<Failure> first;
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        try {
            script.carryOut(line);
        } catch (Failure& failure) {
            if (!failure.during) {
                failure.during = Operation{"batch", "", {}};
            }
            failure.place =
                (wanted.file == "-" ? "stdin" : wanted.file) + ":" + std::to_string(number);
            if (!wanted.keepGoing || failure.exitStatus == ExitStatus::Interrupted) {
                throw;
            }
            context.output.failure(failure);
            if (!first) {
                first = failure;
            }
        }
    }
    if (first) {
        throw Failure(first->exitStatus, "batch", "not every line could be carried out");
    }
}

} // namespace

void addBatchCommand(Command app, Invocation& invocation) {
    const Command command = app.addCommand(
        "batch", "The same commands, one a line, over one connection; beside them: sleep MS, "
                 "expect HEX, echo TEXT, set NAME=VALUE");
    const auto wanted = std::make_shared<Batch>();
    command.addOption("FILE", wanted->file, "The script; the standard input unless given")
        .typeName("");
    command.addFlag("--keep-going", wanted->keepGoing, "Goes on behind a line that fails");
    onChosen(command, invocation, [wanted](Context& context) { batch(*wanted, context); });
}

} // namespace veltra
