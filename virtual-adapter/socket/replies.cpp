// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "socket/replies.hpp"

#include "bytes/ByteWriter.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

/// Wide characters on the other side, so that it needs no decoder.
void append(ByteWriter& writer, const std::u32string& text) {
    writer.u16(static_cast<uint16_t>(text.size()));
    for (const char32_t character : text) {
        writer.u32(character);
    }
}

} // namespace

Bytes replyOf(ReplyKind kind, const Bytes& content) {
    return ByteWriter()
        .u32(static_cast<uint32_t>(content.size() + 1))
        .u8(static_cast<uint8_t>(kind))
        .bytes(content)
        .take();
}

Bytes replyOf(ReplyKind kind, Outcome outcome, const Bytes& content) {
    return replyOf(kind, ByteWriter().u8(static_cast<uint8_t>(outcome)).bytes(content).take());
}

Bytes textReply(ReplyKind kind, const std::string& text) {
    const size_t size = std::min(text.size(), maxTextSize);
    return replyOf(kind, Bytes(text.data(), text.data() + size));
}

Bytes adaptersReply(const std::vector<ListedAdapter>& adapters) {
    ByteWriter writer;
    writer.u8(static_cast<uint8_t>(adapters.size()));
    for (const ListedAdapter& adapter : adapters) {
        writer.u8(adapter.number).u8(adapter.isAccessible ? 1 : 0);
        writer.u16(adapter.vendorId).u16(adapter.productId).u16(adapter.release);
        append(writer, adapter.manufacturer);
        append(writer, adapter.product);
        append(writer, adapter.serialNumber);
    }
    return replyOf(ReplyKind::Adapters, writer.take());
}

Bytes openedReply(Outcome outcome, uint32_t session) {
    return replyOf(ReplyKind::Opened, outcome, ByteWriter().u32(session).take());
}

} // namespace virtual_adapter
