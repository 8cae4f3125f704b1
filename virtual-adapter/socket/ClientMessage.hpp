// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "socket/messages.hpp"

#include <cstddef>
#include <cstdint>

namespace virtual_adapter {

/// What a client says: its fields, and where the bytes lie that follow them. Takes no memory.
class ClientMessage {
public:
    explicit ClientMessage(ClientMessageKind kind) {
        u32(0);
        u8(static_cast<uint8_t>(kind));
    }

    ClientMessage& u8(uint8_t value) {
        if (length < sizeof head) {
            head[length++] = value;
        }
        return *this;
    }
    ClientMessage& u16(uint16_t value) {
        return u8(static_cast<uint8_t>(value & 0xFFU)).u8(static_cast<uint8_t>(value >> 8U));
    }
    ClientMessage& u32(uint32_t value) {
        return u16(static_cast<uint16_t>(value & 0xFFFFU)).u16(static_cast<uint16_t>(value >> 16U));
    }
    /// Behind the fields; the bytes must outlive the message.
    ClientMessage& bytes(const void* data, size_t size) {
        tail = data;
        tailLength = size;
        return *this;
    }

    /// Fills in the size. Call it last.
    void finish() {
        const size_t size = length + tailLength - messageSizeField;
        for (size_t i = 0; i < messageSizeField; ++i) {
            head[i] = static_cast<uint8_t>(size >> (8 * i) & 0xFFU);
        }
    }

    [[nodiscard]] const uint8_t* fields() const { return head; }
    [[nodiscard]] size_t fieldsSize() const { return length; }
    [[nodiscard]] const void* rest() const { return tail; }
    [[nodiscard]] size_t restSize() const { return tailLength; }

private:
    uint8_t head[24] = {};
    size_t length = 0;
    const void* tail = nullptr;
    size_t tailLength = 0;
};

} // namespace virtual_adapter
