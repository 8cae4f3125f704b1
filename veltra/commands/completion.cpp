// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "completion/Completion.hpp"
#include "CommandLine.hpp"
#include "Output.hpp"
#include "buses/I3c.hpp"
#include "commands/commands.hpp"
#include "completion/bash_function.hpp"
#include "i3c/Target.hpp"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace veltra {

namespace {

/// As VELTRA_TIMEOUT says, or what a user waits for without noticing.
std::string askingTimeout() {
    const char* const wanted = std::getenv("VELTRA_TIMEOUT");
    return wanted == nullptr ? "100" : wanted;
}

std::vector<std::string> adapters() {
    std::vector<std::string> names;
    for (const VeltraSDK_AdapterInfo& adapter : VeltraSDK::adapters()) {
        names.emplace_back(adapter.serialNumber[0] == 0 ? adapter.path : adapter.serialNumber);
    }
    return names;
}

/// An adapter that is in use, or a bus that is not set up, offers nothing.
std::vector<std::string> targets(const std::string& device) {
    Options options;
    options.device = device;
    options.timeout = askingTimeout();
    Output output(options);
    std::vector<std::string> names;
    try {
        Session session(options, output);
        for (const I3cTargetInfo& target : I3c(session).table()) {
            if (target.dynamicAddress != 0) {
                names.push_back(hexNumber(target.dynamicAddress, 2));
                names.push_back("pid:" + pidOf(target));
            }
            if (target.staticAddress != 0) {
                names.push_back("static:" + hexNumber(target.staticAddress, 2));
            }
        }
    } catch (const Failure&) {
        names.clear();
    }
    return names;
}

void printCandidates(const std::vector<std::string>& words) {
    const size_t index = words.empty() ? 0 : parseNumber("index", words[0], 0, 0xFFFF);
    Invocation invocation;
    const command_line::Grammar grammar("", "veltra");
    addGrammar(grammar.root(), invocation);
    const std::vector<std::string> line(words.empty() ? words.end() : words.begin() + 1,
                                        words.end());
    for (const std::string& candidate :
         complete(grammar.root(), line, index, {adapters, targets})) {
        (void)std::printf("%s\n", candidate.c_str());
    }
}

} // namespace

void addCompletionCommands(Command app, Invocation& invocation) {
    const Command command =
        app.addCommand("completion", "Prints what makes a shell complete veltra's words");
    const auto shell = std::make_shared<std::string>();
    command.addOption("SHELL", *shell, "bash").required().typeName("").oneOf({"bash"});
    onChosen(command, invocation, [shell](Context&) { (void)std::fputs(bashFunction, stdout); });

    const Command hidden = app.addCommand("__complete", "");
    hidden.hide();
    hidden.passThrough();
    onChosen(hidden, invocation, [hidden](Context&) { printCandidates(hidden.remaining()); });
}

} // namespace veltra
