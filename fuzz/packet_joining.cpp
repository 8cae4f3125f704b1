// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Packets of any size and content, joined into messages; and back.
#include "Input.hpp"

#include "driver/UsbTransferProtocol.hpp"

using fuzzing::Bytes;
using fuzzing::Input;
using fuzzing::require;

namespace {

void expectRoundTrip(UsbTransferProtocol& protocol, const Bytes& message) {
    std::vector<Bytes> packets;
    protocol.createUsbOutTransferPackets(packets, message);
    Bytes joined;
    for (size_t i = 0; i < packets.size(); ++i) {
        require(packets[i].size() <= protocol.getEndpointSize(), "a packet fits one report");
        const bool complete = protocol.receiveUsbInTransferPackets(joined, packets[i]);
        require(complete == (i + 1 == packets.size()), "the last packet completes a message");
    }
    require(joined == message, "splitting and joining gives the message back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    UsbTransferProtocol protocol(input.number<bool>() ? 1024 : 64);
    Bytes message;
    while (!input.isEmpty()) {
        const Bytes packet = input.twoPartBytes();
        const size_t before = message.size();
        const bool complete = protocol.receiveUsbInTransferPackets(message, packet);
        require(complete == (packet.size() >= 2 && (packet[0] & 2U) != 0),
                "the packet with the last flag completes a message");
        require(message.size() <= UsbTransferProtocol::maxMessageSize, "a message is limited");
        require(message.size() <= before + packet.size(), "a packet adds no more than it holds");
        if (complete) {
            expectRoundTrip(protocol, message);
        }
    }
    return 0;
}
