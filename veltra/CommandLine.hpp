// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Options.hpp"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace veltra {

/// The whole grammar: the options in front of the command, and every command.
void addGrammar(CLI::App& app, Invocation& invocation);

/// The grammar of a script's line: a voltage, and every command but another script.
void addScriptGrammar(CLI::App& app, Invocation& invocation);

/// Reads the words; whatever is wrong with them is a Failure that says what to type. Asking for
/// help or the version throws CLI::Success.
void parseWords(CLI::App& app, Invocation& invocation, const std::vector<std::string>& words);

/// Carries out one command line and returns what the program is to end with.
int runCommandLine(const std::vector<std::string>& words);

} // namespace veltra
