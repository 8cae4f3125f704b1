// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

namespace virtual_adapter {

// Every message is its size without these four bytes, its kind, and what that kind carries; numbers
// are little-endian.
constexpr size_t messageSizeField = 4;
constexpr size_t messageHead = messageSizeField + 1;

constexpr uint32_t helloMagic = 0x53415656; // "VVAS"
constexpr uint16_t socketVersion = 1;

/// Of a whole message: 16 adapters with the longest names, and an output report, stay below.
constexpr size_t maxMessageSize = size_t{1} << 18U;
/// Of one hid_write.
constexpr size_t maxWriteSize = size_t{1} << 16U;
/// Of one input report.
constexpr size_t maxReportSize = 1024;
/// Of a text for people. Longer ones come in several notices.
constexpr size_t maxTextSize = 1000;
/// At one socket.
constexpr size_t maxAdapters = 16;

enum class ClientMessageKind : uint8_t {
    Hello = 1,
    List = 2,
    Open = 3,
    Join = 4,
    Write = 5,
    Read = 6,
    Close = 7,
    Tell = 8,
    Hold = 9,
};

enum class ReplyKind : uint8_t {
    Adapters = 0x82,
    Opened = 0x83,
    Joined = 0x84,
    Written = 0x85,
    Report = 0x86,
    Closed = 0x87,
    Told = 0x88,
    /// Not the answer, which follows: a text for people.
    Notice = 0x90,
    /// What the client said cannot be understood; a text says why, and the connection ends.
    Refused = 0xFF,
};

enum class Outcome : uint8_t {
    Done = 0,
    /// The time is over, and there is no report.
    NothingYet = 1,
    /// The adapter has left the bus, is closed, or never was there.
    Gone = 2,
    /// Somebody has it, or it takes nothing.
    Refused = 3,
};

} // namespace virtual_adapter
