// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "CommandLine.hpp"
#include "Interruption.hpp"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// Started with a standard stream closed, the process would take the adapter's link for it.
void occupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF) {
            open("/dev/null", O_RDWR | O_CLOEXEC); // takes the lowest number that is free
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardStreams();
    veltra::Interruption::listen();
    return veltra::runCommandLine({argv + (argc > 0 ? 1 : 0), argv + argc});
}
