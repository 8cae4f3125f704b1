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

void UsbTransferProtocol::createUsbOutTransferPackets(std::vector<std::vector<uint8_t>>& packets,
                                                      const std::vector<uint8_t>& message) const {
    const size_t count = (message.size() + packetPayloadLength - 1) / packetPayloadLength;
    packets.reserve(packets.size() + count);
    auto payload = message.begin();
    for (size_t i = 0; i < count; ++i) {
        const auto remaining = static_cast<size_t>(std::distance(payload, message.end()));
        const size_t length = std::min(packetPayloadLength, remaining);
        const unsigned header = (i == 0 ? firstPacketFlag : 0) |
                                (i == count - 1 ? lastPacketFlag : 0) |
                                (static_cast<unsigned>(length) & lengthMask) << lengthShift;
        const auto payloadEnd = std::next(payload, static_cast<std::ptrdiff_t>(length));

        std::vector<uint8_t>& packet = packets.emplace_back();
        packet.reserve(headerSize + length);
        packet.push_back(static_cast<uint8_t>(header & 0xFFU));
        packet.push_back(static_cast<uint8_t>(header >> 8U));
        packet.insert(packet.end(), payload, payloadEnd);
        payload = payloadEnd;
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
    const size_t length = std::min({announced, present, longestMessage - message.size()});
    const auto payload = std::next(packet.begin(), headerSize);
    message.insert(message.end(), payload, std::next(payload, static_cast<std::ptrdiff_t>(length)));
    return (header & lastPacketFlag) != 0;
}
