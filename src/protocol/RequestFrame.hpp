#pragma once

#include "protocol/CommandCode.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Builds a request frame: transaction identifier and command code, then the payload field by
/// field, little-endian. The only code that writes a frame.
class RequestFrame {
public:
    /// @p dataSize is the number of payload bytes beyond the fixed fields; with it the frame is
    /// allocated once.
    RequestFrame(uint16_t transactionId, CommandCode command, size_t dataSize = 0);
    // A copy would be a second allocation, which no encoder needs.
    RequestFrame(RequestFrame&&) = default;
    RequestFrame& operator=(RequestFrame&&) = default;

    RequestFrame& u8(uint8_t value);
    RequestFrame& u16(uint16_t value);
    RequestFrame& u32(uint32_t value);
    /// A 16-bit count field; it wraps, as the frame has no room for more.
    RequestFrame& count16(size_t count);
    RequestFrame& flag(bool value);
    RequestFrame& zeros(size_t count);
    RequestFrame& bytes(const std::vector<uint8_t>& values);

    /// The most bytes that the register or sub-address field of a transfer holds.
    static constexpr size_t longestSubAddress = 4;

    [[nodiscard]] const std::vector<uint8_t>& content() const { return frame; }

private:
    std::vector<uint8_t> frame;
};
