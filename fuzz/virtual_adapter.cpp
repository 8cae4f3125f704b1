// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The virtual adapter's request side: reports of any content to both models, under every fault.
#include "Input.hpp"

#include "device/AdapterLink.hpp"

#include <array>

using fuzzing::Bytes;
using fuzzing::Input;
using fuzzing::require;
using virtual_adapter::AdapterLink;
using virtual_adapter::FaultKind;

namespace {

class Host {
public:
    Host(const virtual_adapter::AdapterVariant& model, FaultKind fault)
        : link(model, "VA-0001", {fault, virtual_adapter::defaultFaultDelay}),
          protocol(model.reportSize),
          minFrameSize(fault == FaultKind::ShortFrame ? 5 : 6) {}

    void write(const Bytes& report) {
        const bool wasOnBus = link.isOnBus();
        const bool taken = link.writeReport(report, now);
        require(wasOnBus || !taken, "an adapter that has left the bus takes nothing");
    }

    void request(const Bytes& frame) {
        std::vector<Bytes> packets;
        protocol.createUsbOutTransferPackets(packets, frame);
        for (const Bytes& packet : packets) {
            write(packet);
        }
    }

    void letTimePass(uint8_t centiseconds) {
        now += std::chrono::milliseconds(10 * int{centiseconds});
    }

    void readAll() {
        while (const std::optional<Bytes> report = link.takeInputReport(now)) {
            require(report->size() == protocol.getEndpointSize(), "a report has its full size");
            if (protocol.receiveUsbInTransferPackets(message, *report)) {
                require(message.size() >= minFrameSize, "a frame has a whole header and status");
                message.clear();
            }
        }
        const std::optional<AdapterLink::Time> due = link.nextInputDue();
        require(!due || *due > now, "what is due was taken");
    }

    /// Whatever was said, in the end every message has been sent to its last packet.
    void expectNothingHalfSaid() {
        letTimePass(0xFF);
        readAll();
        require(link.inputReportCount() == 0, "every report comes due");
        require(message.empty(), "every message is complete");
    }

private:
    AdapterLink link;
    UsbTransferProtocol protocol;
    size_t minFrameSize;
    AdapterLink::Time now{};
    Bytes message;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const auto& model = input.number<bool>() ? virtual_adapter::highSpeedVariant
                                             : virtual_adapter::fullSpeedVariant;
    const auto& faults = virtual_adapter::faultNames();
    Host host(model, faults[input.byte() % faults.size()].kind);
    while (!input.isEmpty()) {
        switch (input.byte()) {
        case 0:
            host.write(input.twoPartBytes());
            break;
        case 1:
            host.letTimePass(input.byte());
            break;
        case 2:
            host.readAll();
            break;
        default:
            host.request(input.twoPartBytes());
            break;
        }
    }
    host.expectNothingHalfSaid();
    return 0;
}
