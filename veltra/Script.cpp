// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Script.hpp"

#include "CommandLine.hpp"
#include "Interruption.hpp"
#include "Output.hpp"
#include "Session.hpp"

#include <cstdio>
#include <limits>
#include <poll.h>

namespace veltra {

namespace {

std::string only(const std::vector<std::string>& operands, const std::string& form) {
    if (operands.size() != 1) {
        throw Failure::ofUsage("not of the form: " + form);
    }
    return operands.front();
}

void sleep(const std::string& text) {
    const auto milliseconds =
        static_cast<int>(parseNumber("time", text, 0, std::numeric_limits<int>::max()));
    pollfd end{Interruption::descriptor(), POLLIN, 0};
    if (poll(&end, 1, milliseconds) != 0) {
        throw Failure::interruption();
    }
}

} // namespace

void Script::carryOut(const std::string& line) {
    std::vector<std::string> words = splitLine(line, variables);
    if (words.empty()) {
        return;
    }
    const std::string name = words.front();
    const std::vector<std::string> operands(words.begin() + 1, words.end());
    if (name == "sleep") {
        sleep(only(operands, "sleep MS"));
    } else if (name == "echo") {
        context.output.result({{"op", "echo"}, {"text", join(operands, " ")}}, join(operands, " "));
    } else if (name == "set") {
        const Assignment assignment =
            parseAssignment(only(operands, "set NAME=VALUE"), "NAME=VALUE");
        variables[assignment.name] = assignment.value;
    } else if (name == "expect") {
        expect(join(operands, ""));
    } else {
        carryOutCommand(words);
    }
}

void Script::expect(const std::string& pattern) const {
    const std::string difference = differenceOf(pattern, context.output.lastBytes);
    if (!difference.empty() && !context.session.rehearses()) {
        throw Failure(ExitStatus::NotAsExpected, "expect", difference);
    }
}

void Script::carryOutCommand(const std::vector<std::string>& words) {
    Invocation invocation;
    invocation.options = context.options;
    invocation.options.typedBehind.clear();
    const command_line::Grammar grammar("", "");
    addScriptGrammar(grammar.root(), invocation);
    try {
        parseWords(grammar, invocation, words);
    } catch (const command_line::Asked& asked) {
        (void)std::fputs(asked.what(), stdout);
        return;
    }
    context.session.begin(invocation.operation, invocation.options);
    Context own{context.session, context.output, invocation.options};
    try {
        perform(invocation, own);
    } catch (const Failure&) {
        context.session.begin({"batch", "batch", {}}, context.options);
        throw;
    }
    context.session.begin({"batch", "batch", {}}, context.options);
}

} // namespace veltra
