// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/AdapterProcess.hpp"

#include "cli/TerminationSignals.hpp"
#include "launch/SocketPlace.hpp"
#include "ways/SocketServer.hpp"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace virtual_adapter {

namespace {

using usbip::FileDescriptor;

/// For the next program of a script to start.
constexpr std::chrono::seconds patience{1};

/// What the new process says first: where its socket is, or why there is none.
constexpr char isReady = '+';
constexpr char hasFailed = '-';

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

Pipe makePipe(int flags) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | flags) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    }
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

void say(const FileDescriptor& output, const std::string& text) {
    // Shorter than what a pipe takes at once. Without a reader there is nobody to be told.
    const ssize_t written = write(output.get(), text.data(), text.size());
    static_cast<void>(written);
}

std::string readAll(const FileDescriptor& input) {
    std::string text;
    std::array<char, 4096> block{};
    ssize_t size = 0;
    while ((size = read(input.get(), block.data(), block.size())) > 0 || errno == EINTR) {
        if (size <= 0) {
            errno = 0;
            continue;
        }
        text.append(block.data(), static_cast<size_t>(size));
    }
    return text;
}

/// A pipe of the program's would not end while the adapter held it.
void letGoOfAllBut(const FileDescriptor& kept) {
    const auto number = static_cast<unsigned>(kept.get());
    constexpr unsigned firstOther = STDERR_FILENO + 1;
    if (number > firstOther) {
        close_range(firstOther, number - 1, 0);
    }
    close_range(number + 1, ~0U, 0);
}

/// Returns what this process writes on its standard error output from now on.
FileDescriptor replaceStandardStreams() {
    const FileDescriptor nothing(open("/dev/null", O_RDWR | O_CLOEXEC));
    // Full, it swallows what comes: nobody has to wait for a program to take it.
    Pipe messages = makePipe(O_NONBLOCK);
    dup2(nothing.get(), STDIN_FILENO);
    dup2(nothing.get(), STDOUT_FILENO);
    dup2(messages.writeEnd.get(), STDERR_FILENO);
    return std::move(messages.readEnd);
}

/// Each program takes two descriptors or more.
void raiseDescriptorLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

int beAdapters(const std::vector<AdapterSettings>& adapters, pid_t program, FileDescriptor ready) {
    try {
        letGoOfAllBut(ready);
        raiseDescriptorLimit();
        FileDescriptor messages = replaceStandardStreams();
        const FileDescriptor stop = terminationSignals();
        (void)std::signal(SIGPIPE, SIG_IGN);
        launch::SocketPlace place =
            launch::SocketPlace::inDirectoryOfItsOwn("veltra-virtual-adapter");
        AdapterRack rack(adapters);
        SocketServer server(rack, place.takeListener());
        server.endWithPrograms(program, patience);
        server.passOn(std::move(messages));
        say(ready, isReady + place.path());
        ready.reset();
        server.run(stop);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        say(ready, hasFailed + std::string(error.what()));
        return EXIT_FAILURE;
    }
}

pid_t forkOrThrow() {
    const pid_t child = fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start a process");
    }
    return child;
}

} // namespace

std::string startAdapterProcess(const std::vector<AdapterSettings>& adapters) {
    Pipe ready = makePipe(0);
    const pid_t program = getpid();
    const pid_t child = forkOrThrow();
    if (child == 0) {
        setsid();
        // Its parent gone, it is init's child: no program waits for it by mistake.
        const pid_t adapter = fork();
        if (adapter == 0) {
            ready.readEnd.reset();
            std::exit(beAdapters(adapters, program, std::move(ready.writeEnd)));
        }
        if (adapter < 0) {
            say(ready.writeEnd, hasFailed + std::string("cannot start a process: ") +
                                    std::generic_category().message(errno));
        }
        _exit(0);
    }
    ready.writeEnd.reset();
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    const std::string said = readAll(ready.readEnd);
    if (said.empty()) {
        throw std::runtime_error("the adapter's process has ended before it was ready");
    }
    if (said.front() != isReady) {
        throw std::runtime_error(said.substr(1));
    }
    return said.substr(1);
}

} // namespace virtual_adapter
