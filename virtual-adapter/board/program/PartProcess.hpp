// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"

#include <chrono>
#include <stdexcept>
#include <string>
#include <sys/types.h>

namespace virtual_adapter {

/// What a part that is a program has done wrong, as it follows the part's name.
class PartFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A program that is asked line by line over its standard input and output. It has a process group
/// of its own, which ends with this object; should the adapter be killed, the program is too.
class PartProcess {
public:
    using Patience = std::chrono::milliseconds;
    static constexpr Patience patience{5000};
    /// Room for the longest answer: the bytes that one request can read, in hexadecimal.
    static constexpr size_t maxLineLength = size_t{256} * 1024;

    /// Starts the program in @p directory. Throws PartFailure.
    PartProcess(const Command& command, const std::string& directory, Patience itsPatience);
    PartProcess(const PartProcess&) = delete;
    PartProcess& operator=(const PartProcess&) = delete;
    ~PartProcess();

    /// Sends a line and returns the one that answers it, both without their ends. Throws
    /// PartFailure when there is no such answer in time.
    std::string ask(const std::string& line);

private:
    using Time = std::chrono::steady_clock::time_point;

    void send(const std::string& text, Time deadline);
    std::string receive(Time deadline);
    /// Waits until the descriptor is ready.
    void await(int descriptor, short events, Time deadline) const;
    [[noreturn]] void complainAboutEnd() const;

    Patience limit;
    pid_t process = -1;
    int input = -1;
    int output = -1;
    /// Received behind the last answer.
    std::string surplus;
};

} // namespace virtual_adapter
