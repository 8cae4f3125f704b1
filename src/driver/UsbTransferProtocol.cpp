// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/UsbTransferProtocol.hpp"

#include <algorithm>

UsbTransferProtocol::UsbTransferProtocol(size_t reportSize)
    : endpointSize(reportSize), packetPayloadLength(reportSize - headerSize) {}

void UsbTransferProtocol::createUsbOutTransferPackets(std::vector<std::vector<uint8_t>>& packets,
                                                      const std::vector<uint8_t>& message) const {
    for (size_t offset = 0; offset < message.size(); offset += packetPayloadLength) {
        std::vector<uint8_t>& packet = packets.emplace_back(endpointSize);
        packet.resize(createPacket(packet.data(), message.data(), message.size(), offset));
    }
}

bool UsbTransferProtocol::receiveUsbInTransferPackets(std::vector<uint8_t>& message,
                                                      const std::vector<uint8_t>& packet) {
    if (packet.size() < headerSize) {
        return false;
    }
    const unsigned header = packet[0] | static_cast<unsigned>(packet[1]) << 8U;
    const size_t announced = header >> lengthShift & lengthMask;
    const uint8_t* const payload = packet.data() + headerSize;
    size_t length = std::min(announced, packet.size() - headerSize);
    if ((header & firstPacketFlag) != 0) {
        message.assign(payload, payload + length);
    } else {
        length = std::min(length, maxMessageSize - message.size());
        message.insert(message.end(), payload, payload + length);
    }
    return (header & lastPacketFlag) != 0;
}
