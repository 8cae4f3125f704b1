// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Interruption.hpp"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace veltra {

namespace {

// The handler has no argument of ours.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<bool> interrupted{false};
int ends[2] = {-1, -1};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

void remember(int /*signal*/) {
    interrupted = true;
    const char any = 0;
    [[maybe_unused]] const ssize_t written = write(ends[1], &any, 1);
}

} // namespace

void Interruption::listen() {
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // then it ends the program at once, as it always would
    }
    struct sigaction action {};
    action.sa_handler = remember;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before {};
        // Whoever starts a program with a signal ignored, as nohup does, wants it ignored.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
}

bool Interruption::requested() {
    return interrupted;
}

int Interruption::descriptor() {
    return ends[0];
}

} // namespace veltra
