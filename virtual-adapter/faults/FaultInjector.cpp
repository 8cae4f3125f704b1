#include "faults/FaultInjector.hpp"

#include "protocol/CommandCode.hpp"

#include <array>
#include <iterator>

namespace virtual_adapter {

namespace {

constexpr size_t strikingRequest = 3;
constexpr size_t stormNotificationsOnEachSide = 1000;

unsigned u16At(const Frame& frame, size_t offset) {
    return frame[offset] | static_cast<unsigned>(frame[offset + 1]) << 8U;
}

/// One higher, and never 0: a response must not turn into a notification.
void spoilIdentifier(Frame& frame) {
    const unsigned identifier = u16At(frame, 0);
    const unsigned spoilt = identifier == 0xFFFF ? 1 : identifier + 1;
    frame[0] = static_cast<uint8_t>(spoilt & 0xFFU);
    frame[1] = static_cast<uint8_t>(spoilt >> 8U);
}

/// One byte short of a whole header.
void cutInsideHeader(Frame& frame) {
    frame.resize(5);
}

struct CountField {
    CommandCode code;
    size_t offset;
    size_t size;
};

constexpr std::array<CountField, 9> countFields{{
    {CommandCode::GetUsbString, 6, 1},
    {CommandCode::I2cRead, 7, 2},
    {CommandCode::I2cScanBus, 7, 2},
    {CommandCode::SpiTransfer, 6, 2},
    {CommandCode::I3cGetDeviceTable, 6, 1},
    {CommandCode::I3cPrivateTransfer, 8, 2},
    {CommandCode::I3cCccTransfer, 9, 1},
    {CommandCode::UartRxNotification, 6, 2},
    {CommandCode::I3cIbiNotification, 7, 1},
}};

void announceTooMuch(Frame& frame) {
    const auto code = static_cast<CommandCode>(u16At(frame, 2));
    for (const CountField& field : countFields) {
        const size_t end = field.offset + field.size;
        if (field.code == code && frame.size() >= end) {
            for (size_t i = field.offset; i < end; ++i) {
                frame[i] = 0xFF;
            }
        }
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

std::vector<OutgoingFrame> FaultInjector::apply(const std::vector<Frame>& answer) {
    ++requests;
    std::vector<OutgoingFrame> frames;
    frames.reserve(answer.size());
    for (const Frame& frame : answer) {
        frames.push_back({frame});
    }
    if (fault.kind == FaultKind::OverLongCount && requests >= strikingRequest) {
        for (OutgoingFrame& outgoing : frames) {
            announceTooMuch(outgoing.frame);
        }
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
