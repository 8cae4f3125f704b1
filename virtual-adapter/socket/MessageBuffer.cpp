// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "socket/MessageBuffer.hpp"

#include "bytes/ByteReader.hpp"

namespace virtual_adapter {

std::optional<MessageBuffer::Message> MessageBuffer::next() {
    ByteReader reader(bytes);
    const size_t size = reader.u32();
    if (malformed || reader.overran()) {
        return std::nullopt;
    }
    malformed = size < 1 || size > maxMessageSize;
    if (malformed || reader.remaining() < size) {
        return std::nullopt;
    }
    const auto kind = static_cast<ClientMessageKind>(reader.u8());
    Message message{kind, reader.bytes(size - 1)};
    bytes.erase(bytes.begin(),
                bytes.begin() + static_cast<Bytes::difference_type>(messageSizeField + size));
    return message;
}

} // namespace virtual_adapter
