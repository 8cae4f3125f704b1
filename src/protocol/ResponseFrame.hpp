// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "protocol/CommandCode.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Reads a frame that the adapter sent, by offsets from its first byte. The only code that indexes
/// such a frame, and the one rule for hostile ones: bytes past the end read as zero, and every size
/// stays what the reader asked for.
class ResponseFrame {
public:
    /// Refers to the bytes, does not copy them.
    ResponseFrame(const uint8_t* firstByte, size_t byteCount) : data(firstByte), size(byteCount) {}
    explicit ResponseFrame(const std::vector<uint8_t>& frame)
        : ResponseFrame(frame.data(), frame.size()) {}

    /// A frame without a whole header and status is not routed.
    static constexpr size_t minSize = 6;

    [[nodiscard]] uint16_t transactionId() const { return u16(0); }
    [[nodiscard]] CommandCode commandCode() const { return static_cast<CommandCode>(u16(2)); }
    /// Identifier and command code: what a response has in common with its request. 0, which no
    /// request begins with, when it does not hold them.
    [[nodiscard]] uint32_t header() const {
        return holds(4) ? data[0] | uint32_t{data[1]} << 8U | uint32_t{data[2]} << 16U |
                              uint32_t{data[3]} << 24U
                        : 0;
    }
    /// Whether the frame is the response to the request with this identifier and command code.
    [[nodiscard]] bool answers(uint16_t requestId, CommandCode command) const {
        return header() == (requestId | static_cast<uint32_t>(command) << 16U);
    }
    [[nodiscard]] uint16_t status() const { return u16(4); }

    [[nodiscard]] bool holds(size_t byteCount) const { return size >= byteCount; }
    [[nodiscard]] uint8_t u8(size_t offset) const { return offset < size ? data[offset] : 0; }
    [[nodiscard]] uint16_t u16(size_t offset) const {
        return static_cast<uint16_t>(u8(offset) | u8(offset + 1) << 8);
    }
    /// Most significant byte first, as the I3C bus carries its values.
    [[nodiscard]] uint16_t u16BigEndian(size_t offset) const {
        return static_cast<uint16_t>(u8(offset) << 8 | u8(offset + 1));
    }

    /// Replaces the contents of @p destination by the frame.
    void copyTo(std::vector<uint8_t>& destination) const {
        destination.resize(size);
        std::copy_n(data, size, destination.data());
    }
    /// Replaces the contents of @p destination by @p count bytes.
    void copyTo(std::vector<uint8_t>& destination, size_t offset, size_t count) const;
    /// Fills @p count bytes at @p destination.
    void copyTo(void* destination, size_t offset, size_t count) const;

private:
    const uint8_t* data;
    size_t size;
};
