// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "socket/messages.hpp"

#include <cstddef>
#include <optional>

namespace virtual_adapter {

/// What a client has sent, taken apart into messages.
class MessageBuffer {
public:
    struct Message {
        ClientMessageKind kind;
        /// What it carries, behind its kind.
        Bytes content;
    };

    void append(const uint8_t* data, size_t size) { bytes.insert(bytes.end(), data, data + size); }

    /// The oldest message that has come whole. Nothing any more once the bytes are malformed.
    std::optional<Message> next();

    /// Whether what has come can be no message: it is too long, or empty.
    [[nodiscard]] bool isMalformed() const { return malformed; }

private:
    Bytes bytes;
    bool malformed = false;
};

} // namespace virtual_adapter
