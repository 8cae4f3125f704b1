// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FrameFaults.hpp"

#include "bytes/ByteReader.hpp"

#include "protocol/CommandCode.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

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

/// Of what was read from a bus, not of the texts and tables of the adapter itself.
bool readsFromBus(const Frame& response) {
    ByteReader reader(response);
    reader.skip(2);
    switch (static_cast<CommandCode>(reader.u16())) {
    case CommandCode::I2cRead:
    case CommandCode::SpiTransfer:
    case CommandCode::I3cPrivateTransfer:
    case CommandCode::I3cCccTransfer:
        return true;
    default:
        return false;
    }
}

/// The lowest bit of the last byte behind the last count.
void flipBit(CountedFrame& response) {
    if (response.counts.empty() || !readsFromBus(response.frame)) {
        return;
    }
    const ByteWriter::Field& count = response.counts.back();
    if (response.frame.size() > count.offset + count.size) {
        response.frame.back() = static_cast<uint8_t>(response.frame.back() ^ 1U);
    }
}

/// Spoils the response, which @p frames begin with.
void spoil(FaultSet striking, std::vector<OutgoingFrame>& frames) {
    OutgoingFrame& response = frames.front();
    response.isResponse = true;
    response.late = striking.has(FaultKind::LateResponse);
    if (striking.has(FaultKind::WrongIdentifier)) {
        spoilIdentifier(response.frame);
    }
    if (striking.has(FaultKind::ShortFrame)) {
        cutInsideHeader(response.frame);
    }
    if (striking.has(FaultKind::LostResponse)) {
        frames.erase(frames.begin());
    }
    if (striking.has(FaultKind::NotificationStorm)) {
        std::vector<OutgoingFrame> storm;
        appendStorm(storm);
        storm.insert(storm.end(), frames.begin(), frames.end());
        appendStorm(storm);
        frames.swap(storm);
    }
}

} // namespace

std::vector<OutgoingFrame> FrameFaults::apply(FaultSet striking, std::vector<CountedFrame> answer) {
    countsTooMuch = striking.has(FaultKind::OverLongCount);
    if (striking.has(FaultKind::LostNotification)) {
        ++notificationsToLose;
    }
    if (answer.empty()) {
        return {};
    }
    if (striking.has(FaultKind::FlippedBit)) {
        flipBit(answer.front());
    }
    CountedFrame response = std::move(answer.front());
    answer.erase(answer.begin());
    std::vector<OutgoingFrame> frames = outgoing({std::move(response)});
    for (OutgoingFrame& notification : applyToNotifications(std::move(answer))) {
        frames.push_back(std::move(notification));
    }
    spoil(striking, frames);
    return frames;
}

std::vector<OutgoingFrame>
FrameFaults::applyToNotifications(std::vector<CountedFrame> notifications) {
    const size_t lost = std::min(notificationsToLose, notifications.size());
    notificationsToLose -= lost;
    notifications.erase(notifications.begin(),
                        notifications.begin() + static_cast<std::ptrdiff_t>(lost));
    return outgoing(std::move(notifications));
}

std::vector<OutgoingFrame> FrameFaults::outgoing(std::vector<CountedFrame> messages) {
    std::vector<OutgoingFrame> frames;
    frames.reserve(messages.size());
    for (CountedFrame& message : messages) {
        if (countsTooMuch) {
            announceTooMuch(message);
        }
        frames.push_back({std::move(message.frame)});
    }
    return frames;
}

} // namespace virtual_adapter
