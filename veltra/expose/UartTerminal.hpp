// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/Uart.hpp"
#include "expose/tty/Pty.hpp"

namespace veltra {

/// Joins the adapter's UART and a terminal that a program opens, until the user or the adapter ends
/// it, which is a Failure. What the adapter refuses is told and harms no other byte.
class UartTerminal {
public:
    UartTerminal(Session& over, Output& tells, const UartSettings& atStart);

    [[nodiscard]] const std::string& path() const { return pty.path(); }
    [[noreturn]] void run();

private:
    void collect();
    void react(const tty::Pty::Input& input);
    void apply(const tty::Line& line);
    void handOver();

    Session& session;
    Output& output;
    UartSettings settings;
    Uart uart;
    tty::Pty pty;
    /// Received, and not yet taken by a program.
    Bytes queue;
    bool overflowed = false;
};

} // namespace veltra
