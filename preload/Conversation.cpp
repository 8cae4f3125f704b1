// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/Conversation.hpp"

#include "bytes/ByteReader.hpp"
#include "guest/sendAll.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace preload {

namespace {

constexpr size_t nameSize = sizeof devices::nameOfOpened - 1;

/// The kernel has none above.
constexpr int32_t maxError = 4095;

/// What stands between a program and its bus has gone, and the device with it.
bool failGone() {
    if (errno != EFAULT && errno != EMFILE && errno != ENFILE && errno != ENOMEM) {
        errno = ENODEV;
    }
    return false;
}

bool connectTo(int socket, const sockaddr_un& broker) {
    while (connect(socket, reinterpret_cast<const sockaddr*>(&broker), sizeof broker) != 0) {
        if (errno != EINTR) {
            return failGone();
        }
    }
    return true;
}

} // namespace

Conversation::~Conversation() {
    if (socket >= 0) {
        const int error = errno;
        close(socket);
        errno = error;
    }
}

bool Conversation::begin(int descriptor, DeviceId& id) {
    sockaddr_un own{};
    socklen_t size = sizeof own;
    sockaddr_un broker{};
    socklen_t brokerSize = sizeof broker;
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &size) != 0 ||
        getpeername(descriptor, reinterpret_cast<sockaddr*>(&broker), &brokerSize) != 0) {
        return failGone();
    }
    std::memcpy(id.bytes, own.sun_path + 1 + nameSize, sizeof id.bytes);
    socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return socket >= 0 && connectTo(socket, broker);
}

bool Conversation::begin(const char* path, const sockaddr_un* ownName, socklen_t ownNameSize,
                         int flags) {
    sockaddr_un broker{};
    broker.sun_family = AF_UNIX;
    const size_t size = std::strlen(path);
    if (size == 0 || size >= sizeof broker.sun_path) {
        errno = ENODEV;
        return false;
    }
    std::memcpy(broker.sun_path, path, size);
    socket = ::socket(AF_UNIX, SOCK_STREAM | flags, 0);
    if (socket < 0) {
        return false;
    }
    if (ownName != nullptr &&
        bind(socket, reinterpret_cast<const sockaddr*>(ownName), ownNameSize) != 0) {
        return failGone();
    }
    return connectTo(socket, broker);
}

int Conversation::ask(devices::RequestKind kind, const DeviceId& id, iovec* parts, size_t count) {
    size_t size = 0;
    for (size_t i = 1; i < count; ++i) {
        size += parts[i].iov_len;
    }
    Fields<devices::requestHead> head;
    head.u32(static_cast<uint32_t>(devices::requestHead - devices::sizeField + size));
    head.u8(static_cast<uint8_t>(kind));
    for (const uint8_t byte : id.bytes) {
        head.u8(byte);
    }
    parts[0] = head.part();
    uint8_t answer[devices::answerHead];
    if (!guest::sendAll(socket, parts, count)) {
        failGone();
        return -1;
    }
    if (!receive(answer, sizeof answer)) {
        return -1;
    }
    virtual_adapter::ByteReader reader(answer, sizeof answer);
    const size_t rest = reader.u32();
    const auto result = static_cast<int32_t>(reader.u32());
    if (rest < sizeof answer - devices::sizeField || rest > devices::maxMessageSize) {
        errno = EIO;
        return -1;
    }
    left = rest - (sizeof answer - devices::sizeField);
    if (result < 0) {
        errno = result >= -maxError ? -result : EIO;
        return -1;
    }
    return result;
}

bool Conversation::take(void* data, size_t size) {
    if (size > left) {
        errno = EIO;
        return false;
    }
    left -= size;
    return receive(data, size);
}

bool Conversation::receive(void* data, size_t size) const {
    auto* next = static_cast<uint8_t*>(data);
    while (size > 0) {
        const ssize_t result = recv(socket, next, size, 0);
        if (result < 0 && errno == EINTR) {
            continue;
        }
        if (result <= 0) {
            errno = result == 0 ? ENODEV : errno;
            return failGone();
        }
        next += result;
        size -= static_cast<size_t>(result);
    }
    return true;
}

int Conversation::release() {
    const int released = socket;
    socket = -1;
    return released;
}

} // namespace preload
