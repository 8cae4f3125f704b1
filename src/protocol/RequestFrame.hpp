// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver/Message.hpp"
#include "protocol/CommandCode.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Builds a request frame: transaction identifier and command code, then the payload's fields,
/// little-endian, and behind them its data.
class RequestFrame {
public:
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only what is sent is worth filling.
    [[gnu::always_inline]] RequestFrame(uint16_t transactionId, CommandCode command) {
        u16(transactionId).u16(static_cast<uint16_t>(command));
    }

    [[gnu::always_inline]] RequestFrame& u8(uint8_t value) {
        frame.head[frame.headSize++] = value;
        return *this;
    }
    [[gnu::always_inline]] RequestFrame& u16(uint16_t value) {
        return u8(static_cast<uint8_t>(value & 0xFFU)).u8(static_cast<uint8_t>(value >> 8U));
    }
    [[gnu::always_inline]] RequestFrame& u32(uint32_t value) {
        return u16(static_cast<uint16_t>(value & 0xFFFFU)).u16(static_cast<uint16_t>(value >> 16U));
    }
    /// A 16-bit count field; it wraps, as the frame has no room for more.
    RequestFrame& count16(size_t count) { return u16(static_cast<uint16_t>(count & 0xFFFFU)); }
    RequestFrame& flag(bool value) { return u8(value ? 1 : 0); }
    /// A field of `maxSubAddressSize` bytes: @p values, at most as many, and zeros behind them.
    RequestFrame& subAddress(const std::vector<uint8_t>& values) {
        for (size_t index = 0; index < maxSubAddressSize; ++index) {
            u8(index < values.size() ? values[index] : 0);
        }
        return *this;
    }

    /// The data, which ends the frame. It is not copied: it must stay as it is until the frame has
    /// been sent.
    RequestFrame& bytes(const std::vector<uint8_t>& values) {
        frame.data = values.data();
        frame.dataSize = values.size();
        return *this;
    }
    RequestFrame& bytes(std::vector<uint8_t>&& values) = delete;

    /// The most bytes that the register or sub-address field of a transfer holds.
    static constexpr size_t maxSubAddressSize = 4;

    [[nodiscard]] const Message& message() const { return frame; }

    /// The first bytes, with which the response begins as well.
    [[nodiscard]] uint32_t header() const {
        return frame.head[0] | uint32_t{frame.head[1]} << 8U | uint32_t{frame.head[2]} << 16U |
               uint32_t{frame.head[3]} << 24U;
    }

private:
    Message frame;
};
