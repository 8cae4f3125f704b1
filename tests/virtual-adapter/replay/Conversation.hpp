// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/readCapture.hpp"

#include "bytes/Bytes.hpp"

namespace test_support {

using virtual_adapter::Bytes;

/// A capture of what a test says: messages of one full-speed report each.
class Conversation {
public:
    capture::Capture capture;

    /// A request; its report's transfer ends with @p status.
    void request(const Bytes& frame, int32_t status = 0) {
        add(capture::UsbEvent::Submit, 0x01, reportOf(frame));
        add(capture::UsbEvent::Complete, 0x01, {});
        capture.records.back().record.status = status;
    }

    void message(const Bytes& frame) { add(capture::UsbEvent::Complete, 0x81, reportOf(frame)); }

    void leave() {
        add(capture::UsbEvent::Complete, 0x81, {});
        capture.records.back().record.status = -108;
    }

    void descriptor(uint8_t type, uint8_t index, const Bytes& content) {
        add(capture::UsbEvent::Submit, 0x80, {});
        capture.records.back().record.transfer = capture::UsbTransfer::Control;
        capture.records.back().record.setup = {0x80, 6, index, type};
        add(capture::UsbEvent::Complete, 0x80, content);
        capture.records.back().record.transfer = capture::UsbTransfer::Control;
    }

    static Bytes reportOf(const Bytes& frame) {
        Bytes report{static_cast<uint8_t>(3 + 4 * frame.size()), 0};
        report.insert(report.end(), frame.begin(), frame.end());
        report.resize(64);
        return report;
    }

private:
    void add(capture::UsbEvent event, uint8_t endpoint, const Bytes& data) {
        if (event == capture::UsbEvent::Submit || endpoint == 0x81) {
            ++transfer;
        }
        capture::CapturedRecord captured;
        captured.record.id = transfer;
        captured.record.event = event;
        captured.record.endpoint = endpoint;
        captured.record.bus = 1;
        captured.record.device = 5;
        captured.data = data;
        capture.records.push_back(captured);
    }

    uint64_t transfer = 0;
};

} // namespace test_support
