// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "CommandLine.hpp"

#include "Failure.hpp"
#include "Output.hpp"
#include "Session.hpp"
#include "VirtualAdapter.hpp"
#include "Words.hpp"
#include "commands/commands.hpp"

#include <algorithm>
#include <iostream>

namespace veltra {

namespace {

void addVoltageOption(CLI::App& app, Options& options) {
    app.add_option("-V,--voltage", options.voltage,
                   "Switches the supply of the command's bus on, in volts, such as 3.3")
        ->envname("VELTRA_VOLTAGE")
        ->type_name("VOLTS");
}

void addOptions(CLI::App& app, Options& options) {
    app.add_option("-d,--device", options.device,
                   "Serial number or path of the adapter, where several are plugged in")
        ->envname("VELTRA_DEVICE")
        ->type_name("SERIAL|PATH");
    addVoltageOption(app, options);
    app.add_option("--voltage-limit", options.voltageLimit, "Refuses a higher voltage")
        ->envname("VELTRA_VOLTAGE_LIMIT")
        ->type_name("VOLTS");
    app.add_option("-t,--timeout", options.timeout,
                   "How long an operation waits for its response, 5000 ms unless given")
        ->envname("VELTRA_TIMEOUT")
        ->type_name("MS");
    const auto json = app.add_flag("--json", options.json, "One JSON object a line");
    app.add_flag("--raw", options.raw, "Bare bytes, where a result is bytes")->excludes(json);
    app.add_flag("-y,--yes", options.yes, "Does not ask before what cannot be undone");
    app.add_flag("-q,--quiet", options.quiet, "No progress and no remarks");
    app.add_flag("-v,--verbose", options.verbose,
                 "Tells on the standard error output what goes over the wire");
    app.add_flag("--dry-run", options.dryRun, "Tells what would go over the wire, sends nothing");
    app.add_flag("--virtual{true}", options.board,
                 "Uses a virtual adapter; --virtual=BOARD puts a board of your own behind it");
}

/// The command that the words lead to, as far as they do.
const CLI::App& innermost(const CLI::App& app) {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    return chosen.empty() ? app : innermost(*chosen.front());
}

std::string pathOf(const CLI::App& app) {
    const CLI::App* const parent = app.get_parent();
    return parent == nullptr ? "" : (pathOf(*parent) + " " + app.get_name());
}

Operation operationOf(const CLI::App& command) {
    Operation operation{"", pathOf(command).substr(1), {}};
    operation.name = operation.subject;
    std::replace(operation.name.begin(), operation.name.end(), ' ', '.');
    return operation;
}

/// What is wrong, and where to read what would be right.
Failure complaint(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App& command = innermost(app);
    const std::vector<const CLI::App*> verbs =
        command.get_subcommands([](const CLI::App* verb) { return !verb->get_group().empty(); });
    const std::vector<std::string> surplus = app.remaining(true);
    std::string text = error.what();
    if (!verbs.empty() && command.get_require_subcommand_min() > 0) {
        std::vector<std::string> names;
        for (const CLI::App* const verb : verbs) {
            names.push_back(verb->get_name());
        }
        text = surplus.empty() ? "a command is missing: " + join(names, ", ")
                               : quoted(surplus.front()) + " is none of: " + join(names, ", ");
    } else if (!surplus.empty()) {
        text = quoted(surplus.front()) + " is not understood";
    }
    Failure failure = Failure::ofUsage(text);
    failure.hint = "See: veltra" + pathOf(command) + " --help";
    if (!pathOf(command).empty()) {
        failure.during = operationOf(command);
    }
    return failure;
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
        invocation.action(context);
        return static_cast<int>(ExitStatus::Done);
    } catch (Failure& failure) {
        if (!failure.during) {
            failure.during = session.operation();
        }
        return finish(output, failure);
    }
}

} // namespace

void addGrammar(CLI::App& app, Invocation& invocation) {
    app.set_version_flag("--version", VELTRASDK_VERSION);
    app.fallthrough();
    app.require_subcommand(1);
    addOptions(app, invocation.options);
    addCommands(app, invocation);
    addBatchCommand(app, invocation);
    addCompletionCommands(app, invocation);
}

void addScriptGrammar(CLI::App& app, Invocation& invocation) {
    app.fallthrough();
    app.require_subcommand(1);
    addVoltageOption(app, invocation.options);
    addCommands(app, invocation);
}

void parseWords(CLI::App& app, Invocation& invocation, const std::vector<std::string>& words) {
    invocation.options.typed = words;
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
        invocation.operation = operationOf(innermost(app));
    } catch (const CLI::Success&) {
        throw;
    } catch (const CLI::ParseError& error) {
        throw complaint(app, error);
    }
}

int runCommandLine(const std::vector<std::string>& words) {
    Invocation invocation;
    invocation.options.typedBehind = typedBefore();
    CLI::App app("Drives a USB host adapter for I3C, I2C, SPI, UART and GPIO", "veltra");
    addGrammar(app, invocation);
    Output output(invocation.options);
    try {
        parseWords(app, invocation, words);
        if (!invocation.options.board.empty()) {
            restartVirtually(words, invocation.options.board);
        }
        output = Output(invocation.options);
        return execute(invocation, output);
    } catch (const CLI::Success& asked) {
        return app.exit(asked, std::cout, std::cerr);
    } catch (const Failure& failure) {
        const auto end = words.end();
        invocation.options.json = std::find(words.begin(), end, "--json") != end;
        return finish(output, failure);
    } catch (const std::exception& error) {
        return finish(output, Failure(ExitStatus::Refused, "internal", error.what()));
    }
}

} // namespace veltra
