// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Options.hpp"

#include "command-line/Grammar.hpp"

#include <string>
#include <vector>

namespace veltra {

/// The whole grammar: the options in front of the command, and every command.
void addGrammar(command_line::Command root, Invocation& invocation);

/// The grammar of a script's line: a voltage, and every command but another script.
void addScriptGrammar(command_line::Command root, Invocation& invocation);

/// Reads the words; whatever is wrong with them is a Failure that says what to type. Asking for
/// help or the version throws command_line::Asked.
void parseWords(const command_line::Grammar& grammar, Invocation& invocation,
                const std::vector<std::string>& words);

/// Calls what was chosen; whatever goes wrong is a Failure that says in which operation.
void perform(const Invocation& invocation, Context& context);

/// Carries out one command line and returns what the program is to end with.
int runCommandLine(const std::vector<std::string>& words);

} // namespace veltra
