// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The virtual adapter's request side: reports of any content to both models, under any faults.
#include "Input.hpp"

#include "device/AdapterLink.hpp"

#include "faults/CommandNames.hpp"

#include <algorithm>

using fuzzing::Bytes;
using fuzzing::Input;
using fuzzing::require;
using virtual_adapter::AdapterLink;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Fault;
using virtual_adapter::FaultKind;

namespace {

class Host {
public:
    explicit Host(const AdapterSettings& settings)
        : link(settings),
          protocol(settings.identity.variant.reportSize),
          minFrameSize(settings.hasFault(FaultKind::ShortFrame) ? 5 : 6) {}

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
        while (const std::optional<AdapterLink::Time> due = link.nextInputDue()) {
            now = std::max(now, *due);
            readAll();
        }
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

/// A fault of any kind and place.
Fault faultFrom(Input& input) {
    const auto& faults = virtual_adapter::faultNames();
    const auto& commands = virtual_adapter::commandNames();
    Fault fault{faults[input.byte() % faults.size()].kind, {}};
    fault.place.request = 1 + input.byte() % 8;
    const uint8_t command = input.byte();
    if (command < commands.size()) {
        fault.place.command = virtual_adapter::findCommand(commands[command]);
    }
    return fault;
}

AdapterSettings settingsFrom(Input& input) {
    AdapterSettings settings;
    settings.identity = virtual_adapter::usbIdentities[input.number<bool>() ? 1 : 0];
    for (unsigned left = input.byte() % 4; left > 0; --left) {
        settings.faults.push_back(faultFrom(input));
    }
    if (input.number<bool>()) {
        settings.latency = settings.identity.timeOfFrame;
    }
    return settings;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Host host(settingsFrom(input));
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
