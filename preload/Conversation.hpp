// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "devices/messages.hpp"

#include <cstddef>
#include <cstdint>

#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>

namespace preload {

/// Of an opened device, as the name of its socket holds it.
struct DeviceId {
    uint8_t bytes[devices::idSize];
};

/// The fields of a request, on the stack of who asks.
template <size_t Capacity>
class Fields {
public:
    Fields& u8(unsigned value) {
        if (length < Capacity) {
            content[length++] = static_cast<uint8_t>(value & 0xFFU);
        }
        return *this;
    }
    Fields& u16(unsigned value) { return u8(value).u8(value >> 8U); }
    Fields& u32(uint32_t value) { return u16(value).u16(value >> 16U); }
    [[nodiscard]] iovec part() { return {content, length}; }
    /// Of the fields written since @p first bytes of them were there.
    [[nodiscard]] iovec partFrom(size_t first) { return {content + first, length - first}; }
    [[nodiscard]] size_t size() const { return length; }

private:
    uint8_t content[Capacity] = {};
    size_t length = 0;
};

/// One request and its answer, over a connection of its own: threads and forked processes that
/// share a descriptor do not meet. The broker's address is where a device's connection leads.
class Conversation {
public:
    Conversation() = default;
    ~Conversation();
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;

    /// Connects to the broker that serves @p descriptor; false with errno when it has gone.
    bool begin(int descriptor, DeviceId& id);
    /// Connects to the broker that the environment names. With a name of its own the connection can
    /// become a device.
    bool begin(const char* path, const sockaddr_un* ownName, socklen_t ownNameSize, int flags);

    /// Sends what @p parts hold behind the request's head; the first of them is left for it.
    /// Returns the result, or -1 with errno.
    int ask(devices::RequestKind kind, const DeviceId& id, iovec* parts, size_t count);

    /// How many bytes follow the result.
    [[nodiscard]] size_t remaining() const { return left; }
    /// Takes the next bytes of them; false with errno when they are not there.
    bool take(void* data, size_t size);

    /// Hands the connection out.
    int release();

private:
    [[nodiscard]] bool receive(void* data, size_t size) const;

    int socket = -1;
    size_t left = 0;
};

} // namespace preload
