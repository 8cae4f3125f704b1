// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "protocol/CommandCode.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Builds a request frame: transaction identifier and command code, then the payload field by
/// field, little-endian. The only code that writes a frame.
///
/// A frame of up to `maxSizeInPlace` bytes lies in the object itself, a longer one in memory that
/// is allocated once.
class RequestFrame {
public:
    static constexpr size_t maxSizeInPlace = 64;

    /// @p dataSize is the number of payload bytes beyond the fixed fields, for a frame whose data
    /// is not added by one call of bytes().
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only what is sent is worth filling.
    RequestFrame(uint16_t transactionId, CommandCode command, size_t dataSize = 0) {
        if (dataSize > maxSizeInPlace - maxFixedSize) {
            reserve(maxFixedSize + dataSize);
        }
        u16(transactionId).u16(static_cast<uint16_t>(command));
    }
    // A copy would be a second allocation, which no encoder needs.
    RequestFrame(RequestFrame&&) = default;
    RequestFrame& operator=(RequestFrame&&) = default;

    RequestFrame& u8(uint8_t value) { return append(&value, sizeof(value)); }
    RequestFrame& u16(uint16_t value) {
        return u8(static_cast<uint8_t>(value & 0xFFU)).u8(static_cast<uint8_t>(value >> 8U));
    }
    RequestFrame& u32(uint32_t value) {
        return u16(static_cast<uint16_t>(value & 0xFFFFU)).u16(static_cast<uint16_t>(value >> 16U));
    }
    /// A 16-bit count field; it wraps, as the frame has no room for more.
    RequestFrame& count16(size_t count) { return u16(static_cast<uint16_t>(count & 0xFFFFU)); }
    RequestFrame& flag(bool value) { return u8(value ? 1 : 0); }
    RequestFrame& bytes(const std::vector<uint8_t>& values) {
        return append(values.data(), values.size());
    }
    /// A field of `maxSubAddressSize` bytes: @p values, at most as many, and zeros behind them.
    RequestFrame& subAddress(const std::vector<uint8_t>& values);

    /// The most bytes that the register or sub-address field of a transfer holds.
    static constexpr size_t maxSubAddressSize = 4;

    [[nodiscard]] const uint8_t* data() const {
        return longer.empty() ? inPlace.data() : longer.data();
    }
    [[nodiscard]] uint16_t transactionId() const { return headerField(0); }
    [[nodiscard]] CommandCode commandCode() const {
        return static_cast<CommandCode>(headerField(2));
    }
    [[nodiscard]] size_t size() const { return longer.empty() ? sizeInPlace : longer.size(); }

private:
    // The longest header with its fixed fields, that of the I2C and I3C transfers, is 14 bytes.
    static constexpr size_t maxFixedSize = 16;

    RequestFrame& append(const uint8_t* values, size_t count) {
        if (count > maxSizeInPlace - sizeInPlace || !longer.empty()) {
            return appendToLonger(values, count);
        }
        std::copy_n(values, count, inPlace.data() + sizeInPlace);
        sizeInPlace += count;
        return *this;
    }
    [[nodiscard]] uint16_t headerField(size_t offset) const {
        return static_cast<uint16_t>(data()[offset] | data()[offset + 1] << 8);
    }
    void reserve(size_t size);
    RequestFrame& appendToLonger(const uint8_t* values, size_t count);

    std::array<uint8_t, maxSizeInPlace> inPlace;
    size_t sizeInPlace = 0;
    std::vector<uint8_t> longer;
};
