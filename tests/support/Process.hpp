// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

/// How a child process ended and what it wrote.
struct ProcessResult {
    /// The exit status, or minus the signal that ended it.
    int status;
    std::string output;
    std::string errors;
};

/// Runs a program to its end. Each of @p environment, "NAME=VALUE", is set in addition to the
/// caller's; a bare "NAME" is removed.
ProcessResult runProcess(std::vector<std::string> commandLine,
                         const std::vector<std::string>& environment = {});

/// A program that runs beside the test; it is killed when it outlives this object.
class BackgroundProcess {
public:
    explicit BackgroundProcess(std::vector<std::string> commandLine);
    ~BackgroundProcess();
    BackgroundProcess(const BackgroundProcess&) = delete;
    BackgroundProcess& operator=(const BackgroundProcess&) = delete;

    /// The next line that it prints. Shorter, without its end, when the output ends there or
    /// nothing more has come for half a minute.
    std::string nextLine();

    void send(int signal) const;

    /// How it ended, as in ProcessResult. It is killed when it has not done so in half a minute.
    int wait();

private:
    enum class Next { Character, End, NothingYet };

    Next nextCharacter(char& character) const;

    pid_t child = -1;
    int output = -1;
};
