// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/Process.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

/// In milliseconds; whoever waits so long waits in vain.
constexpr int patience = 30'000;

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

File temporaryFile() {
    File file(std::tmpfile(), std::fclose);
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "tmpfile");
    }
    return file;
}

std::string contents(FILE* file) {
    std::rewind(file);
    std::string text;
    std::array<char, 4096> block{};
    while (const size_t count = std::fread(block.data(), 1, block.size(), file)) {
        text.append(block.data(), count);
    }
    return text;
}

void setInEnvironment(const std::string& variable) {
    const size_t equals = variable.find('=');
    const std::string name = variable.substr(0, equals);
    if (equals == std::string::npos) {
        unsetenv(name.c_str());
    } else {
        setenv(name.c_str(), variable.c_str() + equals + 1, 1);
    }
}

/// Starts a program whose standard output, and standard error output if not negative, go to the
/// given files.
pid_t start(std::vector<std::string>& commandLine, const std::vector<std::string>& environment,
            int output, int errors) {
    std::vector<char*> arguments;
    arguments.reserve(commandLine.size() + 1);
    for (std::string& argument : commandLine) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0) {
        dup2(output, STDOUT_FILENO);
        if (errors >= 0) {
            dup2(errors, STDERR_FILENO);
        }
        for (const std::string& variable : environment) {
            setInEnvironment(variable);
        }
        // What started the tests may ignore them, as nohup does.
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            std::signal(signal, SIG_DFL);
        }
        execvp(arguments.front(), arguments.data());
        std::perror(arguments.front());
        _exit(127);
    }
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    return child;
}

int statusOf(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace

ProcessResult runProcess(std::vector<std::string> commandLine,
                         const std::vector<std::string>& environment) {
    const File output = temporaryFile();
    const File errors = temporaryFile();
    const int status =
        statusOf(start(commandLine, environment, fileno(output.get()), fileno(errors.get())));
    return {status, contents(output.get()), contents(errors.get())};
}

BackgroundProcess::BackgroundProcess(std::vector<std::string> commandLine) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    output = ends[0];
    child = start(commandLine, {}, ends[1], -1);
    close(ends[1]);
}

BackgroundProcess::~BackgroundProcess() {
    if (child >= 0) {
        send(SIGKILL);
        statusOf(child);
    }
    close(output);
}

std::string BackgroundProcess::nextLine() {
    std::string line;
    char character = 0;
    while (nextCharacter(character) == Next::Character) {
        line += character;
        if (character == '\n') {
            break;
        }
    }
    return line;
}

void BackgroundProcess::send(int signal) const {
    kill(child, signal);
}

int BackgroundProcess::wait() {
    // Its end ends its output.
    char ignored = 0;
    Next next = Next::Character;
    while ((next = nextCharacter(ignored)) == Next::Character) {
    }
    if (next == Next::NothingYet) {
        send(SIGKILL);
    }
    return statusOf(std::exchange(child, -1));
}

BackgroundProcess::Next BackgroundProcess::nextCharacter(char& character) const {
    pollfd readable{output, POLLIN, 0};
    if (poll(&readable, 1, patience) <= 0) {
        return Next::NothingYet;
    }
    return read(output, &character, 1) == 1 ? Next::Character : Next::End;
}
