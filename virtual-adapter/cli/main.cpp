// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/attach.hpp"
#include "cli/check.hpp"
#include "cli/failure.hpp"
#include "cli/refusal.hpp"
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

int runCommandLine(int argc, char** argv) {
    // What follows -- is another program's command line.
    char** const end = argv + argc;
    virtual_adapter::TypedWords typed{{std::min(argv + 1, end), end}, false};
    char** const separator = typed.startsProgram() ? std::find(argv, end, std::string("--")) : end;
    typed = {{std::min(argv + 1, separator), separator}, separator != end};
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

    std::string complaint;
    try {
        grammar.parse(typed.words);
        return 0;
    } catch (const virtual_adapter::ProcessEnd& asToldBefore) {
        return asToldBefore.exitStatus;
    } catch (const command_line::Asked& asked) {
        complaint = virtual_adapter::misunderstood(root, typed);
        if (complaint.empty()) {
            (void)std::fputs(asked.what(), stdout);
            return 0;
        }
    } catch (const command_line::Refusal& refusal) {
        complaint = virtual_adapter::misunderstood(root, typed);
        if (complaint.empty()) {
            complaint = virtual_adapter::withMend(root, typed, refusal.what());
        }
    }
    (void)std::fprintf(stderr, "veltra-virtual-adapter: %s\n", complaint.c_str());
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
