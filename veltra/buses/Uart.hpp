// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Inbox.hpp"
#include "Session.hpp"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace veltra {

/// How the UART is to be set up, as it was typed.
struct UartSettings {
    std::string baudRate = "115200";
    std::string parity = "none";
    int dataBits = 8;
    int stopBits = 1;
    bool rtsCts = false;
};

/// The UART, set up; what it receives is kept from then on.
class Uart {
public:
    Uart(Session& over, Output& tells, const UartSettings& settings);

    void send(const Bytes& message);
    /// The next bytes that came in; none once the time is over.
    Bytes receive(std::optional<std::chrono::milliseconds> patience);
    /// Readable while something new waits; for poll.
    int descriptor() { return session.inbox().descriptor(); }

private:
    Session& session;
    Output& output;
};

/// The received bytes of a notification, as many as it really carries.
Bytes receivedBytes(const Inbox::Entry& entry);

} // namespace veltra
