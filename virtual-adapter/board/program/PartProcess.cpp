// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/program/PartProcess.hpp"

#include "board/program/findProgram.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace virtual_adapter {

namespace {

/// How long a program that is told the end has for it.
constexpr int millisecondsToEnd = 500;

std::string reason(int error) {
    return std::generic_category().message(error);
}

/// What the program needs besides its arguments, made before the fork: behind it nothing may be
/// allocated.
struct Start {
    std::string file;
    std::string directory;
    std::vector<char*> arguments;
    std::vector<char*> environment;
    int input;
    int output;
    pid_t parent;
};

/// The environment without the adapter that a program under `run` finds: its board's parts are not
/// among its programs.
std::vector<char*> environmentOfPart() {
    constexpr const char* socketVariable = "VELTRA_VIRTUAL_ADAPTER_SOCKET=";
    std::vector<char*> kept;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (std::strncmp(*variable, socketVariable, std::strlen(socketVariable)) != 0) {
            kept.push_back(*variable);
        }
    }
    kept.push_back(nullptr);
    return kept;
}

/// Becomes the program. Returns only when that fails.
void become(const Start& start) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != start.parent) {
        _exit(1);
    }
    sigset_t none;
    sigemptyset(&none);
    for (int number = 1; number < NSIG; ++number) {
        (void)signal(number, SIG_DFL);
    }
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (dup2(start.input, STDIN_FILENO) < 0 || dup2(start.output, STDOUT_FILENO) < 0 ||
        chdir(start.directory.c_str()) != 0) {
        return;
    }
    constexpr unsigned onExec = 1U << 2U; // CLOSE_RANGE_CLOEXEC
    syscall(SYS_close_range, STDERR_FILENO + 1U, ~0U, onExec);
    execve(start.file.c_str(), start.arguments.data(), start.environment.data());
}

/// Why the child could not become the program; 0 when it has.
int errorOfStart(int descriptor) {
    int error = 0;
    ssize_t size = 0;
    do {
        size = read(descriptor, &error, sizeof error);
    } while (size < 0 && errno == EINTR);
    return size == static_cast<ssize_t>(sizeof error) ? error : 0;
}

void closeAll(std::initializer_list<int> descriptors) {
    for (const int descriptor : descriptors) {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
}

} // namespace

PartProcess::PartProcess(const Command& command, const std::string& directory, Patience itsPatience)
    : limit(itsPatience) {
    const auto file = findProgram(command.front(), directory);
    if (!file) {
        throw PartFailure("cannot be started: there is no program '" + command.front() + "'");
    }
    std::vector<std::string> words = command;
    Start start{file->string(), directory, {}, environmentOfPart(), -1, -1, getpid()};
    for (std::string& word : words) {
        start.arguments.push_back(word.data());
    }
    start.arguments.push_back(nullptr);

    // A socket as input: writing to a program that has ended must not raise a signal.
    std::array<int, 2> inputs{-1, -1};
    std::array<int, 2> outputs{-1, -1};
    std::array<int, 2> errors{-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, inputs.data()) != 0 ||
        pipe2(outputs.data(), O_CLOEXEC) != 0 || pipe2(errors.data(), O_CLOEXEC) != 0) {
        const int error = errno;
        closeAll({inputs[0], inputs[1], outputs[0], outputs[1], errors[0], errors[1]});
        throw PartFailure("cannot be started: " + reason(error));
    }
    start.input = inputs[1];
    start.output = outputs[1];
    process = fork();
    if (process == 0) {
        become(start);
        const int error = errno;
        const ssize_t told = write(errors[1], &error, sizeof error);
        static_cast<void>(told);
        _exit(127);
    }
    const int forkError = errno;
    closeAll({inputs[1], outputs[1], errors[1]});
    const int error = process < 0 ? forkError : errorOfStart(errors[0]);
    close(errors[0]);
    if (error != 0) {
        closeAll({inputs[0], outputs[0]});
        if (process > 0) {
            waitpid(process, nullptr, 0);
        }
        throw PartFailure("cannot be started: " + reason(error));
    }
    setpgid(process, process);
    input = inputs[0];
    output = outputs[0];
    fcntl(input, F_SETFL, O_NONBLOCK);
    fcntl(output, F_SETFL, O_NONBLOCK);
}

PartProcess::~PartProcess() {
    if (process < 0) {
        return;
    }
    closeAll({input, output});
    const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (descriptor >= 0) {
        pollfd ended{descriptor, POLLIN, 0};
        poll(&ended, 1, millisecondsToEnd);
        close(descriptor);
    }
    // Before the process is waited for, so that the group's number is still its own.
    kill(-process, SIGKILL);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::string PartProcess::ask(const std::string& line) {
    const Time deadline = std::chrono::steady_clock::now() + limit;
    if (!surplus.empty()) {
        throw PartFailure("says more than it is asked");
    }
    send(line + "\n", deadline);
    return receive(deadline);
}

void PartProcess::send(const std::string& text, Time deadline) {
    for (size_t sent = 0; sent < text.size();) {
        const ssize_t size = ::send(input, &text[sent], text.size() - sent, MSG_NOSIGNAL);
        if (size >= 0) {
            sent += static_cast<size_t>(size);
        } else if (errno == EAGAIN) {
            await(input, POLLOUT, deadline);
        } else if (errno != EINTR) {
            complainAboutEnd();
        }
    }
}

std::string PartProcess::receive(Time deadline) {
    std::array<char, 4096> block{};
    size_t searched = 0;
    for (;;) {
        const size_t end = surplus.find('\n', searched);
        if (end != std::string::npos) {
            std::string line = surplus.substr(0, end);
            surplus.erase(0, end + 1);
            return line;
        }
        if (surplus.size() > maxLineLength) {
            throw PartFailure("answers with a line of more than " + std::to_string(maxLineLength) +
                              " bytes");
        }
        searched = surplus.size();
        const ssize_t size = read(output, block.data(), block.size());
        if (size > 0) {
            surplus.append(block.data(), static_cast<size_t>(size));
        } else if (size == 0) {
            complainAboutEnd();
        } else if (errno == EAGAIN) {
            await(output, POLLIN, deadline);
        } else if (errno != EINTR) {
            throw PartFailure("cannot be read: " + reason(errno));
        }
    }
}

void PartProcess::await(int descriptor, short events, Time deadline) const {
    const auto left =
        std::chrono::duration_cast<Patience>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
        throw PartFailure("has not answered for " + std::to_string(limit.count()) + " ms");
    }
    pollfd ready{descriptor, events, 0};
    poll(&ready, 1, static_cast<int>(left.count()));
}

void PartProcess::complainAboutEnd() const {
    // It closed its output; most that do so end.
    const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (descriptor >= 0) {
        pollfd ended{descriptor, POLLIN, 0};
        poll(&ended, 1, millisecondsToEnd);
        close(descriptor);
    }
    siginfo_t how{};
    waitid(P_PID, static_cast<id_t>(process), &how, WEXITED | WNOHANG | WNOWAIT);
    if (how.si_pid == 0) {
        throw PartFailure("has closed its output");
    }
    throw PartFailure(how.si_code == CLD_EXITED
                          ? "has ended with exit status " + std::to_string(how.si_status)
                          : "was ended by signal " + std::to_string(how.si_status));
}

} // namespace virtual_adapter
