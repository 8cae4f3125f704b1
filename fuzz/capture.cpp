// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What a file may hold that is given out for a capture: what is read can be written again, and
// played back.
#include "Input.hpp"

#include "replay/ReplayLink.hpp"

#include "capture/Blocks.hpp"
#include "capture/readCapture.hpp"

#include <algorithm>
#include <tuple>

using capture::Blocks;
using capture::Capture;
using capture::CapturedRecord;
using fuzzing::Bytes;
using fuzzing::require;

namespace {

auto contentOf(const CapturedRecord& captured) {
    const capture::UsbRecord& record = captured.record;
    return std::make_tuple(record.id, record.event, record.transfer, record.endpoint, record.device,
                           record.bus, record.hasSetup, record.length, record.setup, record.time,
                           captured.data);
}

/// A program that sends every request as it was recorded; last, one more.
void playBack(const virtual_adapter::Recording& recording) {
    virtual_adapter::ReplayLink link(recording, [](const std::string&) {});
    const UsbTransferProtocol framing(recording.settings.identity.variant.reportSize);
    const auto send = [&](const Bytes& frame) {
        std::vector<Bytes> packets;
        framing.createUsbOutTransferPackets(packets, frame);
        for (const Bytes& packet : packets) {
            link.writeReport(packet, {});
        }
        while (const auto report = link.takeInputReport({})) {
            require(report->size() == framing.getEndpointSize(), "a report is a whole one");
        }
    };
    for (const virtual_adapter::RecordedRequest& request : recording.requests) {
        send(request.frame);
    }
    // A request of no bytes takes no report: a capture may hold one, and nobody can send it again.
    const bool canBeSent = std::none_of(recording.requests.begin(), recording.requests.end(),
                                        [](const auto& request) { return request.frame.empty(); });
    require(!canBeSent || !link.isOnBus() || link.missing().empty(),
            "what was sent in order is not missed");
    send({0x01, 0x00, 0xFF, 0xFF});
    require(!link.isOnBus(), "a request that was not recorded ends it");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Capture captured;
    try {
        captured = capture::readCapture(Bytes(data, data + size));
    } catch (const capture::InvalidCapture&) {
        return 0;
    }
    for (const CapturedRecord& record : captured.records) {
        if (record.data.size() > Blocks::maxData) {
            continue;
        }
        Blocks blocks;
        blocks.section("fuzzer");
        blocks.usbInterface("fuzzer");
        blocks.record(record.record, record.data.data(), record.data.size());
        const Bytes written(blocks.data(), blocks.data() + blocks.size());
        const Capture again = capture::readCapture(written);
        require(!again.isCut && again.records.size() == 1, "a written record is read");
        require(contentOf(again.records[0]) == contentOf(record), "it is read as it was");
    }
    for (const virtual_adapter::Recording& recording : virtual_adapter::recordingsOf(captured)) {
        playBack(recording);
    }
    return 0;
}
