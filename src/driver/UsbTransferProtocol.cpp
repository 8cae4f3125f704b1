#include "driver/UsbTransferProtocol.hpp"

#include <algorithm>
#include <iterator>

namespace {

constexpr size_t headerSize = 2;
constexpr unsigned firstPacketFlag = 0x1;
constexpr unsigned lastPacketFlag = 0x2;
constexpr unsigned lengthShift = 2;
constexpr unsigned lengthMask = 0x3FF;

} // namespace

UsbTransferProtocol::UsbTransferProtocol(size_t reportSize)
    : endpointSize(reportSize), packetPayloadLength(reportSize - headerSize) {}

size_t UsbTransferProtocol::createPacket(uint8_t* packet, const uint8_t* message,
                                         size_t messageSize, size_t offset) const {
    const size_t remaining = messageSize - offset;
    const size_t length = std::min(packetPayloadLength, remaining);
    const unsigned header = (offset == 0 ? firstPacketFlag : 0) |
                            (length == remaining ? lastPacketFlag : 0) |
                            (static_cast<unsigned>(length) & lengthMask) << lengthShift;
    packet[0] = static_cast<uint8_t>(header & 0xFFU);
    packet[1] = static_cast<uint8_t>(header >> 8U);
    std::copy_n(message + offset, length, packet + headerSize);
    return headerSize + length;
}

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
    if ((header & firstPacketFlag) != 0) {
        message.clear();
    }
    const size_t announced = header >> lengthShift & lengthMask;
    const size_t present = packet.size() - headerSize;
    const size_t length = std::min({announced, present, maxMessageSize - message.size()});
    const auto payload = std::next(packet.begin(), headerSize);
    message.insert(message.end(), payload, std::next(payload, static_cast<std::ptrdiff_t>(length)));
    return (header & lastPacketFlag) != 0;
}
