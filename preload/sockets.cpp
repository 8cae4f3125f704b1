// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/sockets.hpp"

#include "socket/Channel.hpp"

#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace preload {

namespace {

/// More sockets than these are used, but not held.
constexpr unsigned maxHeld = 16;

struct Held {
    int sockets[maxHeld];
    unsigned count;
};

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): written before main, and in
// a child before its first thread.
Held held;

int hold(const char* path) {
    const int socket = virtual_adapter::greetAdapter(path);
    virtual_adapter::ClientMessage message(virtual_adapter::ClientMessageKind::Hold);
    if (socket >= 0) {
        virtual_adapter::sendMessage(socket, message);
    }
    return socket;
}

} // namespace

bool socketPath(unsigned number, char (&path)[maxSocketPath]) {
    const char* next = std::getenv(socketVariable);
    for (unsigned i = 1; next != nullptr && *next != '\0'; ++i) {
        const size_t size = std::strcspn(next, ":");
        if (i == number) {
            const size_t kept = size < sizeof path ? size : 0;
            std::memcpy(path, next, kept);
            path[kept] = '\0';
            return true;
        }
        next += size;
        next += *next == ':' ? 1 : 0;
    }
    return false;
}

void holdAdapters() {
    const Held before = held;
    held.count = 0;
    char path[maxSocketPath];
    while (held.count < maxHeld && socketPath(held.count + 1, path)) {
        held.sockets[held.count++] = hold(path);
    }
    for (unsigned i = 0; i < before.count; ++i) {
        if (before.sockets[i] >= 0) {
            close(before.sockets[i]);
        }
    }
}

} // namespace preload
