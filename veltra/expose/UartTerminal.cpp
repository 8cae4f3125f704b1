// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/UartTerminal.hpp"

#include "Interruption.hpp"

#include <algorithm>
#include <poll.h>
#include <utility>

namespace veltra {

namespace {

/// A program that reads nothing loses what comes behind these, as with any serial port.
constexpr size_t maxQueued = size_t{256} << 10U;

tty::Line lineOf(const UartSettings& settings) {
    return {static_cast<uint32_t>(parseNumber("baud rate", settings.baudRate, 0, 0xFFFFFFFF)),
            static_cast<unsigned>(settings.stopBits), settings.rtsCts};
}

/// Whether the next byte may fare better.
bool passes(const Failure& failure) {
    return failure.kind != "gone" && failure.kind != "interrupted";
}

} // namespace

UartTerminal::UartTerminal(Session& over, Output& tells, const UartSettings& atStart)
    : session(over),
      output(tells),
      settings(atStart),
      uart(over, tells, atStart),
      pty(lineOf(atStart)) {}

void UartTerminal::run() {
    for (;;) {
        const bool waits = !queue.empty();
        pollfd sources[] = {
            {pty.descriptor(), static_cast<short>(POLLIN | POLLPRI | (waits ? POLLOUT : 0)), 0},
            {uart.descriptor(), POLLIN, 0},
            {Interruption::descriptor(), POLLIN, 0}};
        (void)poll(sources, 3, -1);
        collect();
        if ((sources[0].revents & (POLLIN | POLLPRI)) != 0) {
            react(pty.read());
        }
        handOver();
    }
}

void UartTerminal::collect() {
    for (Bytes received = uart.receive(std::chrono::milliseconds(0)); !received.empty();
         received = uart.receive(std::chrono::milliseconds(0))) {
        const size_t room = std::min(received.size(), maxQueued - queue.size());
        queue.insert(queue.end(), received.begin(),
                     received.begin() + static_cast<ptrdiff_t>(room));
        if (room < received.size() && !std::exchange(overflowed, true)) {
            output.remark("nobody reads " + path() + ": what comes in is lost");
        }
    }
}

void UartTerminal::react(const tty::Pty::Input& input) {
    if (input.isFlushed) {
        queue.clear();
    }
    try {
        if (input.isLineSet) {
            apply(pty.line());
        }
        if (!input.data.empty()) {
            uart.send(input.data);
        }
    } catch (Failure& failure) {
        if (!passes(failure)) {
            throw;
        }
        failure.during = session.operation();
        output.remark(describe(failure));
    }
}

void UartTerminal::apply(const tty::Line& line) {
    if (line.baudRate == 0) {
        return; // "hang up": there is no modem
    }
    UartSettings wanted = settings;
    wanted.baudRate = std::to_string(line.baudRate);
    wanted.stopBits = static_cast<int>(line.stopBits);
    wanted.rtsCts = line.rtsCts;
    const Uart again(session, output, wanted); // the UART is one, however often it is set up
    settings = wanted;
}

void UartTerminal::handOver() {
    const size_t taken = queue.empty() ? 0 : pty.write(queue.data(), queue.size());
    queue.erase(queue.begin(), queue.begin() + static_cast<ptrdiff_t>(taken));
    overflowed = overflowed && !queue.empty();
}

} // namespace veltra
