// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "HostileAdapter.hpp"

#include "driver/UsbTransferProtocol.hpp"

#include <optional>
#include <utility>

namespace test_support {

void reportMisuse(const std::string& text) {
    fuzzing::require(false, text.c_str());
}

} // namespace test_support

namespace fuzzing {

namespace {

constexpr size_t fullSpeedReportSize = 64;
constexpr size_t highSpeedReportSize = 1024;

/// Closing the link waits for a read that nothing answers.
constexpr std::chrono::microseconds maxReadTime{50};

} // namespace

HostileAdapter::HostileAdapter(bool highSpeed)
    : reportSize(highSpeed ? highSpeedReportSize : fullSpeedReportSize) {
    const uint16_t productId =
        highSpeed ? VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED : VELTRASDK_USB_PRODUCT_ID_FULL_SPEED;
    hid.attach({"1-1:1.0", VELTRASDK_USB_VENDOR_ID, productId, L"VA-0001"});
    hid.limitReads(maxReadTime);
    hid.settleWrites(true);
    hid.respond([this](const Bytes& report) { return answersTo(report); });
}

void HostileAdapter::answerWith(Bytes lists) {
    answerLists = std::move(lists);
    answers = Input(answerLists.data(), answerLists.size());
}

std::vector<Bytes> HostileAdapter::answersTo(const Bytes& report) {
    require(report.size() == 1 + reportSize, "a whole report is written");
    const UsbTransferProtocol protocol(reportSize);
    std::optional<int> result;
    for (uint8_t kind = answers.byte(); kind != 0; kind = answers.byte()) {
        std::vector<Bytes> packets;
        switch (kind) {
        case 1:
            packets.push_back(answers.bytes());
            break;
        case 2:
            protocol.createUsbOutTransferPackets(packets, answers.twoPartBytes());
            break;
        case 3:
            hid.deliverReadError();
            hid.deliver({}); // ends the pause that the driver makes after failing reads
            break;
        case 4:
            result = -1;
            break;
        case 5: {
            Bytes message(report.begin() + 3, report.begin() + 7);
            const Bytes rest = answers.twoPartBytes();
            message.insert(message.end(), rest.begin(), rest.end());
            protocol.createUsbOutTransferPackets(packets, message);
            break;
        }
        default:
            break;
        }
        for (Bytes& packet : packets) {
            hid.deliver(std::move(packet));
        }
    }
    hid.failWriting(result);
    return {};
}

} // namespace fuzzing
