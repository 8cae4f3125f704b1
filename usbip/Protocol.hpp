// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/Device.hpp"

#include "bytes/ByteReader.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

// The messages of USB/IP as the Linux kernel documents them (Documentation/usb/usbip_protocol).
// Every field is big-endian, but for the setup packet inside a submit command.

namespace usbip {

constexpr uint16_t standardPort = 3240;

/// Tells a host which devices there are.
struct ListRequest {};

/// Asks for a device; commands follow on the same connection.
struct ImportRequest {
    std::string busId;
};

using Request = std::variant<ListRequest, ImportRequest>;

struct Submit {
    uint32_t sequence = 0;
    Transfer transfer;
};

struct Unlink {
    uint32_t sequence = 0;
    /// The sequence number of the command to take back.
    uint32_t unlinked = 0;
};

using Command = std::variant<Submit, Unlink>;

/// What a host may send in one transfer. No report comes near it; it keeps a host from taking the
/// server's memory.
constexpr size_t maxOutputSize = size_t{1} << 16U;

/// Cuts a byte stream into messages. After the first malformed one there are no more.
class Reader {
public:
    void append(const uint8_t* data, size_t size);

    /// The next whole request, of a connection that has not imported a device.
    std::optional<Request> nextRequest();

    /// The next whole command, of a connection that has.
    std::optional<Command> nextCommand();

    [[nodiscard]] bool isMalformed() const { return malformed; }

private:
    using ByteReader = virtual_adapter::ByteReader;

    /// @p message is behind the code.
    std::optional<Submit> nextSubmit(ByteReader message);
    Unlink nextUnlink(ByteReader message);
    /// Forgets what @p message has read.
    void consume(const ByteReader& message);
    std::nullopt_t refuse();

    Bytes received;
    bool malformed = false;
};

/// A device and its place, as the replies describe them.
struct ListedDevice {
    std::string busId;
    uint32_t busNumber = 0;
    uint32_t deviceNumber = 0;
    Description description;
};

/// Lists @p device, or nothing when it is null.
Bytes listReply(const ListedDevice* device);

Bytes importReply(const ListedDevice& device);

enum class Refusal : uint32_t { DeviceBusy = 2, NoSuchDevice = 4 };

Bytes importRefusal(Refusal refusal);

Bytes returnSubmit(uint32_t sequence, const Result& result);

/// @p wasPending tells whether the command was taken back before it ended.
Bytes returnUnlink(uint32_t sequence, bool wasPending);

} // namespace usbip
