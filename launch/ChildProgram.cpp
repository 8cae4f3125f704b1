// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "launch/ChildProgram.hpp"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace launch {

namespace {

constexpr int passedOn[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2, SIGCONT};

// The handler has no argument.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<pid_t> childOfHandler{0};
std::atomic<unsigned> notPassedOn{0}; ///< The bit of each signal.
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

/// What came before there was a child waits for it.
void passOnAll() {
    const pid_t child = childOfHandler;
    const unsigned signals = child != 0 ? notPassedOn.exchange(0) : 0;
    for (const int signal : passedOn) {
        if ((signals >> static_cast<unsigned>(signal) & 1U) != 0) {
            kill(child, signal);
        }
    }
}

void passOn(int signal, siginfo_t* information, void* /*context*/) {
    const int error = errno;
    // What the kernel sends, it has sent to the whole foreground: the child has it already.
    if (information->si_code <= 0) {
        notPassedOn |= 1U << static_cast<unsigned>(signal);
        passOnAll();
    }
    errno = error;
}

void passSignalsOn() {
    struct sigaction action {};
    action.sa_sigaction = passOn;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    for (const int signal : passedOn) {
        struct sigaction inherited {};
        sigaction(signal, nullptr, &inherited);
        if (inherited.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
}

/// In the child, where nobody is to be passed anything.
void passNothingOn() {
    for (const int signal : passedOn) {
        struct sigaction inherited {};
        sigaction(signal, nullptr, &inherited);
        if (inherited.sa_handler != SIG_IGN) {
            (void)std::signal(signal, SIG_DFL);
        }
    }
}

} // namespace

ChildProgram::ChildProgram(const std::function<int()>& start) {
    // None is lost, whichever thread it reaches: each meets the handlers. This thread, the child's
    // only one, meets none before the child has its own.
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    for (const int signal : passedOn) {
        sigaddset(&signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals, &before);
    passSignalsOn();
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): behind that.
    child = fork();
    if (child == 0) {
        passNothingOn();
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        _exit(start());
    }
    int error = errno;
    if (child > 0) {
        (void)std::signal(SIGPIPE, SIG_IGN);
        ended = usbip::FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
        error = errno;
        childOfHandler = child;
        passOnAll();
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (child < 0 || !ended.isOpen()) {
        throw std::system_error(error, std::generic_category(), "cannot start a process");
    }
}

void ChildProgram::send(int signal) const {
    // Once it has ended there is nobody to get it.
    syscall(SYS_pidfd_send_signal, ended.get(), signal, nullptr, 0);
}

int ChildProgram::wait() {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    killedBy = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return WEXITSTATUS(status);
}

void ChildProgram::dieAsItDid() const {
    if (killedBy == 0) {
        return;
    }
    // The program's own memory image is the one to look at.
    const rlimit none{};
    setrlimit(RLIMIT_CORE, &none);
    (void)std::signal(killedBy, SIG_DFL);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, killedBy);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    (void)raise(killedBy);
}

} // namespace launch
