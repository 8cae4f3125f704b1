// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "replay/Recording.hpp"

#include "bytes/ByteReader.hpp"

#include "driver/UsbTransferProtocol.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <string>
#include <utility>

namespace virtual_adapter {

namespace {

using capture::CapturedRecord;
using capture::UsbEvent;
using capture::UsbRecord;
using capture::UsbTransfer;

constexpr uint8_t getDescriptor = 6;
constexpr uint8_t deviceDescriptor = 1;
constexpr uint8_t stringDescriptor = 3;
constexpr size_t deviceDescriptorSize = 18;

std::string utf8Of(ByteReader& units) {
    std::string text;
    const auto append = [&text](unsigned lead, uint32_t character, unsigned shift) {
        text += static_cast<char>(lead | character >> shift);
        for (; shift > 0; shift -= 6) {
            text += static_cast<char>(0x80U | (character >> (shift - 6) & 0x3FU));
        }
    };
    uint32_t high = 0;
    while (units.remaining() >= 2) {
        uint32_t character = units.u16();
        if (character >= 0xD800 && character < 0xDC00) {
            high = character;
            continue;
        }
        if (character >= 0xDC00 && character < 0xE000) {
            character =
                high == 0 ? U'?' : 0x10000 + ((high & 0x3FFU) << 10U | (character & 0x3FFU));
        }
        high = 0;
        if (character < 0x80) {
            append(0, character, 0);
        } else if (character < 0x800) {
            append(0xC0, character, 6);
        } else if (character < 0x10000) {
            append(0xE0, character, 12);
        } else {
            append(0xF0, character, 18);
        }
    }
    return text;
}

/// What the records of one device say, one after another.
class Listener {
public:
    void hear(const CapturedRecord& captured) {
        const UsbRecord& record = captured.record;
        if (record.transfer == UsbTransfer::Control) {
            hearControl(captured);
        } else if (record.transfer == UsbTransfer::Interrupt && record.isIn()) {
            hearInput(captured);
        } else if (record.transfer == UsbTransfer::Interrupt) {
            hearOutput(captured);
        }
    }

    /// Nothing when the device is no adapter.
    std::optional<Recording> takeRecording() {
        const auto* const identity = std::find_if(
            usbIdentities.begin(), usbIdentities.end(), [this](const UsbIdentity& each) {
                return productId != 0 ? each.vendorId == vendorId && each.productId == productId
                                      : each.variant.reportSize == reportSize;
            });
        if (identity == usbIdentities.end() ||
            (recording.requests.empty() && recording.messages.empty())) {
            return std::nullopt;
        }
        recording.settings.identity = *identity;
        const std::string& serialNumber = strings[serialNumberIndex];
        if (!serialNumber.empty()) {
            recording.settings.serialNumber = serialNumber;
        }
        return std::move(recording);
    }

private:
    void hearControl(const CapturedRecord& captured) {
        const UsbRecord& record = captured.record;
        if (record.event == UsbEvent::Submit) {
            setup[record.id] = record.setup;
            return;
        }
        const auto asked = setup.find(record.id);
        if (asked == setup.end() || asked->second[1] != getDescriptor) {
            return;
        }
        ByteReader descriptor(captured.data);
        descriptor.skip(2);
        if (asked->second[3] == deviceDescriptor && captured.data.size() >= deviceDescriptorSize) {
            descriptor.skip(6);
            vendorId = descriptor.u16();
            productId = descriptor.u16();
            descriptor.skip(4);
            serialNumberIndex = descriptor.u8();
        } else if (asked->second[3] == stringDescriptor && asked->second[2] != 0) {
            strings[asked->second[2]] = utf8Of(descriptor);
        }
    }

    void hearOutput(const CapturedRecord& captured) {
        const UsbRecord& record = captured.record;
        if (record.event == UsbEvent::Submit && !captured.data.empty()) {
            reportSize = captured.data.size() > fullSpeedReport ? highSpeedReport : fullSpeedReport;
            lastOutput = 0;
            if (framing.receiveUsbInTransferPackets(request, captured.data)) {
                hearRequest(std::exchange(request, {}));
                lastOutput = record.id;
            }
        } else if (record.status != 0 && record.id == lastOutput && lastOutput != 0) {
            recording.requests.back().isRefused = true;
            recording.goneAfter = recording.goneAfter ? recording.goneAfter : goneBefore;
        }
    }

    void hearRequest(Frame frame) {
        RecordedRequest heard;
        heard.frame = std::move(frame);
        waiting.push_back(recording.requests.size());
        recording.requests.push_back(std::move(heard));
        // An adapter that takes a request is there again.
        goneBefore = std::exchange(recording.goneAfter, std::nullopt);
    }

    void hearInput(const CapturedRecord& captured) {
        const UsbRecord& record = captured.record;
        if (record.event != UsbEvent::Complete) {
            return;
        }
        if (record.status != 0) {
            // One that the host took back says nothing of the adapter.
            if (record.status != -ENOENT && record.status != -ECONNRESET) {
                recording.goneAfter = recording.requests.size();
            }
        } else if (framing.receiveUsbInTransferPackets(message, captured.data)) {
            hearMessage(std::exchange(message, {}));
        }
    }

    void hearMessage(Frame frame) {
        ByteReader reader(frame);
        const uint16_t identifier = reader.u16();
        const uint16_t code = reader.u16();
        std::optional<size_t> answers;
        if (identifier != 0 && !reader.overran()) {
            answers = requestOf(identifier, code);
        }
        if (answers) {
            recording.requests[*answers].status = reader.u16();
        }
        recording.messages.push_back({std::move(frame), recording.requests.size(), answers});
    }

    /// The oldest request that waits for this response, else the last one that had it already.
    std::optional<size_t> requestOf(uint16_t identifier, uint16_t code) {
        const auto isIts = [&](size_t number) {
            ByteReader reader(recording.requests[number].frame);
            return reader.u16() == identifier && reader.u16() == code;
        };
        const auto found = std::find_if(waiting.begin(), waiting.end(), isIts);
        if (found != waiting.end()) {
            const size_t number = *found;
            waiting.erase(found);
            return number;
        }
        for (size_t number = recording.requests.size(); number-- > 0;) {
            if (isIts(number)) {
                return number;
            }
        }
        return std::nullopt;
    }

    static constexpr size_t fullSpeedReport = 64;
    static constexpr size_t highSpeedReport = 1024;

    Recording recording;
    /// The requests without a response so far.
    std::vector<size_t> waiting;
    std::optional<size_t> goneBefore;
    std::map<uint64_t, std::array<uint8_t, 8>> setup;
    std::map<uint8_t, std::string> strings;
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    uint8_t serialNumberIndex = 0;
    size_t reportSize = 0;
    /// Joining does not depend on the size of the reports.
    UsbTransferProtocol framing{highSpeedReport};
    Frame request;
    Frame message;
    /// The transfer that ended the last request.
    uint64_t lastOutput = 0;
};

} // namespace

std::vector<Recording> recordingsOf(const capture::Capture& capture) {
    std::map<std::pair<uint16_t, uint8_t>, Listener> listeners;
    for (const CapturedRecord& captured : capture.records) {
        listeners[{captured.record.bus, captured.record.device}].hear(captured);
    }
    std::vector<Recording> recordings;
    for (auto& listener : listeners) {
        if (auto recording = listener.second.takeRecording()) {
            recordings.push_back(std::move(*recording));
        }
    }
    return recordings;
}

} // namespace virtual_adapter
