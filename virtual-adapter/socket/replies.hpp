// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "socket/messages.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// An adapter as it is listed.
struct ListedAdapter {
    /// What a client opens it by: the first is 1.
    uint8_t number = 0;
    /// Without permission the texts are left out.
    bool isAccessible = true;
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    uint16_t release = 0;
    std::u32string manufacturer;
    std::u32string product;
    std::u32string serialNumber;
};

/// A whole message with @p content behind its kind.
Bytes replyOf(ReplyKind kind, const Bytes& content = {});
Bytes replyOf(ReplyKind kind, Outcome outcome, const Bytes& content = {});
/// With a text in UTF-8; what is longer than a message is cut.
Bytes textReply(ReplyKind kind, const std::string& text);

/// At most maxAdapters.
Bytes adaptersReply(const std::vector<ListedAdapter>& adapters);
Bytes openedReply(Outcome outcome, uint32_t session);

} // namespace virtual_adapter
