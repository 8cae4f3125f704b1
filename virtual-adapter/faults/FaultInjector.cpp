// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FaultInjector.hpp"

#include "bytes/ByteReader.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr size_t strikingRequest = 3;
constexpr size_t stormNotificationsOnEachSide = 1000;

/// One higher, and never 0: a response must not turn into a notification.
void spoilIdentifier(Frame& frame) {
    const uint16_t identifier = ByteReader(frame).u16();
    const uint16_t spoilt =
        identifier == 0xFFFF ? uint16_t{1} : static_cast<uint16_t>(identifier + 1);
    frame[0] = lowByte(spoilt);
    frame[1] = highByte(spoilt);
}

/// One byte short of a whole header.
void cutInsideHeader(Frame& frame) {
    frame.resize(5);
}

void announceTooMuch(CountedFrame& message) {
    for (const ByteWriter::Field& count : message.counts) {
        std::fill_n(message.frame.begin() + static_cast<Frame::difference_type>(count.offset),
                    count.size, uint8_t{0xFF});
    }
}

/// A notification of each kind, the unknown kind included. The UART's is longer than a 64-byte
/// report.
const std::vector<Frame>& stormNotifications() {
    static const std::vector<Frame> notifications = [] {
        const Frame hotJoin{0x00, 0x00, 0x82, 0x19, 0x00, 0x00, 0x04, 0x6A,
                            0x00, 0x00, 0x00, 0x01, 0x06, 0xC6, 0x08};
        const Frame inBandInterrupt{0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x08, 0x02, 0xAB, 0xCD};
        const Frame gpio{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x01};
        Frame uart{0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0x60, 0x00};
        uart.resize(8 + 0x60, 'U');
        const Frame unknown{0x00, 0x00, 0xFF, 0x7F, 0x00, 0x00};
        return std::vector<Frame>{hotJoin, inBandInterrupt, gpio, uart, unknown};
    }();
    return notifications;
}

void appendStorm(std::vector<OutgoingFrame>& frames) {
    const std::vector<Frame>& kinds = stormNotifications();
    for (size_t i = 0; i < stormNotificationsOnEachSide; ++i) {
        frames.push_back({kinds[i % kinds.size()]});
    }
}

} // namespace

std::vector<OutgoingFrame> FaultInjector::apply(std::vector<CountedFrame> answer) {
    ++requests;
    std::vector<OutgoingFrame> frames;
    frames.reserve(answer.size());
    for (CountedFrame& message : answer) {
        if (fault.kind == FaultKind::OverLongCount && requests >= strikingRequest) {
            announceTooMuch(message);
        }
        frames.push_back({std::move(message.frame)});
    }
    if (requests == strikingRequest && !frames.empty()) {
        strike(frames);
    }
    return frames;
}

void FaultInjector::strike(std::vector<OutgoingFrame>& frames) const {
    OutgoingFrame& response = frames.front();
    switch (fault.kind) {
    case FaultKind::LateResponse:
        response.delay = fault.delay;
        break;
    case FaultKind::LostResponse:
        frames.erase(frames.begin());
        break;
    case FaultKind::WrongIdentifier:
        spoilIdentifier(response.frame);
        break;
    case FaultKind::ShortFrame:
        cutInsideHeader(response.frame);
        break;
    case FaultKind::NotificationStorm: {
        std::vector<OutgoingFrame> storm;
        appendStorm(storm);
        storm.insert(storm.end(), frames.begin(), frames.end());
        appendStorm(storm);
        frames.swap(storm);
        break;
    }
    default:
        break;
    }
}

bool FaultInjector::strikesNext(FaultKind kind) const {
    return fault.kind == kind && requests + 1 >= strikingRequest;
}

} // namespace virtual_adapter
