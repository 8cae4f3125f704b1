// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/attach.hpp"
#include "cli/check.hpp"
#include "cli/failure.hpp"
#include "cli/replay.hpp"
#include "cli/run.hpp"
#include "cli/serve.hpp"
#include "cli/tell.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

/// As env(1) refuses its own: the programs that `run` starts seldom end with it.
constexpr int refusedCommandLine = virtual_adapter::cannotSetUp;

/// Started with a standard stream closed, the process would take the next file that it opens for
/// that stream. Programs that `run` starts find it closed all the same.
void occupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF) {
            open("/dev/null", O_RDWR | O_CLOEXEC); // takes the lowest number that is free
        }
    }
}

bool contains(const std::vector<std::string>& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::vector<std::string> namesOfCommands(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands({})) {
        names.push_back(command->get_name());
    }
    return names;
}

/// What the parser's own message leaves out about a word at the command's place; empty where it
/// leaves nothing out.
std::string complaintAboutCommand(const CLI::App& app, char** argv, char** end) {
    const std::vector<std::string> commands = namesOfCommands(app);
    if (end - argv < 2 || contains(commands, argv[1]) || !contains(app.remaining(), argv[1])) {
        return {};
    }
    return "'" + std::string(argv[1]) +
           "' is none of its commands: " + CLI::detail::join(commands, ", ") +
           "; --help says what they do";
}

/// What to type in place of `run [OPTIONS] PROGRAM`; empty without such a program.
std::string complaintAboutSeparator(const CLI::App& app, char** argv, char** end) {
    const std::vector<std::string> unknown = app.remaining(true);
    char** const program = std::find_if(argv, end, [&](const std::string& argument) {
        return argument.rfind('-', 0) != 0 && contains(unknown, argument);
    });
    if (program == end) {
        return {};
    }
    const std::string command = argv[1];
    const std::string between = command == "replay" ? "FILE " : "[OPTIONS] ";
    return "-- is missing in front of the program; type: veltra-virtual-adapter " + command + " " +
           (program - argv > 2 ? between : "") + "-- " + *program +
           (end - program > 1 ? " ..." : "");
}

int runCommandLine(int argc, char** argv) {
    // What follows -- is another program's command line.
    char** const end = argv + argc;
    const bool runs =
        argc > 1 && (argv[1] == std::string("run") || argv[1] == std::string("replay"));
    char** const separator = runs ? std::find(argv, end, std::string("--")) : end;
    const std::vector<std::string> program(std::min(separator + 1, end), end);

    CLI::App app("A stand-in for the adapter: programs run, and are tested, without hardware",
                 "veltra-virtual-adapter");
    app.set_version_flag("--version", VELTRASDK_VERSION);
    app.require_subcommand(1);
    virtual_adapter::addRunCommand(app, program);
    virtual_adapter::addServeCommand(app);
    virtual_adapter::addAttachCommand(app);
    virtual_adapter::addCheckCommand(app);
    virtual_adapter::addTellCommand(app);
    virtual_adapter::addReplayCommand(app, program);

    try {
        app.parse(static_cast<int>(separator - argv), argv);
    } catch (const CLI::RuntimeError& failure) {
        return failure.get_exit_code();
    } catch (const CLI::ParseError& error) {
        const std::string complaint = runs && separator == end
                                          ? complaintAboutSeparator(app, argv, end)
                                          : complaintAboutCommand(app, argv, end);
        if (!complaint.empty()) {
            (void)std::fprintf(stderr, "veltra-virtual-adapter: %s\n", complaint.c_str());
            return refusedCommandLine;
        }
        // Asking for help or the version ends the parsing too, with success.
        return app.exit(error) == 0 ? 0 : refusedCommandLine;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardStreams();
    try {
        return runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "veltra-virtual-adapter: %s\n", error.what());
        return 1;
    }
}
