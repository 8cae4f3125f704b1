// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace tty {

using Bytes = std::vector<uint8_t>;

/// What a program has set of the line. The kernel lets no parity and no fewer than 8 bits through
/// to a pseudo terminal, and hides breaks and modem lines.
struct Line {
    uint32_t baudRate = 115200;
    unsigned stopBits = 1;
    bool rtsCts = false;
};

/// A pseudo terminal that programs open like a serial port. Failures are std::system_error.
///
/// It stays open on both sides: without a program it would report a hang-up for ever, and what a
/// program has set would be lost with it.
class Pty {
public:
    explicit Pty(const Line& atStart);

    /// What programs open.
    [[nodiscard]] const std::string& path() const { return name; }
    /// For poll.
    [[nodiscard]] int descriptor() const { return master.get(); }

    struct Input {
        Bytes data;
        /// The program has set the line; maybe to what it was.
        bool isLineSet = false;
        /// The program wants nothing of what has not reached it yet.
        bool isFlushed = false;
    };
    /// What has come from the program, if anything. The order of data and settings is not known:
    /// the settings come first.
    Input read();

    /// Hands the program as many of the bytes as it has room for, and returns how many.
    size_t write(const uint8_t* data, size_t size);

    /// What is set now.
    Line line();

private:
    usbip::FileDescriptor master;
    usbip::FileDescriptor slave;
    std::string name;
};

} // namespace tty
