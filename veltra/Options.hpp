// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Failure.hpp"

#include <functional>
#include <string>
#include <vector>

namespace veltra {

class Output;
class Session;

/// What stands in front of the command.
struct Options {
    std::string device;  ///< Serial number or path; empty takes the only one there is.
    std::string voltage; ///< In volts; empty leaves it as it is.
    std::string voltageLimit;
    std::string timeout = "5000"; ///< In milliseconds.
    std::string board;            ///< Of the virtual adapter; "true" for its own.
    std::string captureFile;      ///< Empty without a capture.
    bool json = false;
    bool raw = false;
    bool yes = false;
    bool quiet = false;
    bool verbose = false;
    bool dryRun = false;
    /// What was typed behind the program's name, for hints that say what to type next.
    std::vector<std::string> typed;
    /// What stands in front of it there: the program's name, nothing for a line of a batch.
    std::string typedBehind = "veltra ";
};

/// What a command finds when it is carried out.
struct Context {
    Session& session;
    Output& output;
    const Options& options;
    /// Of this program, where the command has come to its end: that of a program which it has run.
    int exitStatus = 0;
};

using Action = std::function<void(Context&)>;

/// What a command line asks for.
struct Invocation {
    Options options;
    /// What failures concern until the command says it more closely.
    Operation operation;
    Action action;
};

} // namespace veltra
