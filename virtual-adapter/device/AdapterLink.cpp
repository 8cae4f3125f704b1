// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterLink.hpp"

#include "bytes/ByteReader.hpp"
#include "device/BoardStimuli.hpp"
#include "faults/BusFaults.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace virtual_adapter {

namespace {

/// The code of the command that a request asks for, if it has come that far.
FaultSchedule::Code codeOf(const Frame& request) {
    ByteReader reader(request);
    reader.skip(2);
    const uint16_t code = reader.u16();
    return reader.overran() ? FaultSchedule::Code() : code;
}

bool beginsMessage(const Bytes& packet) {
    constexpr unsigned firstPacketFlag = 0x1;
    return !packet.empty() && (packet.front() & firstPacketFlag) != 0;
}

std::unique_ptr<Adapter> makeAdapter(const AdapterSettings& settings) {
    return std::make_unique<Adapter>(settings.identity.variant, settings.serialNumber,
                                     settings.makeBoard());
}

} // namespace

AdapterLink::AdapterLink(AdapterSettings chosen)
    : settings(std::move(chosen)),
      adapter(makeAdapter(settings)),
      faults(settings.faults),
      protocol(settings.identity.variant.reportSize),
      input(settings.latency) {}

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
    if (adapter->inBootMode()) {
        input.hurry(now);
    }
    if (unplugged) {
        input.forgetAfter(now);
    }
    return taken;
}

bool AdapterLink::takePacket(const Bytes& packet, Time now) {
    if (!isOnBus()) {
        return false;
    }
    // What a report begins is known before the adapter takes it.
    Frame begun;
    const bool isWhole = protocol.receiveUsbInTransferPackets(begun, packet);
    if (beginsMessage(packet)) {
        runSchedule(now);
        const FaultSet next = faults.next(codeOf(begun));
        unplugged = unplugged || next.has(FaultKind::Unplug);
        stalled = next.has(FaultKind::Stall);
    }
    if (unplugged || stalled) {
        return false;
    }
    input.hostWrites(now);
    protocol.receiveUsbInTransferPackets(request, packet);
    return !isWhole || carryOutRequest();
}

bool AdapterLink::carryOutRequest() {
    const FaultSet striking = faults.begin(codeOf(request));
    // A request whose first report did not tell its command.
    unplugged = striking.has(FaultKind::Unplug);
    stalled = striking.has(FaultKind::Stall);
    if (!unplugged && !stalled) {
        std::vector<CountedFrame> answer;
        {
            const BusFaults busFaults(adapter->getBoard(), striking);
            answer = adapter->handle(request);
        }
        send(frameFaults.apply(striking, std::move(answer)));
        if (striking.has(FaultKind::LateResponse)) {
            input.keepHostBehind(settings.identity.timeOfFrame);
        }
    }
    request.clear();
    return !unplugged && !stalled;
}

std::string AdapterLink::tell(const std::string& line, Time now) {
    try {
        return apply(parseStimulus(line), now);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

std::string AdapterLink::apply(const Stimulus& stimulus, Time now) {
    const bool plugs = std::holds_alternative<PlugStimulus>(stimulus) && !isOnBus();
    if (plugs || std::holds_alternative<ResetStimulus>(stimulus)) {
        reset();
        return {};
    }
    if (std::holds_alternative<UnplugStimulus>(stimulus)) {
        unplugged = true;
        input.forgetAfter(now);
        return {};
    }
    if (const auto* const wanted = std::get_if<FaultRequest>(&stimulus)) {
        if (wanted->fault) {
            return faults.add(*wanted->fault);
        }
        faults.clear();
        return {};
    }
    std::string complaint = stimulateBoard(*adapter, stimulus);
    const std::vector<OutgoingFrame> said =
        frameFaults.applyToNotifications(adapter->takeNotifications());
    if (isOnBus()) {
        input.leaveNotBefore(now);
        send(said);
    }
    return complaint;
}

void AdapterLink::reset() {
    adapter = makeAdapter(settings);
    faults = FaultSchedule(settings.faults);
    frameFaults = {};
    input = InputQueue(settings.latency);
    request.clear();
    unplugged = false;
    stalled = false;
    lastScheduled = 0;
}

void AdapterLink::runSchedule(Time now) {
    const size_t next = faults.requestCount() + 1;
    if (next == lastScheduled) {
        return;
    }
    lastScheduled = next;
    for (const ScheduledStimulus& scheduled : settings.schedule) {
        const std::string complaint =
            scheduled.request == next ? apply(scheduled.stimulus, now) : "";
        if (!complaint.empty() && settings.complain) {
            settings.complain("before request " + std::to_string(next) + ": " + complaint);
        }
    }
    // After a reset this request is the first.
    lastScheduled = faults.requestCount() + 1;
}

void AdapterLink::send(const std::vector<OutgoingFrame>& frames) {
    for (const OutgoingFrame& outgoing : frames) {
        std::vector<Bytes> packets;
        protocol.createUsbOutTransferPackets(packets, outgoing.frame);
        for (Bytes& packet : packets) {
            packet.resize(protocol.getEndpointSize());
        }
        input.send(std::move(packets),
                   outgoing.isResponse ? InputQueue::Message::Response
                                       : InputQueue::Message::Notification,
                   outgoing.late ? settings.faultDelay : InputQueue::Duration(0));
    }
}

} // namespace virtual_adapter
