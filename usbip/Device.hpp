// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace usbip {

using virtual_adapter::Bytes;
using Time = std::chrono::steady_clock::time_point;

/// As the protocol and the kernel count them.
enum class Speed : uint32_t { Full = 2, High = 3 };

/// Class, subclass and protocol, of a device or an interface.
struct UsbClass {
    uint8_t code = 0;
    uint8_t subclass = 0;
    uint8_t protocol = 0;
};

/// What a host is told of a device before it asks the device itself.
struct Description {
    /// Of whoever makes the device; a word of a path.
    std::string maker;
    Speed speed = Speed::Full;
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    /// Binary-coded decimal: 0x0100 is 1.0.
    uint16_t deviceRelease = 0;
    UsbClass deviceClass;
    uint8_t configuration = 1;
    uint8_t configurationCount = 1;
    std::vector<UsbClass> interfaces;
};

/// One transfer that a host asks for.
struct Transfer {
    /// The host's name for it, unique among its pending transfers.
    uint64_t id = 0;
    /// With the direction in bit 7; the control endpoint is 0x00 and 0x80.
    uint8_t endpointAddress = 0;
    /// Of a control transfer (USB 2.0, section 9.3).
    std::array<uint8_t, 8> setup{};
    /// How many bytes the host takes, of a transfer towards it.
    size_t length = 0;
    /// What the host sends, of a transfer towards the device.
    Bytes data;
};

enum class Status {
    Completed,
    /// The endpoint refuses, or does not exist.
    Stalled,
    /// The device sent more than the host takes.
    Overflowed,
    /// The device has left the bus.
    Unplugged,
};

/// How a transfer ended.
struct Result {
    uint64_t id = 0;
    Status status = Status::Completed;
    /// Bytes that crossed the bus, in either direction.
    size_t actualLength = 0;
    /// What the device sent.
    Bytes data;
};

/// A device that is plugged into a host. It has no thread and no clock: it is called from one
/// thread at a time and told what time it is.
///
/// Results are handed inside `submit` and `serve` to the receiver that the device was made with,
/// which does not call it back.
class Device {
public:
    using Receiver = std::function<void(Result)>;

    Device() = default;
    virtual ~Device() = default;
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// Starts a transfer. It ends at once or stays pending until the device can serve it.
    virtual void submit(Transfer transfer, Time now) = 0;

    /// Takes a pending transfer back, which then has no result. Returns whether it was pending.
    virtual bool cancel(uint64_t id) = 0;

    /// Ends the transfers whose time has come.
    virtual void serve(Time now) = 0;

    /// When to call `serve` although nothing was submitted; nothing while there is no need.
    [[nodiscard]] virtual std::optional<Time> nextDue() const = 0;

    /// False once it has left the bus, for good.
    [[nodiscard]] virtual bool isOnBus() const = 0;
};

/// A device that hosts find at a server, one host at a time.
struct ExportedDevice {
    Description description;
    /// Makes it anew for the host that has just taken it.
    std::function<std::unique_ptr<Device>(Device::Receiver receiver)> plugIn;
    bool isTaken = false;
};

} // namespace usbip
