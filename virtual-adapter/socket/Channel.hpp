// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "socket/ClientMessage.hpp"

#include <cstddef>
#include <cstdint>

namespace virtual_adapter {

// The client's end of a connection. Nothing here throws, takes memory or raises a signal; errors
// are told by the result. The descriptors block, close on exec, and lie high, where programs that
// count on the low numbers do not meet them.

/// Connects to the adapter at @p path. Returns the descriptor, or -1.
int connectToAdapter(const char* path);

/// As above, and says hello.
int greetAdapter(const char* path);

/// Sends a whole message.
bool sendMessage(int socket, ClientMessage& message);

/// A reply without its size and its kind; the buffer's owner keeps the bytes.
struct Reply {
    const uint8_t* data = nullptr;
    size_t size = 0;

    [[nodiscard]] ByteReader reader() const { return {data, size}; }
};

enum class ReplyStep {
    /// More bytes must come.
    Incomplete,
    /// The reply that was waited for, and nothing behind it.
    Wanted,
    /// A text for people comes first.
    Text,
    /// None that can be: too long, of another kind, or with bytes behind it.
    Broken,
};

/// What the first message among @p have bytes is to one who waits for @p kind and has room for
/// @p capacity bytes. @p size is how long the message is, once that is known.
ReplyStep nextReply(const uint8_t* bytes, size_t have, size_t capacity, ReplyKind kind,
                    size_t& size);

/// Waits for the reply of the given kind and stores it in @p buffer. Notices that come before it
/// are printed on the standard error output. False when the connection has ended, when the reply
/// is another one, or longer than @p capacity.
bool receiveReply(int socket, ReplyKind kind, uint8_t* buffer, size_t capacity, Reply& reply);

} // namespace virtual_adapter
