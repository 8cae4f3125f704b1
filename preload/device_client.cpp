// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/device_client.hpp"
#include "preload/Conversation.hpp"
#include "preload/device_control.hpp"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace preload {

using devices::RequestKind;

namespace {

constexpr size_t prefixSize = sizeof devices::nameOfOpened - 1;
constexpr size_t pathOffset = offsetof(sockaddr_un, sun_path);
constexpr size_t nameOffset = 1 + prefixSize + devices::idSize;

/// Passes over digits, of which there must be some; null where there are none.
const char* behindDigits(const char* text) {
    const size_t count = text != nullptr ? std::strspn(text, "0123456789") : 0;
    return count > 0 ? text + count : nullptr;
}

const char* behind(const char* text, const char* start) {
    const size_t size = std::strlen(start);
    return text != nullptr && std::strncmp(text, start, size) == 0 ? text + size : nullptr;
}

bool isDeviceName(const char* name) {
    const char* const bus = behindDigits(behind(name, "i2c-"));
    const char* const chipSelect = behindDigits(behind(behindDigits(behind(name, "spidev")), "."));
    return (bus != nullptr && *bus == '\0') || (chipSelect != nullptr && *chipSelect == '\0');
}

/// The name that a descriptor has while it is a device. Returns its size.
socklen_t nameFor(const DeviceName& name, const DeviceId& id, sockaddr_un& address) {
    address.sun_family = AF_UNIX;
    char* const path = address.sun_path + 1;
    const size_t size = std::strlen(name.text);
    std::memcpy(path, devices::nameOfOpened, prefixSize);
    std::memcpy(path + prefixSize, id.bytes, sizeof id.bytes);
    std::memcpy(path + prefixSize + sizeof id.bytes, name.text, size);
    return static_cast<socklen_t>(pathOffset + nameOffset + size);
}

/// What is read only, as an iovec, which could also be written to.
iovec toSend(const void* data, size_t size) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): sendmsg does not.
    return {const_cast<void*>(data), size};
}

const char* brokerPath() {
    const char* const path = std::getenv(devices::socketVariable);
    return path != nullptr && *path != '\0' ? path : nullptr;
}

/// What reads past the preloaded functions is not to wait for ever; what writes there finds nobody
/// who reads.
void refuseStrangers(int socket) {
    const timeval soon{0, 1};
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &soon, sizeof soon);
}

} // namespace

bool isDevicePath(const char* path, DeviceName& name) {
    const char* const text = behind(path, "/dev/");
    if (text == nullptr || !isDeviceName(text) || std::strlen(text) > devices::maxName) {
        return false;
    }
    std::strncpy(name.text, text, sizeof name.text);
    return true;
}

bool isServed(const DeviceName& name) {
    const char* const broker = brokerPath();
    Conversation conversation;
    if (broker == nullptr || !conversation.begin(broker, nullptr, 0, SOCK_CLOEXEC)) {
        return false;
    }
    iovec parts[] = {{}, toSend(name.text, std::strlen(name.text))};
    return conversation.ask(RequestKind::Find, {}, parts, 2) == 0;
}

int openDevice(const DeviceName& name, int flags) {
    const char* const broker = brokerPath();
    if (broker == nullptr) {
        errno = ENOENT;
        return -1;
    }
    if ((flags & O_DIRECTORY) != 0) {
        errno = ENOTDIR;
        return -1;
    }
    DeviceId id{};
    if (getrandom(id.bytes, sizeof id.bytes, 0) != static_cast<ssize_t>(sizeof id.bytes)) {
        errno = EIO;
        return -1;
    }
    sockaddr_un own{};
    const socklen_t ownSize = nameFor(name, id, own);
    Conversation conversation;
    const int closing = (flags & O_CLOEXEC) != 0 ? SOCK_CLOEXEC : 0;
    if (!conversation.begin(broker, &own, ownSize, closing)) {
        return -1;
    }
    Fields<1> access;
    access.u8(static_cast<unsigned>(flags) & O_ACCMODE);
    iovec parts[] = {{}, access.part(), toSend(name.text, std::strlen(name.text))};
    const int result = conversation.ask(RequestKind::Open, id, parts, 3);
    if (result != 0) {
        errno = result < 0 ? errno : EIO;
        return -1;
    }
    const int descriptor = conversation.release();
    refuseStrangers(descriptor);
    return descriptor;
}

bool isDevice(int descriptor, DeviceName& name) {
    const int error = errno;
    sockaddr_un own{};
    socklen_t size = sizeof own;
    const bool hasName = getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &size) == 0 &&
                         own.sun_family == AF_UNIX && size > pathOffset + nameOffset &&
                         size <= pathOffset + nameOffset + devices::maxName &&
                         own.sun_path[0] == '\0' &&
                         std::memcmp(own.sun_path + 1, devices::nameOfOpened, prefixSize) == 0;
    errno = error;
    if (!hasName) {
        return false;
    }
    const size_t length = size - pathOffset - nameOffset;
    std::memcpy(name.text, own.sun_path + nameOffset, length);
    name.text[length] = '\0';
    return true;
}

bool isDevice(int descriptor) {
    DeviceName name{};
    return isDevice(descriptor, name);
}

ssize_t readDevice(int descriptor, void* data, size_t size) {
    Conversation conversation;
    DeviceId id{};
    Fields<4> count;
    count.u32(size < UINT32_MAX ? static_cast<uint32_t>(size) : UINT32_MAX);
    iovec parts[] = {{}, count.part()};
    if (!conversation.begin(descriptor, id)) {
        return -1;
    }
    const int result = conversation.ask(RequestKind::Read, id, parts, 2);
    if (result < 0) {
        return -1;
    }
    if (static_cast<size_t>(result) > size) {
        errno = EIO;
        return -1;
    }
    return conversation.take(data, static_cast<size_t>(result)) ? result : -1;
}

ssize_t writeDevice(int descriptor, const void* data, size_t size) {
    Conversation conversation;
    DeviceId id{};
    // One byte more than any device takes: what it does with too many it does with all of them.
    const size_t sent = size <= devices::maxSpiBytes ? size : devices::maxSpiBytes + 1;
    iovec parts[] = {{}, toSend(data, sent)};
    if (!conversation.begin(descriptor, id)) {
        return -1;
    }
    const int result = conversation.ask(RequestKind::Write, id, parts, 2);
    if (result > 0 && static_cast<size_t>(result) > size) {
        errno = EIO;
        return -1;
    }
    return result;
}

int controlDevice(int descriptor, uint32_t request, void* argument) {
    Conversation conversation;
    DeviceId id{};
    return conversation.begin(descriptor, id) ? control(conversation, id, request, argument) : -1;
}

} // namespace preload
