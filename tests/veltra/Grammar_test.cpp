// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "CommandLine.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>

namespace veltra {
namespace {

/// The commands that can be typed: those that have no more behind them.
std::vector<std::string> commandsOf(command_line::Command command, const std::string& inFront) {
    std::vector<std::string> typed;
    for (const command_line::Command next : command.commands()) {
        if (next.isHidden()) {
            continue;
        }
        const std::string path = inFront + next.name();
        const std::vector<std::string> behind = commandsOf(next, path + " ");
        typed.insert(typed.end(), behind.begin(), behind.end());
        if (!next.requiresCommand() && path != "uart term") { // which needs a terminal
            typed.push_back(path);
        }
    }
    return typed;
}

bool hasLine(const std::string& file, const std::string& pattern) {
    std::ifstream lines(std::string(VELTRA_TESTS) + "/" + file);
    EXPECT_TRUE(lines.is_open()) << file;
    const std::regex wanted(pattern);
    for (std::string line; std::getline(lines, line);) {
        if (std::regex_match(line, wanted)) {
            return true;
        }
    }
    return false;
}

TEST(Grammar, EveryCommandOfAScriptIsTriedOnABoardOfTheTestsOwnInTextAndAsJson) {
    Invocation invocation;
    const command_line::Grammar grammar("", "");
    addScriptGrammar(grammar.root(), invocation);
    const std::vector<std::string> commands = commandsOf(grammar.root(), "");
    EXPECT_FALSE(commands.empty());
    for (const std::string& command : commands) {
        EXPECT_TRUE(hasLine("boards/every_command.veltra", "(-V \\S+ )?" + command + "( .*)?"))
            << command;
    }
    for (const char* const form : {"", "--json "}) {
        EXPECT_TRUE(hasLine("golden/own_board.txt",
                            "\\$ veltra " + std::string(form) + "-y batch every_command.veltra .*"))
            << form;
    }
}

} // namespace
} // namespace veltra
