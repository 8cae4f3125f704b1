// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/attach.hpp"
#include "cli/check.hpp"
#include "cli/failure.hpp"
#include "cli/replay.hpp"
#include "cli/run.hpp"
#include "cli/serve.hpp"
#include "cli/tell.hpp"

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

/// What the parser's own message leaves out about a word at the command's place; empty where it
/// leaves nothing out.
std::string complaintAboutCommand(command_line::Command root, char** argv, char** end) {
    std::vector<std::string> names;
    std::string list;
    for (const command_line::Command command : root.commands()) {
        names.push_back(command.name());
        list += (list.empty() ? "" : ", ") + command.name();
    }
    if (end - argv < 2 || contains(names, argv[1]) || !contains(root.remaining(), argv[1])) {
        return {};
    }
    return "'" + std::string(argv[1]) + "' is none of its commands: " + list +
           "; --help says what they do";
}

/// What to type in place of `run [OPTIONS] PROGRAM`; empty without such a program.
std::string complaintAboutSeparator(command_line::Command root, char** argv, char** end) {
    const std::vector<std::string> unknown = root.remaining();
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

    const command_line::Grammar grammar(
        "A stand-in for the adapter: programs run, and are tested, without hardware",
        "veltra-virtual-adapter");
    const command_line::Command root = grammar.root();
    root.setVersion(VELTRASDK_VERSION);
    root.requireCommand();
    virtual_adapter::addRunCommand(root, program);
    virtual_adapter::addServeCommand(root);
    virtual_adapter::addAttachCommand(root);
    virtual_adapter::addCheckCommand(root);
    virtual_adapter::addTellCommand(root);
    virtual_adapter::addReplayCommand(root, program);

    const auto complaint = [&] {
        return runs && separator == end ? complaintAboutSeparator(root, argv, end)
                                        : complaintAboutCommand(root, argv, end);
    };
    try {
        grammar.parse({std::min(argv + 1, separator), separator});
        return 0;
    } catch (const virtual_adapter::ProcessEnd& asToldBefore) {
        return asToldBefore.exitStatus;
    } catch (const command_line::Asked& asked) {
        if (complaint().empty()) {
            (void)std::fputs(asked.what(), stdout);
            return 0;
        }
    } catch (const command_line::Refusal& refusal) {
        if (complaint().empty()) {
            (void)std::fprintf(stderr, "%s\nRun with --help for more information.\n",
                               refusal.what());
            return refusedCommandLine;
        }
    }
    (void)std::fprintf(stderr, "veltra-virtual-adapter: %s\n", complaint().c_str());
    return refusedCommandLine;
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
