// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "uart/Terminal.hpp"

#include "Interruption.hpp"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr uint8_t escapeKey = 0x1D; // Ctrl+]

/// Keys arrive at once and unseen, Ctrl+C among them.
class RawTerminal {
public:
    RawTerminal() {
        if (isatty(STDIN_FILENO) != 1 || tcgetattr(STDIN_FILENO, &before) != 0) {
            throw Failure::ofUsage("the standard input is no terminal")
                .advise("Use: veltra uart send BYTES, veltra uart recv");
        }
        termios raw = before;
        cfmakeraw(&raw);
        tcsetattr(STDIN_FILENO, TCSADRAIN, &raw);
    }
    ~RawTerminal() { tcsetattr(STDIN_FILENO, TCSADRAIN, &before); }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

private:
    termios before{};
};

void show(const Bytes& bytes) {
    for (size_t at = 0; at < bytes.size();) {
        const ssize_t written = write(STDOUT_FILENO, bytes.data() + at, bytes.size() - at);
        if (written < 0 && errno != EINTR) {
            throw Failure(ExitStatus::Refused, "file", "cannot write to the terminal");
        }
        at += written > 0 ? static_cast<size_t>(written) : 0;
    }
}

/// Sends what was typed; false once the escape key or the end of the input is met.
bool passKeysOn(Uart& uart) {
    Bytes keys(256);
    const ssize_t count = read(STDIN_FILENO, keys.data(), keys.size());
    if (count < 0 && errno == EINTR) {
        return true;
    }
    keys.resize(static_cast<size_t>(std::max<ssize_t>(count, 0)));
    const auto escape = std::find(keys.begin(), keys.end(), escapeKey);
    uart.send({keys.begin(), escape});
    return !keys.empty() && escape == keys.end();
}

} // namespace

void runTerminal(Uart& uart, Output& output) {
    const RawTerminal raw;
    output.remark("connected; Ctrl+] ends it\r");
    for (bool goesOn = true; goesOn;) {
        pollfd sources[] = {{STDIN_FILENO, POLLIN, 0},
                            {uart.descriptor(), POLLIN, 0},
                            {Interruption::descriptor(), POLLIN, 0}};
        (void)poll(sources, 3, -1);
        for (Bytes received = uart.receive(std::chrono::milliseconds(0)); !received.empty();
             received = uart.receive(std::chrono::milliseconds(0))) {
            show(received);
        }
        goesOn = sources[0].revents == 0 || passKeysOn(uart);
    }
}

} // namespace veltra
