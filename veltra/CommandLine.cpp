// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "CommandLine.hpp"

#include "Capturing.hpp"
#include "Failure.hpp"
#include "Output.hpp"
#include "Restart.hpp"
#include "Session.hpp"
#include "VirtualAdapter.hpp"
#include "Words.hpp"
#include "commands/commands.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace veltra {

using command_line::Grammar;
using command_line::Refusal;

namespace {

void addVoltageOption(Command root, Options& options) {
    root.addOption("-V,--voltage", options.voltage,
                   "Switches the supply of the command's bus on, in volts, such as 3.3")
        .environment("VELTRA_VOLTAGE")
        .typeName("VOLTS");
}

void addOptions(Command root, Options& options) {
    root.addOption("-d,--device", options.device,
                   "Serial number or path of the adapter, where several are plugged in")
        .environment("VELTRA_DEVICE")
        .typeName("SERIAL|PATH");
    addVoltageOption(root, options);
    root.addOption("--voltage-limit", options.voltageLimit, "Refuses a higher voltage")
        .environment("VELTRA_VOLTAGE_LIMIT")
        .typeName("VOLTS");
    root.addOption("-t,--timeout", options.timeout,
                   "How long an operation waits for its response, 5000 ms unless given")
        .environment("VELTRA_TIMEOUT")
        .typeName("MS");
    const auto json = root.addFlag("--json", options.json, "One JSON object a line");
    root.addFlag("--raw", options.raw, "Bare bytes, where a result is bytes").excludes(json);
    root.addFlag("-y,--yes", options.yes, "Does not ask before what cannot be undone");
    root.addFlag("-q,--quiet", options.quiet, "No progress and no remarks");
    root.addFlag("-v,--verbose", options.verbose,
                 "Tells on the standard error output what goes over the wire");
    root.addFlag("--dry-run", options.dryRun, "Tells what would go over the wire, sends nothing");
    root.addFlag("--virtual{true}", options.board,
                 "Uses a virtual adapter; --virtual=BOARD puts a board of your own behind it");
    root.addOption("--capture", options.captureFile,
                   "Keeps what goes over the wire in a file for Wireshark, which it is appended to")
        .typeName("FILE");
}

/// The command that the words lead to, as far as they do.
Command innermost(Command command) {
    const std::optional<Command> chosen = command.chosen();
    return chosen ? innermost(*chosen) : command;
}

std::string pathOf(Command command) {
    const std::optional<Command> parent = command.parent();
    return parent ? pathOf(*parent) + " " + command.name() : "";
}

Operation operationOf(Command command) {
    Operation operation{"", pathOf(command).substr(1), {}};
    operation.name = operation.subject;
    std::replace(operation.name.begin(), operation.name.end(), ' ', '.');
    return operation;
}

bool startsProgram(Command command) {
    return command.name() == "run" || command.name() == "capture";
}

Failure refused(Command command, const std::string& text, const std::string& hint) {
    Failure failure = Failure::ofUsage(text).advise(hint);
    if (!pathOf(command).empty()) {
        failure.during = operationOf(command);
    }
    if (startsProgram(command)) {
        failure.exitStatus = ExitStatus::NotStarted;
    }
    return failure;
}

/// The same words with -- in front of the program, where these say which one is it.
std::string withSeparator(Command command, const std::vector<std::string>& words) {
    const bool takesFile = command.name() == "capture";
    const auto name = std::find(words.begin(), words.end(), command.name());
    const std::ptrdiff_t place = takesFile ? 2 : 1;
    const auto isOption = [](const std::string& word) { return word.rfind('-', 0) == 0; };
    if (words.end() - name <= place || std::any_of(name, name + place + 1, isOption)) {
        return "Type: veltra" + pathOf(command) + (takesFile ? " FILE" : " [OPTIONS]") +
               " -- PROGRAM";
    }
    const auto program = name + place;
    std::string typed = "Type: veltra ";
    std::for_each(words.begin(), program,
                  [&](const std::string& word) { typed += quoted(word) + " "; });
    return typed + "-- " + quoted(*program) + (program + 1 == words.end() ? "" : " ...");
}

/// Refuses a program without -- in front of it: its options would be taken for veltra's own.
void requireSeparator(Command root, const std::vector<std::string>& words) {
    const Command command = innermost(root);
    if (startsProgram(command) && command.option("PROGRAM").wasGiven() &&
        std::find(words.begin(), words.end(), "--") == words.end()) {
        throw refused(command, "-- is missing in front of the program",
                      withSeparator(command, words));
    }
}

/// What is wrong, and where to read what would be right.
Failure complaint(Command root, const std::vector<std::string>& words, const Refusal& refusal) {
    const Command command = innermost(root);
    const std::vector<std::string> surplus = root.remaining();
    std::string text = refusal.what();
    if (text == "PROGRAM is required" && (surplus.empty() || surplus.front() == "--")) {
        return refused(command, "-- " + text, withSeparator(command, words));
    }
    if (command.requiresCommand()) {
        std::vector<std::string> names;
        for (const Command verb : command.commands()) {
            if (!verb.isHidden()) {
                names.push_back(verb.name());
            }
        }
        text = surplus.empty() ? "a command is missing: " + join(names, ", ")
                               : quoted(surplus.front()) + " is none of: " + join(names, ", ");
    } else if (!surplus.empty()) {
        text = quoted(surplus.front()) + " is not understood";
    }
    return refused(command, text, "See: veltra" + pathOf(command) + " --help");
}

int finish(Output& output, const Failure& failure) {
    output.failure(failure);
    return static_cast<int>(failure.exitStatus);
}

int execute(Invocation& invocation, Output& output) {
    Session session(invocation.options, output);
    Context context{session, output, invocation.options};
    session.begin(invocation.operation, invocation.options);
    try {
        perform(invocation, context);
        return context.exitStatus;
    } catch (const Failure& failure) {
        return finish(output, failure);
    }
}

} // namespace

void addGrammar(Command root, Invocation& invocation) {
    root.setVersion(VELTRASDK_VERSION);
    root.takeOptionsAnywhere();
    root.requireCommand();
    addOptions(root, invocation.options);
    addCommands(root, invocation);
    addExposeCommands(root, invocation);
    addRunCommand(root, invocation);
    addBatchCommand(root, invocation);
    addCaptureCommand(root, invocation);
    addCompletionCommands(root, invocation);
}

void addScriptGrammar(Command root, Invocation& invocation) {
    root.takeOptionsAnywhere();
    root.requireCommand();
    addVoltageOption(root, invocation.options);
    addCommands(root, invocation);
}

void parseWords(const Grammar& grammar, Invocation& invocation,
                const std::vector<std::string>& words) {
    invocation.options.typed = words;
    try {
        grammar.parse(words);
        requireSeparator(grammar.root(), words);
        invocation.operation = operationOf(innermost(grammar.root()));
    } catch (const Refusal& refusal) {
        requireSeparator(grammar.root(), words);
        throw complaint(grammar.root(), words, refusal);
    }
}

void perform(const Invocation& invocation, Context& context) {
    const auto during = [&](Failure failure) {
        if (!failure.during) {
            failure.during = context.session.operation();
        }
        return failure;
    };
    try {
        invocation.action(context);
    } catch (const Failure& failure) {
        throw during(failure);
    } catch (const std::exception& error) {
        throw during(Failure::ofException(error));
    }
}

int runCommandLine(const std::vector<std::string>& words) {
    Invocation invocation;
    invocation.options.typedBehind = typedBefore();
    const Grammar grammar("Drives a USB host adapter for I3C, I2C, SPI, UART and GPIO", "veltra");
    addGrammar(grammar.root(), invocation);
    Output output(invocation.options);
    try {
        parseWords(grammar, invocation, words);
        if (!invocation.options.board.empty()) {
            restartVirtually(words, invocation.options.board);
        }
        if (!invocation.options.captureFile.empty()) {
            restartCaptured(words, invocation.options.captureFile);
        }
        output = Output(invocation.options);
        return execute(invocation, output);
    } catch (const command_line::Asked& asked) {
        (void)std::fputs(asked.what(), stdout);
        return static_cast<int>(ExitStatus::Done);
    } catch (const Failure& failure) {
        const auto end = std::find(words.begin(), words.end(), "--");
        invocation.options.json = std::find(words.begin(), end, "--json") != end;
        return finish(output, failure);
    } catch (const std::exception& error) {
        return finish(output, Failure::ofException(error));
    }
}

} // namespace veltra
