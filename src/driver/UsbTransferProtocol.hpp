// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver/Message.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Splits a message into packets that each fit one HID report, and joins packets into a message.
///
/// A packet is a 16-bit little-endian header and its payload. Header bit 0 marks a message's first
/// packet, bit 1 its last one, bits 2 to 11 hold the payload's length.
class UsbTransferProtocol {
public:
    explicit UsbTransferProtocol(size_t reportSize);

    [[nodiscard]] size_t getEndpointSize() const { return endpointSize; }
    [[nodiscard]] size_t getPacketPayloadLength() const { return packetPayloadLength; }

    /// Makes the packet whose payload begins at @p offset, below the size of @p message: 0, and
    /// then a payload's length more each time. @p packet has room for a report. Returns the
    /// packet's size.
    size_t createPacket(uint8_t* packet, const Message& message, size_t offset) const {
        const size_t remaining = message.size() - offset;
        const size_t length = std::min(packetPayloadLength, remaining);
        unsigned header = static_cast<unsigned>(length) << lengthShift;
        uint8_t* const payload = packet + headerSize;
        if (offset == 0) {
            header |= firstPacketFlag;
            // All of the array, for which there is room, so that the compiler knows its size.
            std::copy(message.head.begin(), message.head.end(), payload);
            std::copy_n(message.data, length - message.headSize, payload + message.headSize);
        } else {
            std::copy_n(message.data + (offset - message.headSize), length, payload);
        }
        if (length == remaining) {
            header |= lastPacketFlag;
        }
        packet[0] = static_cast<uint8_t>(header & 0xFFU);
        packet[1] = static_cast<uint8_t>(header >> 8U);
        return headerSize + length;
    }

    /// Appends the packets of @p message to @p packets; an empty message has none.
    void createUsbOutTransferPackets(std::vector<std::vector<uint8_t>>& packets,
                                     const std::vector<uint8_t>& message) const;

    /// Adds one received packet to @p message. Returns whether the packet was the message's last.
    ///
    /// There is no sequence number: a continuation is appended to whatever @p message holds, and a
    /// first packet drops it. A length beyond the packet's end is cut to what the packet carries; a
    /// packet without a whole header is ignored. A message stops growing at `maxMessageSize`.
    bool receiveUsbInTransferPackets(std::vector<uint8_t>& message,
                                     const std::vector<uint8_t>& packet);

    /// No frame comes near it (the longest carries 65,535 bytes of data); it keeps a device that
    /// never ends its message from taking the host's memory.
    static constexpr size_t maxMessageSize = size_t{1} << 20U;

private:
    static constexpr size_t headerSize = 2;
    static constexpr unsigned firstPacketFlag = 0x1;
    static constexpr unsigned lastPacketFlag = 0x2;
    static constexpr unsigned lengthShift = 2;
    static constexpr unsigned lengthMask = 0x3FF;

    size_t endpointSize;
    size_t packetPayloadLength;
};
