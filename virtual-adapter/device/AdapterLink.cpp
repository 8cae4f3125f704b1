// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterLink.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace virtual_adapter {

AdapterLink::AdapterLink(const AdapterVariant& variant, const std::string& serialNumber,
                         const Fault& fault, Board board)
    : adapter(variant, serialNumber, std::move(board)),
      faults(fault),
      protocol(variant.reportSize) {}

bool AdapterLink::writeReport(const Bytes& report, Time now) {
    auto packet = report.begin();
    bool taken = true;
    do {
        const auto rest = static_cast<size_t>(std::distance(packet, report.end()));
        const size_t size = std::min(protocol.getEndpointSize(), rest);
        const auto packetEnd = std::next(packet, static_cast<std::ptrdiff_t>(size));
        taken = takePacket(Bytes(packet, packetEnd), now);
        packet = packetEnd;
    } while (taken && packet != report.end());
    if (!isOnBus()) {
        forgetReportsAfter(now);
    }
    return taken;
}

bool AdapterLink::takePacket(const Bytes& packet, Time now) {
    unplugged = unplugged || faults.unplugsNow();
    if (!isOnBus() || faults.stallsNow()) {
        return false;
    }
    if (protocol.receiveUsbInTransferPackets(request, packet)) {
        for (const OutgoingFrame& outgoing : faults.apply(adapter.handle(request))) {
            send(outgoing, now);
        }
        request.clear();
    }
    return true;
}

void AdapterLink::send(const OutgoingFrame& outgoing, Time now) {
    const Time due = now + outgoing.delay;
    std::vector<Bytes> packets;
    protocol.createUsbOutTransferPackets(packets, outgoing.frame);
    for (Bytes& packet : packets) {
        packet.resize(protocol.getEndpointSize());
        inputReports.push_back({std::move(packet), due});
    }
}

void AdapterLink::forgetReportsAfter(Time now) {
    // What is behind a late report is late too.
    inputReports.erase(std::find_if(inputReports.begin(), inputReports.end(),
                                    [=](const InputReport& report) { return report.due > now; }),
                       inputReports.end());
}

std::optional<Bytes> AdapterLink::takeInputReport(Time now) {
    if (inputReports.empty() || inputReports.front().due > now) {
        return std::nullopt;
    }
    Bytes report = std::move(inputReports.front().bytes);
    inputReports.pop_front();
    return report;
}

std::optional<AdapterLink::Time> AdapterLink::nextInputDue() const {
    if (inputReports.empty()) {
        return std::nullopt;
    }
    return inputReports.front().due;
}

} // namespace virtual_adapter
