// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/UsbTransferProtocol.hpp"

#include <algorithm>

UsbTransferProtocol::UsbTransferProtocol(size_t reportSize)
    : endpointSize(reportSize), packetPayloadLength(reportSize - headerSize) {}

void UsbTransferProtocol::createUsbOutTransferPackets(std::vector<std::vector<uint8_t>>& packets,
                                                      const std::vector<uint8_t>& message) const {
    Message split{};
    split.data = message.data();
    split.dataSize = message.size();
    for (size_t offset = 0; offset < message.size(); offset += packetPayloadLength) {
        std::vector<uint8_t>& packet = packets.emplace_back(endpointSize);
        packet.resize(createPacket(packet.data(), split, offset));
    }
}

bool UsbTransferProtocol::receiveUsbInTransferPackets(std::vector<uint8_t>& message,
                                                      const std::vector<uint8_t>& packet) {
    if (packet.size() < headerSize) {
        return false;
    }
    const uint8_t* const bytes = packet.data();
    const unsigned header = bytes[0] | static_cast<unsigned>(bytes[1]) << 8U;
    const size_t announced = header >> lengthShift & lengthMask;
    const size_t kept = (header & firstPacketFlag) != 0 ? 0 : message.size();
    const size_t length =
        std::min(std::min(announced, packet.size() - headerSize), maxMessageSize - kept);
    message.resize(kept + length);
    std::copy_n(bytes + headerSize, length, message.data() + kept);
    return (header & lastPacketFlag) != 0;
}
