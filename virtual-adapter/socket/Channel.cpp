// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "socket/Channel.hpp"

#include "guest/outOfTheWay.hpp"
#include "guest/sendAll.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace virtual_adapter {

namespace {

/// Receives at least @p wanted bytes behind the @p have that are there, at most @p capacity in all.
/// Returns how many there are then; less than wanted when the connection has ended.
size_t receive(int socket, uint8_t* buffer, size_t have, size_t wanted, size_t capacity) {
    while (have < wanted) {
        const ssize_t result = recv(socket, buffer + have, capacity - have, 0);
        if (result < 0 && errno == EINTR) {
            continue;
        }
        if (result <= 0) {
            break;
        }
        have += static_cast<size_t>(result);
    }
    return have;
}

void print(const uint8_t* text, size_t size) {
    while (size > 0) {
        const ssize_t written = write(STDERR_FILENO, text, size);
        if (written <= 0) {
            return;
        }
        text += written;
        size -= static_cast<size_t>(written);
    }
}

} // namespace

int connectToAdapter(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const size_t size = std::strlen(path);
    if (size == 0 || size >= sizeof address.sun_path) {
        return -1;
    }
    std::memcpy(address.sun_path, path, size);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) {
        return -1;
    }
    while (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        if (errno != EINTR) {
            close(descriptor);
            return -1;
        }
    }
    return guest::outOfTheWay(descriptor);
}

int greetAdapter(const char* path) {
    const int socket = connectToAdapter(path);
    ClientMessage hello(ClientMessageKind::Hello);
    hello.u32(helloMagic).u16(socketVersion);
    if (socket >= 0 && !sendMessage(socket, hello)) {
        close(socket);
        return -1;
    }
    return socket;
}

bool sendMessage(int socket, ClientMessage& message) {
    message.finish();
    // sendmsg does not write to what it sends.
    // NOLINTBEGIN(cppcoreguidelines-pro-type-const-cast)
    iovec parts[] = {{const_cast<uint8_t*>(message.fields()), message.fieldsSize()},
                     {const_cast<void*>(message.rest()), message.restSize()}};
    // NOLINTEND(cppcoreguidelines-pro-type-const-cast)
    return guest::sendAll(socket, parts, message.restSize() > 0 ? 2 : 1);
}

ReplyStep nextReply(const uint8_t* bytes, size_t have, size_t capacity, ReplyKind kind,
                    size_t& size) {
    ByteReader head(bytes, have);
    const size_t rest = head.u32();
    const auto received = static_cast<ReplyKind>(head.u8());
    size = messageHead;
    if (head.overran()) {
        return ReplyStep::Incomplete;
    }
    const bool isText = received == ReplyKind::Notice || received == ReplyKind::Refused;
    if (rest < 1 || rest > capacity - messageSizeField || (received != kind && !isText)) {
        return ReplyStep::Broken;
    }
    size = messageSizeField + rest;
    if (have < size) {
        return ReplyStep::Incomplete;
    }
    if (received != kind) {
        return ReplyStep::Text;
    }
    return have == size ? ReplyStep::Wanted : ReplyStep::Broken;
}

bool receiveReply(int socket, ReplyKind kind, uint8_t* buffer, size_t capacity, Reply& reply) {
    size_t have = 0;
    for (;;) {
        size_t size = 0;
        switch (nextReply(buffer, have, capacity, kind, size)) {
        case ReplyStep::Incomplete:
            have = receive(socket, buffer, have, size, capacity);
            if (have < size) {
                return false;
            }
            break;
        case ReplyStep::Text:
            print(buffer + messageHead, size - messageHead);
            have -= size;
            std::memmove(buffer, buffer + size, have);
            break;
        case ReplyStep::Wanted:
            reply = {buffer + messageHead, size - messageHead};
            return true;
        case ReplyStep::Broken:
            return false;
        }
    }
}

} // namespace virtual_adapter
